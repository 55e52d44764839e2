#pragma once
// Operand storage of the benchmark programs: 64-byte aligned doubles with values in [-0.5, 0.5)
// that keep every kernel's results finite and normal however often a call repeats.

#include <cstddef>
#include <cstdlib>

namespace bench {

class Buffer {
  public:
    explicit Buffer(std::size_t count)
        : data_(static_cast<double*>(std::aligned_alloc(64, (count * 8 + 127) / 64 * 64))) {
        for (std::size_t i = 0; i < count; ++i)
            data_[i] = static_cast<double>((i * 7919) % 1000) / 1000.0 - 0.5;
    }
    ~Buffer() { std::free(data_); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    double* get() const { return data_; }

  private:
    double* data_;
};

}  // namespace bench
