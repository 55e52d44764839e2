// tgsen: reorders a generalized Schur pair so that the selected eigenvalues lead it (the published
// ijob = 0: no condition estimates), block by block in their order through tgexc, and recomputes
// the eigenvalues from the reordered pair: P's diagonal made non-negative (real data: negating a
// row; complex data: scaling it by the unit phase), a real 2 by 2 block's values by pair_values.

#include <cmath>

#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"

namespace zor {

template <class T>
void tgsen(bool wantq, bool wantz, const zint* select, zint n, T* a, zint lda, T* b, zint ldb,
           Eigenvalues<T> alpha, T* beta, T* q, zint ldq, T* z, zint ldz, zint& m, zint& info) {
    info = 0;
    m = 0;
    const OneBased<T> A{a, lda}, B{b, ldb};
    auto pair_at = [&](zint k) {
        if constexpr (kIsComplex<T>) {
            return false;
        } else {
            return k < n && A(k + 1, k) != 0.0;
        }
    };
    for (zint k = 1; k <= n;) {
        const bool pair = pair_at(k);
        if (select[k - 1] != 0 || (pair && select[k] != 0)) m += pair ? 2 : 1;
        k += pair ? 2 : 1;
    }
    zint ks = 0;
    for (zint k = 1; k <= n && info == 0;) {
        const bool pair = pair_at(k);
        if (select[k - 1] != 0 || (pair && select[k] != 0)) {
            ++ks;
            zint kk = k, target = ks, ierr = 0;
            if (kk != target) {
                T dummy[1];
                tgexc(wantq, wantz, n, a, lda, b, ldb, q, ldq, z, ldz, kk, target, dummy,
                      kIsComplex<T> ? 1 : tgexc_workspace<T>(n), ierr);
                if (ierr != 0) info = 1;
            }
            if (pair) ++ks;
        }
        k += pair ? 2 : 1;
    }
    // The eigenvalues of the reordered pair, P's diagonal non-negative.
    const double safmin = dlamch("S");
    for (zint k = 1; k <= n;) {
        if (pair_at(k)) {
            if constexpr (!kIsComplex<T>) {
                double ar[2], ai[2], br[2];
                if (!pair_values(A.at(k, k), lda, B.at(k, k), ldb, safmin, ar, ai, br)) {
                    double s1 = 0.0, s2 = 0.0, w1 = 0.0, w2 = 0.0, wi = 0.0;
                    lag2(A.at(k, k), lda, B.at(k, k), ldb, safmin * 100.0, s1, s2, w1, w2, wi);
                    ar[0] = w1;
                    ar[1] = w2;
                    ai[0] = ai[1] = 0.0;
                    br[0] = s1;
                    br[1] = s2;
                }
                for (int i = 0; i < 2; ++i) {
                    alpha.set(k - 1 + i, {ar[i], ai[i]});
                    beta[k - 1 + i] = br[i];
                }
            }
            k += 2;
            continue;
        }
        if constexpr (kIsComplex<T>) {
            const double size = abs(B(k, k));
            if (size > safmin) {
                const T phase = B(k, k) / size;
                B(k, k) = from_real<T>(size);
                Blas<T>::scal(n - k, conj(phase), B.at(k, k + 1), ldb);
                Blas<T>::scal(n - k + 1, conj(phase), A.at(k, k), lda);
                if (wantq) Blas<T>::scal(n, phase, q + (k - 1) * ldq, 1);
            } else {
                B(k, k) = T{};
            }
            alpha.set(k - 1, A(k, k));
        } else {
            if (B(k, k) < 0.0) {
                for (zint j = k; j <= n; ++j) {
                    A(k, j) = -A(k, j);
                    B(k, j) = -B(k, j);
                }
                if (wantq)
                    for (zint i = 0; i < n; ++i) q[i + (k - 1) * ldq] = -q[i + (k - 1) * ldq];
            }
            alpha.set(k - 1, {A(k, k), 0.0});
        }
        beta[k - 1] = B(k, k);
        ++k;
    }
}

}  // namespace zor

ZOR_INSTANTIATE(tgsen)
