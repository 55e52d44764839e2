// trsen: the selected eigenvalues of a Schur form collected in its leading rows, block by block in
// their order, by trexc; then the eigenvalues of the reordered form. (Only the reordering: the
// condition estimates of the published routine are not provided.)

#include <cmath>

#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// The eigenvalues of the real Schur form: the diagonal, and ±sqrt(|b| |c|) for each 2 by 2 block.
void real_eigenvalues(zint n, const double* t, zint ldt, Eigenvalues<double> w) {
    const auto T = [&](zint i, zint j) { return t[i + j * ldt]; };
    for (zint k = 0; k < n; ++k) w.set(k, {T(k, k), 0.0});
    for (zint k = 0; k + 1 < n; ++k) {
        if (T(k + 1, k) == 0.0) continue;
        const double im = std::sqrt(std::fabs(T(k, k + 1))) * std::sqrt(std::fabs(T(k + 1, k)));
        w.im[k] = im;
        w.im[k + 1] = -im;
    }
}

}  // namespace

template <class T>
void trsen(char job, char compq, const zint* select, zint n, T* t, zint ldt, T* q, zint ldq, Eigenvalues<T> w,
           zint& m, T* work, zint lwork, zint& info) {
    const bool wantq = lsame(compq, 'V');
    const auto sub = [&](zint k) { return t[k + 1 + k * ldt]; };  // T(k + 1, k), zero-based k
    // The size of the selected subspace: a real pair counts whole when either entry is selected.
    m = 0;
    for (zint k = 0; k < n; ++k) {
        if (kIsComplex<T> || k + 1 == n || is_zero(sub(k))) {
            if (select[k] != 0) ++m;
        } else {
            if (select[k] != 0 || select[k + 1] != 0) m += 2;
            ++k;
        }
    }
    const zint least = kIsComplex<T> ? 1 : max_of(1, n);
    info = check_arguments(routine_name<T>("DTRSEN", "ZTRSEN"),
                           {{!lsame(job, 'N'), 1},
                            {!lsame(compq, 'N') && !wantq, 2},
                            {n < 0, 4},
                            {ldt < max_of(1, n), 6},
                            {ldq < 1 || (wantq && ldq < n), 8},
                            {lwork != -1 && lwork < least, kIsComplex<T> ? 14 : 15}});
    if (info != 0) return;
    work[0] = from_real<T>(static_cast<double>(least));
    if (lwork == -1) return;

    if (m != n && m != 0) {
        zint ks = 0;
        for (zint k = 1; k <= n; ++k) {
            bool chosen = select[k - 1] != 0;
            bool pair = false;
            if constexpr (!kIsComplex<T>) {
                if (k < n && sub(k - 1) != 0.0) {
                    pair = true;
                    chosen = chosen || select[k] != 0;
                }
            }
            if (chosen) {
                ++ks;
                zint from = k, to = ks, ierr = 0;
                if (k != ks) trexc(compq, n, t, ldt, q, ldq, from, to, work, ierr);
                if (ierr != 0) {
                    info = 1;
                    break;
                }
                if (pair) ++ks;
            }
            if (pair) ++k;
        }
    }
    if constexpr (kIsComplex<T>) {
        for (zint k = 0; k < n; ++k) w.set(k, t[k + k * ldt]);
    } else {
        real_eigenvalues(n, t, ldt, w);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(trsen)
