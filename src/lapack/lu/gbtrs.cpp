// dgbtrs / zgbtrs: solves with the band factors of dgbtrf; dgbsv / zgbsv: factor and solve.

#include "lapack/element.hpp"
#include "lapack/lu/lu.hpp"
#include "service/lsame.hpp"

namespace zor {

namespace {

template <class T>
T adjoint_if(bool conjugate, const T& x) {
    return conjugate ? Element<T>::conj(x) : x;
}

// x := inv(op(U)) x for the band factor U with kd superdiagonals (diagonal in row kd of ab).
template <class T>
void solve_band_upper(char op, zint n, zint kd, const T* ab, zint ldab, T* x) {
    using E = Element<T>;
    const auto u = [&](zint i, zint j) -> const T& { return ab[kd + i - j + j * ldab]; };
    if (op == 'N') {
        for (zint j = n - 1; j >= 0; --j) {
            if (E::is_zero(x[j])) continue;
            x[j] = E::div(x[j], u(j, j));
            const T t = x[j];
            for (zint i = max_of(0, j - kd); i < j; ++i) x[i] = E::sub(x[i], E::mul(t, u(i, j)));
        }
        return;
    }
    const bool conjugate = op == 'C';
    for (zint j = 0; j < n; ++j) {
        T t = x[j];
        for (zint i = max_of(0, j - kd); i < j; ++i)
            t = E::sub(t, E::mul(adjoint_if(conjugate, u(i, j)), x[i]));
        x[j] = E::div(t, adjoint_if(conjugate, u(j, j)));
    }
}

template <class T>
void gbtrs(char trans, zint n, zint kl, zint ku, zint nrhs, const T* ab, zint ldab, const zint* ipiv, T* b,
           zint ldb, zint& info) {
    using E = Element<T>;
    const bool plain = lsame(trans, 'N');
    const bool transposed = lsame(trans, 'T');
    info = check_arguments(E::name("DGBTRS", "ZGBTRS"), {{!plain && !transposed && !lsame(trans, 'C'), 1},
                                                         {n < 0, 2},
                                                         {kl < 0, 3},
                                                         {ku < 0, 4},
                                                         {nrhs < 0, 5},
                                                         {ldab < 2 * kl + ku + 1, 7},
                                                         {ldb < max_of(1, n), 10}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    const zint kd = kl + ku;
    const T one = E::one(), minus_one = E::from_real(-1.0);
    const auto multipliers = [&](zint j) { return ab + kd + 1 + j * ldab; };
    if (plain) {
        // L is applied as the elimination made it: interchange j, then column j's multipliers.
        if (kl > 0) {
            for (zint j = 0; j + 1 < n; ++j) {
                const zint count = min_of(kl, n - j - 1), pivot = ipiv[j] - 1;
                if (pivot != j) E::swap(nrhs, b + pivot, ldb, b + j, ldb);
                E::geru(count, nrhs, minus_one, multipliers(j), 1, b + j, ldb, b + j + 1, ldb);
            }
        }
        for (zint r = 0; r < nrhs; ++r) solve_band_upper('N', n, kd, ab, ldab, b + r * ldb);
        return;
    }
    const char op = transposed ? 'T' : kAdjoint<T>;
    for (zint r = 0; r < nrhs; ++r) solve_band_upper(op, n, kd, ab, ldab, b + r * ldb);
    if (kl == 0) return;
    for (zint j = n - 2; j >= 0; --j) {
        const zint count = min_of(kl, n - j - 1);
        if (op == 'C') {
            // conj(b(j, :)) -= B(j+1.., :)ᴴ l, with b's row conjugated around the product.
            for (zint r = 0; r < nrhs; ++r) b[j + r * ldb] = E::conj(b[j + r * ldb]);
            E::gemv('C', count, nrhs, minus_one, b + j + 1, ldb, multipliers(j), 1, one, b + j, ldb);
            for (zint r = 0; r < nrhs; ++r) b[j + r * ldb] = E::conj(b[j + r * ldb]);
        } else {
            E::gemv('T', count, nrhs, minus_one, b + j + 1, ldb, multipliers(j), 1, one, b + j, ldb);
        }
        const zint pivot = ipiv[j] - 1;
        if (pivot != j) E::swap(nrhs, b + pivot, ldb, b + j, ldb);
    }
}

template <class T>
void gbsv(zint n, zint kl, zint ku, zint nrhs, T* ab, zint ldab, zint* ipiv, T* b, zint ldb, zint& info) {
    info = check_arguments(Element<T>::name("DGBSV ", "ZGBSV "), {{n < 0, 1},
                                                                  {kl < 0, 2},
                                                                  {ku < 0, 3},
                                                                  {nrhs < 0, 4},
                                                                  {ldab < 2 * kl + ku + 1, 6},
                                                                  {ldb < max_of(n, 1), 9}});
    if (info != 0) return;
    const int stopped = gbtrf_checked(n, n, kl, ku, ab, ldab, ipiv, info);
    if (info == 0 && stopped == 0) gbtrs('N', n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

}  // namespace

void dgbtrs(const char& trans, const zint& n, const zint& kl, const zint& ku, const zint& nrhs,
            const double* ab, const zint& ldab, const zint* ipiv, double* b, const zint& ldb, zint& info) {
    gbtrs(trans, n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

void zgbtrs(const char& trans, const zint& n, const zint& kl, const zint& ku, const zint& nrhs,
            const zcomplex* ab, const zint& ldab, const zint* ipiv, zcomplex* b, const zint& ldb,
            zint& info) {
    gbtrs(trans, n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

void dgbsv(const zint& n, const zint& kl, const zint& ku, const zint& nrhs, double* ab, const zint& ldab,
           zint* ipiv, double* b, const zint& ldb, zint& info) {
    gbsv(n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

void zgbsv(const zint& n, const zint& kl, const zint& ku, const zint& nrhs, zcomplex* ab, const zint& ldab,
           zint* ipiv, zcomplex* b, const zint& ldb, zint& info) {
    gbsv(n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb, info);
}

}  // namespace zor
