#pragma once
// What the level-3 routines must compute, for the tests: the operands as full matrices of long double
// complex values, built from the referenced triangles only, products that carry a bound on the
// rounding an implementation may make, and the comparisons. Header-only and free of the library's
// internal headers, so that the tests of the exported functions use it too. Elements are double or
// any two-double complex type with members re and im.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace zor::test {

using Index = std::int64_t;

struct Value {
    long double re = 0, im = 0;
};

inline Value operator+(Value a, Value b) {
    return {a.re + b.re, a.im + b.im};
}
inline Value operator-(Value a, Value b) {
    return {a.re - b.re, a.im - b.im};
}
inline Value operator*(Value a, Value b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
inline Value conj(Value a) {
    return {a.re, -a.im};
}
inline long double magnitude(Value a) {
    return std::fabs(a.re) + std::fabs(a.im);
}
inline bool is_nan(Value a) {
    return std::isnan(a.re) || std::isnan(a.im);
}

template <class E>
inline constexpr bool kComplex = !std::is_same_v<E, double>;

template <class E>
Value value(const E& x) {
    if constexpr (kComplex<E>) {
        return {x.re, x.im};
    } else {
        return {x, 0};
    }
}

template <class E>
E scalar(double re, double im) {
    if constexpr (kComplex<E>) {
        return {re, im};
    } else {
        return re;
    }
}

// Calls `real` for double elements and `complex` for complex ones, with the same arguments.
#define ZOR_D_OR_Z(E, real, complex, ...)         \
    do {                                          \
        if constexpr (::zor::test::kComplex<E>) { \
            complex(__VA_ARGS__);                 \
        } else {                                  \
            real(__VA_ARGS__);                    \
        }                                         \
    } while (0)

// Option letters in either case, as the routines take them.
inline bool is(char letter, char upper) {
    return letter == upper || letter == upper + ('a' - 'A');
}

struct Dense {
    Index rows = 0, cols = 0;
    std::vector<Value> v;

    Dense(Index r, Index c) : rows(r), cols(c), v(static_cast<std::size_t>(r * c)) {}
    Value& operator()(Index i, Index j) { return v[static_cast<std::size_t>(i + j * rows)]; }
    const Value& operator()(Index i, Index j) const { return v[static_cast<std::size_t>(i + j * rows)]; }
};

template <class E>
Dense load(const E* x, Index rows, Index cols, Index ld) {
    Dense d(rows, cols);
    for (Index j = 0; j < cols; ++j) {
        for (Index i = 0; i < rows; ++i) d(i, j) = value(x[i + j * ld]);
    }
    return d;
}

// op(X): "N" X, "T" Xᵀ, "C" Xᴴ.
inline Dense op(const Dense& x, char trans) {
    if (is(trans, 'N')) return x;
    Dense t(x.cols, x.rows);
    for (Index j = 0; j < x.cols; ++j) {
        for (Index i = 0; i < x.rows; ++i) t(j, i) = is(trans, 'C') ? conj(x(i, j)) : x(i, j);
    }
    return t;
}

// The triangular matrix the upper or lower triangle of a square A stands for; `unit` puts ones on
// the diagonal without reading it.
inline Dense triangle(const Dense& a, bool upper, bool unit) {
    Dense d(a.rows, a.cols);
    for (Index j = 0; j < a.cols; ++j) {
        for (Index i = 0; i < a.rows; ++i) {
            if (i == j) {
                d(i, j) = unit ? Value{1, 0} : a(i, j);
            } else if (upper == (i < j)) {
                d(i, j) = a(i, j);
            }
        }
    }
    return d;
}
template <class E>
Dense triangle(const E* a, Index order, Index lda, bool upper, bool unit) {
    return triangle(load(a, order, order, lda), upper, unit);
}

// The symmetric (Hermitian: with a real diagonal) matrix the stored triangle of a square A stands for.
inline Dense symmetric(const Dense& a, bool upper, bool hermitian) {
    Dense d(a.rows, a.cols);
    for (Index j = 0; j < a.cols; ++j) {
        for (Index i = 0; i <= j; ++i) {
            const Index r = upper ? i : j, c = upper ? j : i;  // the stored one of (i, j) and (j, i)
            Value x = a(r, c);
            if (i == j && hermitian) x.im = 0;
            d(r, c) = x;
            d(c, r) = hermitian ? conj(x) : x;
        }
    }
    return d;
}
template <class E>
Dense symmetric(const E* a, Index order, Index lda, bool upper, bool hermitian) {
    return symmetric(load(a, order, order, lda), upper, hermitian);
}

// alpha X Y + beta C, and per element the sum of the magnitudes of its terms; only the elements
// `selected` picks are computed.
struct Expected {
    Dense value, size;
};

struct Everywhere {
    bool operator()(Index, Index) const { return true; }
};

template <class Selected = Everywhere>
Expected combine(Value alpha, const Dense& x, const Dense& y, Value beta, const Dense* c,
                 Selected selected = {}) {
    Expected e{Dense(x.rows, y.cols), Dense(x.rows, y.cols)};
    for (Index j = 0; j < y.cols; ++j) {
        for (Index i = 0; i < x.rows; ++i) {
            if (!selected(i, j)) continue;
            Value sum;
            long double size = 0;
            for (Index p = 0; p < x.cols; ++p) {
                sum = sum + x(i, p) * y(p, j);
                size += magnitude(x(i, p)) * magnitude(y(p, j));
            }
            Value v = alpha * sum;
            size *= magnitude(alpha);
            if (c != nullptr && magnitude(beta) != 0) {
                v = v + beta * (*c)(i, j);
                size += magnitude(beta) * magnitude((*c)(i, j));
            }
            e.value(i, j) = v;
            e.size(i, j) = {size, 0};
        }
    }
    return e;
}

inline void add(Expected& e, const Expected& more) {
    for (std::size_t i = 0; i < e.value.v.size(); ++i) {
        e.value.v[i] = e.value.v[i] + more.value.v[i];
        e.size.v[i].re += more.size.v[i].re;
    }
}

inline constexpr long double kEps = std::numeric_limits<double>::epsilon();

// Element (i, j) of `got` within `terms` roundings of the size of the expected one (NaN where it is
// NaN), for the elements `compared` selects.
template <class Selected>
::testing::AssertionResult near(const Dense& got, const Expected& want, long double terms,
                                Selected compared) {
    for (Index j = 0; j < want.value.cols; ++j) {
        for (Index i = 0; i < want.value.rows; ++i) {
            if (!compared(i, j)) continue;
            const Value g = got(i, j), w = want.value(i, j);
            const long double tolerance = terms * kEps * want.size(i, j).re;
            if (is_nan(w) || is_nan(g) ? is_nan(w) != is_nan(g) : !(magnitude(g - w) <= tolerance)) {
                return ::testing::AssertionFailure()
                       << "element (" << i << ", " << j << ") is " << static_cast<double>(g.re) << " + "
                       << static_cast<double>(g.im) << "i, expected " << static_cast<double>(w.re) << " + "
                       << static_cast<double>(w.im) << "i within " << static_cast<double>(tolerance);
            }
        }
    }
    return ::testing::AssertionSuccess();
}
template <class E, class Selected>
::testing::AssertionResult near(const E* got, Index ld, const Expected& want, long double terms,
                                Selected compared) {
    return near(load(got, want.value.rows, want.value.cols, ld), want, terms, compared);
}

// A residual (an Expected whose value should vanish) within `terms` roundings of the size of its terms.
inline ::testing::AssertionResult small(const Expected& residual, long double terms) {
    for (Index j = 0; j < residual.value.cols; ++j) {
        for (Index i = 0; i < residual.value.rows; ++i) {
            const long double size = residual.size(i, j).re, r = magnitude(residual.value(i, j));
            if (!(r <= terms * kEps * size)) {
                return ::testing::AssertionFailure()
                       << "residual (" << i << ", " << j << ") is " << static_cast<double>(r)
                       << " of a size of " << static_cast<double>(size);
            }
        }
    }
    return ::testing::AssertionSuccess();
}

// trmm: B after the call within rounding of alpha op(T) B (left) or alpha B op(T) (right); trsm: the
// residual op(T) X - alpha B (or X op(T) - alpha B) within rounding of the size of its terms.
inline ::testing::AssertionResult triangular_result(bool solve, bool left, Value alpha, const Dense& t,
                                                    const Dense& before, const Dense& after,
                                                    long double terms) {
    if (solve) {
        const Value minus_alpha = Value{} - alpha;
        return small(left ? combine({1, 0}, t, after, minus_alpha, &before)
                          : combine({1, 0}, after, t, minus_alpha, &before),
                     terms);
    }
    return near(after, left ? combine(alpha, t, before, {}, nullptr) : combine(alpha, before, t, {}, nullptr),
                terms, Everywhere{});
}

// What syrk, herk, syr2k and her2k must leave in the elements `selected` picks: with P = op(A),
// Q = op(B), alpha P Pᵀ + beta C, or alpha P Qᵀ + alpha Q Pᵀ + beta C, with ᴴ and conj(alpha) in the
// second term for the Hermitian ones, which take the real parts of beta (and of herk's alpha) and
// of the diagonal of C.
template <class Selected = Everywhere>
Expected rank_update(bool hermitian, bool two, Value alpha, Value beta, const Dense& a, const Dense& b,
                     char trans, Dense c, Selected selected = {}) {
    const char to_p = is(trans, 'N') ? 'N' : (hermitian ? 'C' : 'T'), across = hermitian ? 'C' : 'T';
    const Dense p = op(a, to_p), q = op(b, to_p);
    if (hermitian) {
        beta.im = 0;
        if (!two) alpha.im = 0;
        for (Index i = 0; i < c.rows; ++i) c(i, i).im = 0;
    }
    Expected want = combine(alpha, p, op(two ? q : p, across), beta, &c, selected);
    if (two) add(want, combine(hermitian ? conj(alpha) : alpha, q, op(p, across), {}, nullptr, selected));
    return want;
}

// Every element of `got` that `may_change` does not select is bit for bit as in `before`.
template <class E, class Selected>
::testing::AssertionResult untouched(const std::vector<E>& got, const std::vector<E>& before, Index ld,
                                     Selected may_change) {
    for (std::size_t k = 0; k < got.size(); ++k) {
        const Index i = static_cast<Index>(k) % ld, j = static_cast<Index>(k) / ld;
        if (may_change(i, j)) continue;
        if (std::memcmp(&got[k], &before[k], sizeof(E)) != 0) {
            return ::testing::AssertionFailure() << "element (" << i << ", " << j << ") was written";
        }
    }
    return ::testing::AssertionSuccess();
}

}  // namespace zor::test
