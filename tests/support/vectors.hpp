#pragma once
// Vectors at chosen addresses for the kernel tests: n elements with increment inc (either sign)
// inside a buffer that starts on a 64-byte boundary, shifted by `offset` elements, with guard
// elements on both sides. Everything in the buffer that is not an element of the vector is
// poisoned, so that a stray read shows up as NaN and a stray write shows when the buffer is
// compared with the expected one.

#include <cstring>
#include <vector>

#include "service/types.hpp"
#include "support/random.hpp"

namespace zor::test {

inline double random_value(Random& random, double) {
    return random.uniform();
}
inline zcomplex random_value(Random& random, zcomplex) {
    return random.complex();
}
inline double poison_value(double) {
    return kPoison;
}
inline zcomplex poison_value(zcomplex) {
    return {kPoison, kPoison};
}

// Equal bit patterns, or both NaN: what "bit for bit" means for results.
inline bool same_bits(double a, double b) {
    if (a != a && b != b) return true;
    return std::memcmp(&a, &b, sizeof a) == 0;
}
inline bool same_bits(const zcomplex& a, const zcomplex& b) {
    return same_bits(a.re, b.re) && same_bits(a.im, b.im);
}

// The products and sums of the element-wise kernels, in their order: re = (xr*ar) + (xi*(-ai)),
// im = (xi*ar) + (xr*ai) for complex values.
inline double times(double alpha, double x) {
    return x * alpha;
}
inline zcomplex times(const zcomplex& alpha, const zcomplex& x) {
    return {x.re * alpha.re + x.im * -alpha.im, x.im * alpha.re + x.re * alpha.im};
}
inline double plus(double a, double b) {
    return a + b;
}
inline zcomplex plus(const zcomplex& a, const zcomplex& b) {
    return {a.re + b.re, a.im + b.im};
}

template <class T>
class TestVector {
  public:
    static constexpr zint kGuard = 8;

    TestVector(Random& random, zint n, zint inc, int offset = 0) : n_(n), inc_(inc), offset_(offset) {
        const zint step = inc < 0 ? -inc : inc;
        length_ = (n > 0 ? 1 + (n - 1) * step : 1) + 2 * kGuard + offset;
        allocate();
        for (zint i = 0; i < n; ++i) (*this)[i] = random_value(random, T{});
    }
    // A copy has the same contents at the same alignment.
    TestVector(const TestVector& other)
        : n_(other.n_), inc_(other.inc_), offset_(other.offset_), length_(other.length_) {
        allocate();
        std::memcpy(static_cast<void*>(begin()), other.begin(), sizeof(T) * length_);
    }
    TestVector& operator=(const TestVector&) = delete;

    T* data() { return begin() + kGuard + offset_; }
    const T* data() const { return begin() + kGuard + offset_; }
    zint size() const { return n_; }
    zint inc() const { return inc_; }

    // Logical element i: a negative increment runs backwards from the far end.
    T& operator[](zint i) { return data()[(inc_ < 0 ? (1 - n_) * inc_ : 0) + i * inc_]; }
    const T& operator[](zint i) const { return data()[(inc_ < 0 ? (1 - n_) * inc_ : 0) + i * inc_]; }

    // The whole buffer, guards and gaps included, bit for bit (NaN patterns compared as bits).
    bool same_contents(const TestVector& other) const {
        return length_ == other.length_ && std::memcmp(begin(), other.begin(), sizeof(T) * length_) == 0;
    }

  private:
    void allocate() {
        storage_.assign(static_cast<std::size_t>(length_ + 64 / sizeof(T)), poison_value(T{}));
        const auto raw = reinterpret_cast<std::uintptr_t>(storage_.data());
        skip_ = ((64 - raw % 64) % 64) / sizeof(T);
    }
    T* begin() { return storage_.data() + skip_; }
    const T* begin() const { return storage_.data() + skip_; }

    zint n_, inc_, offset_, length_ = 0;
    std::size_t skip_ = 0;
    std::vector<T> storage_;
};

}  // namespace zor::test
