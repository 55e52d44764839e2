#pragma once
// Deterministic test data: vectors and column-major matrices of doubles or complex values, with
// the unused parts of a strided or padded array poisoned so that a kernel that reads or writes
// outside its elements is caught.

#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "service/types.hpp"

namespace zor::test {

// A small, fast generator with a fixed sequence per seed (xorshift64*).
class Random {
  public:
    explicit Random(std::uint64_t seed = 0x9E3779B97F4A7C15u) : state_(seed ? seed : 1) {}
    std::uint64_t next() {
        state_ ^= state_ >> 12;
        state_ ^= state_ << 25;
        state_ ^= state_ >> 27;
        return state_ * 0x2545F4914F6CDD1Du;
    }
    // Uniform in [-1, 1).
    double uniform() { return static_cast<double>(next() >> 11) * 0x1.0p-52 - 1.0; }
    zcomplex complex() {
        const double re = uniform();
        return {re, uniform()};
    }

  private:
    std::uint64_t state_;
};

inline constexpr double kPoison = std::numeric_limits<double>::quiet_NaN();

// An m x n column-major matrix with leading dimension ld >= m; rows m..ld-1 are poisoned.
inline std::vector<double> random_matrix(Random& random, zint m, zint n, zint ld) {
    std::vector<double> a(ld * (n > 0 ? n : 1), kPoison);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) a[i + j * ld] = random.uniform();
    }
    return a;
}

inline std::vector<zcomplex> random_complex_matrix(Random& random, zint m, zint n, zint ld) {
    std::vector<zcomplex> a(ld * (n > 0 ? n : 1), zcomplex{kPoison, kPoison});
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) a[i + j * ld] = random.complex();
    }
    return a;
}

// A random m x n matrix of either element type, rows m..ld-1 poisoned.
template <class T>
std::vector<T> random_operand(Random& random, zint m, zint n, zint ld) {
    if constexpr (std::is_same_v<T, double>) {
        return random_matrix(random, m, n, ld);
    } else {
        return random_complex_matrix(random, m, n, ld);
    }
}

}  // namespace zor::test
