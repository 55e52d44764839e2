#pragma once
// What the matrix-vector kernel tests share: matrices with padded, poisoned leading dimensions
// (and, for triangular and symmetric storage, a poisoned other triangle), long-double references
// and their rounding bounds.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <string>
#include <vector>

#include "support/random.hpp"
#include "support/vectors.hpp"

namespace zor::test {

using Complex = std::complex<long double>;

inline Complex wide(double v) {
    return {v, 0};
}
inline Complex wide(const zcomplex& v) {
    return {v.re, v.im};
}
inline long double size_of(const Complex& v) {
    return std::fabs(v.real()) + std::fabs(v.imag());
}

// Sizes across the block boundaries of the kernels (4-column groups, the 32 and 64 triangular
// blocks, the 128-element gather buffers).
inline const std::vector<zint> kSizes = {0, 1, 2, 3, 4, 5, 7, 8, 9, 31, 32, 33, 63, 64, 65, 127, 128, 129};

// An m x n matrix in storage of leading dimension m + 3: the padding rows poisoned. With a
// triangle given ('U' or 'L'), the other triangle is poisoned too, and with unit_diagonal the
// diagonal: none of them may be read.
template <class T>
struct TestMatrix {
    zint m, n, ld;
    std::vector<T> data;

    TestMatrix(Random& random, zint rows, zint columns, char triangle = ' ', bool unit_diagonal = false)
        : m(rows),
          n(columns),
          ld(rows + 3),
          data(static_cast<std::size_t>(ld * (columns > 0 ? columns : 1)), poison_value(T{})) {
        for (zint j = 0; j < n; ++j) {
            for (zint i = 0; i < m; ++i) {
                const bool other = (triangle == 'U' && i > j) || (triangle == 'L' && i < j);
                if (!other && !(unit_diagonal && i == j)) at(i, j) = random_value(random, T{});
            }
        }
    }
    T& at(zint i, zint j) { return data[static_cast<std::size_t>(i + j * ld)]; }
    const T& at(zint i, zint j) const { return data[static_cast<std::size_t>(i + j * ld)]; }
    // The stored element, or its mirror for symmetric storage; 1 on a unit diagonal.
    Complex element(zint i, zint j, char triangle = ' ', bool unit_diagonal = false,
                    bool hermitian = false) const {
        if (unit_diagonal && i == j) return 1;
        const bool other = (triangle == 'U' && i > j) || (triangle == 'L' && i < j);
        Complex v = other ? wide(at(j, i)) : wide(at(i, j));
        if (hermitian && other) v = std::conj(v);
        if (hermitian && i == j) v = v.real();
        return v;
    }
};

// |got - want| within (k + 4) units of rounding of `scale`, the sum of the magnitudes of the
// terms that made it (k terms).
inline ::testing::AssertionResult within_rounding(const Complex& got, const Complex& want, long double scale,
                                                  zint k) {
    const long double bound = (k + 4) * 0x1p-52L * scale + 1e-300L;
    if (std::fabs(got.real() - want.real()) <= bound && std::fabs(got.imag() - want.imag()) <= bound) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "got (" << static_cast<double>(got.real()) << ", " << static_cast<double>(got.imag())
           << "), want (" << static_cast<double>(want.real()) << ", " << static_cast<double>(want.imag())
           << ") within " << static_cast<double>(bound);
}

inline std::string describe_case(const char* what, zint m, zint n, zint incx, zint incy) {
    return std::string(what) + " m=" + std::to_string(m) + " n=" + std::to_string(n) +
           " incx=" + std::to_string(incx) + " incy=" + std::to_string(incy);
}

}  // namespace zor::test
