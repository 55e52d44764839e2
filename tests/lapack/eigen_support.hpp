#pragma once
// Matrices and residuals for the tests of the nonsymmetric eigenproblem: the families of test
// matrices that break weak implementations (zero, identity, Jordan blocks, clustered and exactly
// repeated eigenvalues, companion matrices, entries from 1e-300 to 1e300, triangular and Hessenberg
// input), and the residuals of the LAPACK test suite computed in long double.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "lapack/factor_support.hpp"
#include "lapack/reflector_support.hpp"

namespace zor::test {

enum class Kind {
    Random,
    Zero,
    Identity,
    Jordan,
    Clustered,
    Repeated,
    Companion,
    Graded,
    Triangular,
    Hessenberg
};

inline constexpr Kind kAllKinds[] = {Kind::Random,     Kind::Zero,      Kind::Identity,  Kind::Jordan,
                                     Kind::Clustered,  Kind::Repeated,  Kind::Companion, Kind::Graded,
                                     Kind::Triangular, Kind::Hessenberg};
inline constexpr const char* kKindNames[] = {"Random",   "Zero",      "Identity", "Jordan",     "Clustered",
                                             "Repeated", "Companion", "Graded",   "Triangular", "Hessenberg"};

inline const char* kind_name(Kind kind) {
    return kKindNames[static_cast<int>(kind)];
}

// A test case of the families: a kind of matrix and its order, named "Kind_n".
struct FamilyCase {
    Kind kind;
    zint n;
};

inline std::string family_case_name(const ::testing::TestParamInfo<FamilyCase>& info) {
    return std::string(kind_name(info.param.kind)) + "_" + std::to_string(info.param.n);
}

// Every kind at the small orders, and the larger orders for the kinds given.
inline std::vector<FamilyCase> family_cases(std::initializer_list<zint> small,
                                            std::initializer_list<Kind> kinds,
                                            std::initializer_list<zint> large) {
    std::vector<FamilyCase> cases;
    for (Kind kind : kAllKinds) {
        for (zint n : small) cases.push_back({kind, n});
    }
    for (Kind kind : kinds) {
        for (zint n : large) cases.push_back({kind, n});
    }
    return cases;
}

// A random reflector H = I - tau v vᴴ of order n (real v unless complex); false when v is zero.
inline bool random_reflector(Random& random, zint n, bool complex, std::vector<Exact>& v, Exact& tau) {
    v.assign(static_cast<std::size_t>(n), Exact{});
    long double squares = 0;
    for (auto& x : v) {
        x = {random.uniform(), complex ? random.uniform() : 0.0};
        squares += x.re * x.re + x.im * x.im;
    }
    if (squares == 0) return false;
    tau = {2 / squares, 0};
    return true;
}

// Q B Qᴴ for a dense unitary Q (two random reflectors), in long double.
inline Wide similar(Random& random, const Wide& b, bool complex) {
    const zint n = b.rows;
    Wide c = b;
    for (int r = 0; r < 2; ++r) {
        std::vector<Exact> v;
        Exact tau;
        if (!random_reflector(random, n, complex, v, tau)) continue;
        apply_reflector(c, v, tau, false);
        // C := C H (H Hermitian): (H Cᴴ)ᴴ.
        Wide ct = op(c, 'C');
        apply_reflector(ct, v, tau, false);
        c = op(ct, 'C');
    }
    return c;
}

template <class T>
Matrix<T> from_wide(const Wide& w, zint pad) {
    Matrix<T> a(w.rows, w.cols, w.rows + pad);
    for (zint j = 0; j < w.cols; ++j) {
        for (zint i = 0; i < w.rows; ++i) a(i, j) = narrow_to<T>(w(i, j));
    }
    return a;
}

template <class T>
Matrix<T> eigen_matrix(Kind kind, zint n, std::uint64_t seed, zint pad = 2) {
    Random random(seed * 7919 + static_cast<std::uint64_t>(n));
    const bool complex = kIsComplex<T>;
    const auto entry = [&]() -> Exact { return {random.uniform(), complex ? random.uniform() : 0.0}; };
    Wide b(n, n);
    switch (kind) {
        case Kind::Random:
            for (auto& x : b.v) x = entry();
            break;
        case Kind::Zero:
            break;
        case Kind::Identity:
            for (zint i = 0; i < n; ++i) b(i, i) = {1, 0};
            break;
        case Kind::Jordan:
            // Jordan blocks of order up to 4 for 0.5, -1 and (complex data) 1 + i, mixed by a
            // unitary similarity.
            for (zint i = 0; i < n; ++i) {
                const int which = static_cast<int>((i / 4) % 3);
                b(i, i) = which == 0   ? Exact{0.5, 0}
                          : which == 1 ? Exact{-1, 0}
                                       : Exact{1, complex ? 1.0 : 0.0};
                if (i + 1 < n && (i + 1) % 4 != 0) b(i, i + 1) = {1, 0};
            }
            b = similar(random, b, complex);
            break;
        case Kind::Clustered:
        case Kind::Repeated:
            // Eigenvalues 1 + k·1e-9 (clustered) or exactly 2, 2, -3, -3, ... (repeated) on the
            // diagonal of an upper triangle, mixed by a unitary similarity.
            for (zint j = 0; j < n; ++j) {
                for (zint i = 0; i < j; ++i) b(i, j) = entry();
                b(j, j) = kind == Kind::Clustered ? Exact{1 + 1e-9L * (j % 5), 0}
                                                  : Exact{(j / 2) % 2 == 0 ? 2.0L : -3.0L, 0};
            }
            b = similar(random, b, complex);
            break;
        case Kind::Companion:
            // The companion matrix of a random monic polynomial.
            for (zint i = 0; i < n; ++i) b(i, n - 1) = entry();
            for (zint i = 1; i < n; ++i) b(i, i - 1) = {1, 0};
            break;
        case Kind::Graded: {
            // D A D⁻¹ with D from 1e-150 to 1e150: entries from about 1e-300 to 1e300.
            for (zint j = 0; j < n; ++j) {
                for (zint i = 0; i < n; ++i) {
                    const Exact x = entry();
                    const long double exponent =
                        n > 1 ? 300.0L * static_cast<long double>(i - j) / static_cast<long double>(n - 1)
                              : 0;
                    const long double f = std::pow(10.0L, exponent);
                    b(i, j) = {x.re * f, x.im * f};
                }
            }
            break;
        }
        case Kind::Triangular:
            for (zint j = 0; j < n; ++j) {
                for (zint i = 0; i <= j; ++i) b(i, j) = entry();
            }
            break;
        case Kind::Hessenberg:
            for (zint j = 0; j < n; ++j) {
                for (zint i = 0; i <= std::min(j + 1, n - 1); ++i) b(i, j) = entry();
            }
            break;
    }
    return from_wide<T>(b, pad);
}

// ||A - Z T Zᴴ||₁ / (n max(||A||₁, safe min) eps)
template <class T>
double schur_residual(const Matrix<T>& a, const Matrix<T>& t, const Matrix<T>& z) {
    const Wide wz = widen_matrix(z);
    const Wide ztz = multiply(multiply(wz, widen_matrix(t)), op(wz, 'C'));
    const long double norm = std::max<long double>(one_norm(a), 1e-300L);
    return static_cast<double>(difference_norm(widen_matrix(a), ztz) /
                               (std::max<zint>(a.rows, 1) * norm * epsilon()));
}

// ||I - Zᴴ Z||₁ / (n eps)
template <class T>
double unitary_residual(const Matrix<T>& z) {
    return column_orthogonality(widen_matrix(z));
}

// T is in Schur form: upper triangular (complex), or upper quasi-triangular with standardised 2 by 2
// blocks (equal diagonal entries, off-diagonal entries of opposite signs) and no two adjacent
// nonzero subdiagonal entries (real).
template <class T>
::testing::AssertionResult is_schur_form(const Matrix<T>& t) {
    const zint n = t.rows;
    for (zint j = 0; j < n; ++j) {
        for (zint i = j + 1; i < n; ++i) {
            const bool allowed = !kIsComplex<T> && i == j + 1;
            if (!allowed && !(t.at(i, j).re == 0 && t.at(i, j).im == 0))
                return ::testing::AssertionFailure() << "T(" << i << ", " << j << ") is not zero";
        }
    }
    if constexpr (!kIsComplex<T>) {
        for (zint i = 0; i + 1 < n; ++i) {
            if (t(i + 1, i) == 0) continue;
            if (i + 2 < n && t(i + 2, i + 1) != 0)
                return ::testing::AssertionFailure() << "adjacent subdiagonal entries at " << i;
            if (t(i, i) != t(i + 1, i + 1) || !(t(i, i + 1) * t(i + 1, i) < 0))
                return ::testing::AssertionFailure() << "the 2 by 2 block at " << i << " is not standardised";
        }
    }
    return ::testing::AssertionSuccess();
}

// The same bits.
template <class T>
bool same_bits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

}  // namespace zor::test
