#pragma once
// Matrices for the factorisation tests: real or complex (double, zcomplex), column-major with a
// padded leading dimension whose padding is poisoned, the norms and products the residuals of the
// LAPACK test suite need (computed in long double from the stored values), and the progress handler
// the stop tests install.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "service/types.hpp"
#include "support/arguments.hpp"
#include "support/level3_reference.hpp"
#include "support/random.hpp"

namespace zor::test {

// The factors and residuals in long double: the reference's matrices and values.
using Wide = Dense;
using Exact = Value;

template <class T>
inline constexpr bool kIsComplex = kComplex<T>;

template <class T>
T narrow_to(const Exact& x) {
    return scalar<T>(static_cast<double>(x.re), static_cast<double>(x.im));
}

inline double epsilon() {
    return std::numeric_limits<double>::epsilon() / 2;
}

template <class T>
T random_element(Random& random) {
    if constexpr (kIsComplex<T>) {
        return random.complex();
    } else {
        return random.uniform();
    }
}

// An m by n matrix with leading dimension ld (>= m); rows m..ld-1 hold NaN.
template <class T>
struct Matrix {
    zint rows = 0, cols = 0, ld = 1;
    std::vector<T> v;

    Matrix() = default;
    Matrix(zint m, zint n, zint ld_)
        : rows(m),
          cols(n),
          ld(ld_),
          v(static_cast<std::size_t>(ld_ * (n > 0 ? n : 1)), scalar<T>(kPoison, kPoison)) {}
    T& operator()(zint i, zint j) { return v[static_cast<std::size_t>(i + j * ld)]; }
    const T& operator()(zint i, zint j) const { return v[static_cast<std::size_t>(i + j * ld)]; }
    T* data() { return v.data(); }
    const T* data() const { return v.data(); }
    Exact at(zint i, zint j) const { return value((*this)(i, j)); }
};

template <class T>
Matrix<T> random_matrix(Random& random, zint m, zint n, zint pad = 3) {
    Matrix<T> a(m, n, m + pad);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i < m; ++i) a(i, j) = random_element<T>(random);
    }
    return a;
}

// A Hermitian (symmetric) positive definite matrix, both triangles stored: B Bᴴ / n + I.
template <class T>
Matrix<T> random_positive_definite(Random& random, zint n, zint pad = 3) {
    const Matrix<T> b = random_matrix<T>(random, n, n, 0);
    Matrix<T> a(n, n, n + pad);
    for (zint j = 0; j < n; ++j) {
        for (zint i = 0; i <= j; ++i) {
            Exact s;
            for (zint k = 0; k < n; ++k) s = s + b.at(i, k) * conj(b.at(j, k));
            s = s * Exact{1.0L / n, 0};
            if (i == j) s = {s.re + 1, 0};
            a(i, j) = narrow_to<T>(s);
            a(j, i) = narrow_to<T>(conj(s));
        }
    }
    return a;
}

// The largest column sum of |a(i, j)|.
inline long double one_norm(const Wide& a) {
    long double best = 0;
    for (zint j = 0; j < a.cols; ++j) {
        long double s = 0;
        for (zint i = 0; i < a.rows; ++i) s += std::hypot(a(i, j).re, a(i, j).im);
        if (s > best || std::isnan(s)) best = s;
    }
    return best;
}

template <class T>
Wide widen_matrix(const Matrix<T>& a) {
    return load(a.data(), a.rows, a.cols, a.ld);
}

template <class T>
long double one_norm(const Matrix<T>& a) {
    return one_norm(widen_matrix(a));
}

inline Wide multiply(const Wide& a, const Wide& b) {
    Wide c(a.rows, b.cols);
    for (zint j = 0; j < b.cols; ++j) {
        for (zint k = 0; k < a.cols; ++k) {
            const Exact f = b(k, j);
            if (f.re == 0 && f.im == 0) continue;
            for (zint i = 0; i < a.rows; ++i) c(i, j) = c(i, j) + a(i, k) * f;
        }
    }
    return c;
}

// ||a - b||₁
inline long double difference_norm(const Wide& a, Wide b) {
    for (std::size_t k = 0; k < b.v.size(); ++k) b.v[k] = a.v[k] - b.v[k];
    return one_norm(b);
}

// The scaled residual of a solve op(A) X = B: ||op(A) X - B||₁ / (n ||op(A)||₁ ||X||₁ eps).
template <class T>
double solve_residual(const Wide& a, char trans, const Matrix<T>& x, const Matrix<T>& b) {
    const Wide o = op(a, trans), wx = widen_matrix(x);
    return static_cast<double>(difference_norm(multiply(o, wx), widen_matrix(b)) /
                               (a.rows * one_norm(o) * one_norm(wx) * epsilon()));
}

// The scaled residual of an inverse: ||A inv(A) - I||₁ / (n ||A||₁ ||inv(A)||₁ eps).
inline double inverse_residual(const Wide& a, const Wide& inverse) {
    Wide product = multiply(a, inverse);
    for (zint i = 0; i < a.rows; ++i) product(i, i).re -= 1;
    return static_cast<double>(one_norm(product) / (a.rows * one_norm(a) * one_norm(inverse) * epsilon()));
}

// Packed storage of the triangle `uplo` names, column by column, and back (the other triangle zero).
template <class T>
std::vector<T> pack(const Matrix<T>& a, char uplo) {
    std::vector<T> ap;
    for (zint j = 0; j < a.cols; ++j) {
        for (zint i = uplo == 'U' ? 0 : j; i < (uplo == 'U' ? j + 1 : a.rows); ++i) ap.push_back(a(i, j));
    }
    return ap;
}
template <class T>
Wide unpack(const std::vector<T>& ap, zint n, char uplo) {
    Wide t(n, n);
    std::size_t p = 0;
    for (zint j = 0; j < n; ++j) {
        for (zint i = uplo == 'U' ? 0 : j; i < (uplo == 'U' ? j + 1 : n); ++i) t(i, j) = value(ap[p++]);
    }
    return t;
}

// The padding of a matrix (rows m..ld-1) is still NaN: nothing was written outside the matrix.
template <class T>
bool padding_untouched(const Matrix<T>& a) {
    for (zint j = 0; j < a.cols; ++j) {
        for (zint i = a.rows; i < a.ld; ++i) {
            if (!std::isnan(a.at(i, j).re)) return false;
        }
    }
    return true;
}

// The same bits everywhere, padding included.
template <class T>
bool same_contents(const Matrix<T>& a, const Matrix<T>& b) {
    return a.v.size() == b.v.size() && std::memcmp(a.v.data(), b.v.data(), a.v.size() * sizeof(T)) == 0;
}

// The threshold of the LAPACK test suite for its scaled residuals.
inline constexpr double kResidualThreshold = 30.0;

// A progress handler that records its calls and answers `stop_at`-th call (counted from 1) with 1.
struct ProgressLog {
    static inline int calls = 0;
    static inline int stop_at = 0;
    static inline std::vector<std::int32_t> steps;
    static inline std::vector<std::string> stages;
    static void reset(int stop = 0) {
        calls = 0;
        stop_at = stop;
        steps.clear();
        stages.clear();
    }
    static int handler(const std::int32_t* thread, const std::int32_t* step, const char* stage, int length) {
        ++calls;
        EXPECT_EQ(*thread, 0);
        steps.push_back(*step);
        stages.emplace_back(stage, static_cast<std::size_t>(length));
        return calls == stop_at ? 1 : 0;
    }
};

// Installs ProgressLog::handler in the process-wide slot (once: the first registration wins) and
// resets its log; the handler stays installed for the rest of the process and never stops unless
// asked to.
void use_progress_log(int stop_at = 0);

}  // namespace zor::test
