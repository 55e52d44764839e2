// gbtrs: solves with the band factors of gbtrf.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"

namespace zor {

namespace {

// x := inv(op(U)) x for the band factor U with kd superdiagonals (diagonal in row kd of ab).
template <class T>
void solve_band_upper(char op, zint n, zint kd, const T* ab, zint ldab, T* x) {
    const auto u = [&](zint i, zint j) -> const T& { return ab[kd + i - j + j * ldab]; };
    if (op == 'N') {
        for (zint j = n - 1; j >= 0; --j) {
            if (is_zero(x[j])) continue;
            x[j] = x[j] / u(j, j);
            const T t = x[j];
            for (zint i = max_of(0, j - kd); i < j; ++i) x[i] = x[i] - t * u(i, j);
        }
        return;
    }
    const bool conjugate = op == 'C';
    for (zint j = 0; j < n; ++j) {
        T t = x[j];
        for (zint i = max_of(0, j - kd); i < j; ++i) t = t - conj_if(conjugate, u(i, j)) * x[i];
        x[j] = t / conj_if(conjugate, u(j, j));
    }
}

}  // namespace

template <class T>
void gbtrs(char trans, zint n, zint kl, zint ku, zint nrhs, const T* ab, zint ldab, const zint* ipiv, T* b,
           zint ldb, zint& info) {
    const bool plain = lsame(trans, 'N');
    const bool transposed = lsame(trans, 'T');
    info = check_arguments(routine_name<T>("DGBTRS", "ZGBTRS"),
                           {{!plain && !transposed && !lsame(trans, 'C'), 1},
                            {n < 0, 2},
                            {kl < 0, 3},
                            {ku < 0, 4},
                            {nrhs < 0, 5},
                            {ldab < 2 * kl + ku + 1, 7},
                            {ldb < max_of(1, n), 10}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    const zint kd = kl + ku;
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const auto multipliers = [&](zint j) { return ab + kd + 1 + j * ldab; };
    if (plain) {
        // L is applied as the elimination made it: interchange j, then column j's multipliers.
        if (kl > 0) {
            for (zint j = 0; j + 1 < n; ++j) {
                const zint count = min_of(kl, n - j - 1), pivot = ipiv[j] - 1;
                if (pivot != j) Blas<T>::swap(nrhs, b + pivot, ldb, b + j, ldb);
                Blas<T>::geru(count, nrhs, minus_one, multipliers(j), 1, b + j, ldb, b + j + 1, ldb);
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
            for (zint r = 0; r < nrhs; ++r) b[j + r * ldb] = conj(b[j + r * ldb]);
            Blas<T>::gemv('C', count, nrhs, minus_one, b + j + 1, ldb, multipliers(j), 1, one, b + j, ldb);
            for (zint r = 0; r < nrhs; ++r) b[j + r * ldb] = conj(b[j + r * ldb]);
        } else {
            Blas<T>::gemv('T', count, nrhs, minus_one, b + j + 1, ldb, multipliers(j), 1, one, b + j, ldb);
        }
        const zint pivot = ipiv[j] - 1;
        if (pivot != j) Blas<T>::swap(nrhs, b + pivot, ldb, b + j, ldb);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(gbtrs)
