// geqp3: QR with column pivoting, level-3 where it can be: the fixed columns are factored by geqrf
// and the rest of A updated by ormqr; the free columns go in blocks through laqps (whose deferred
// updates end in one gemm), and the last ones (fewer than the crossover) through laqp2.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"

namespace zor {

namespace {

// Real data keeps the two norm vectors in work, complex data in rwork.
template <class T>
zint norm_room(zint n) {
    return kIsComplex<T> ? 0 : 2 * n;
}

// The least workspace: the norms (real data) and n + 1 elements.
template <class T>
zint least_workspace(zint m, zint n) {
    return min_of(m, n) > 0 ? norm_room<T>(n) + n + 1 : 1;
}

}  // namespace

template <class T>
zint check_geqp3(zint m, zint n, zint lda, zint lwork) {
    return check_arguments(routine_name<T>("DGEQP3", "ZGEQP3"),
                           {{m < 0, 1},
                            {n < 0, 2},
                            {lda < max_of(1, m), 4},
                            {lwork != -1 && lwork < least_workspace<T>(m, n), 8}});
}

template <class T>
void geqp3(zint m, zint n, T* a, zint lda, zint* jpvt, T* tau, T* work, zint lwork, double* rwork,
           zint& info) {
    const char* name = routine_name<T>("DGEQP3", "ZGEQP3");
    const zint minmn = min_of(m, n);
    const bool query = lwork == -1;
    info = check_geqp3<T>(m, n, lda, lwork);
    if (info != 0) return;
    const zint needed = least_workspace<T>(m, n);
    const zint optimal = minmn > 0 ? norm_room<T>(n) + (n + 1) * ilaenv(1, name, " ", m, n, -1, -1) : 1;
    work[0] = from_real<T>(static_cast<double>(optimal));
    // Even without a step to take, jpvt is numbered (fixed columns first).
    if (query) return;
    const auto A = [&](zint i, zint j) -> T* { return a + i + j * lda; };

    // Fixed columns to the front, in their order; every column numbered.
    zint fixed = 0;
    for (zint j = 0; j < n; ++j) {
        if (jpvt[j] != 0) {
            if (j != fixed) {
                Blas<T>::swap(m, A(0, j), 1, A(0, fixed), 1);
                jpvt[j] = jpvt[fixed];
            } else {
                jpvt[j] = j + 1;
            }
            jpvt[fixed] = j + 1;
            ++fixed;
        } else {
            jpvt[j] = j + 1;
        }
    }

    zint used = needed;
    zint sub_info = 0;
    if (fixed > 0) {
        const zint na = min_of(m, fixed);
        // A stop asked for by the progress handler leaves the matrix partly factored.
        if (geqrf(m, na, a, lda, tau, work, lwork, sub_info)) return;
        used = max_of(used, static_cast<zint>(real(work[0])));
        // With no rows there is nothing to apply (and lwork may be 1, too small for ormqr).
        if (na > 0 && na < n) {
            ormqr('L', kAdjoint<T>, m, n - na, na, a, lda, tau, A(0, na), lda, work, lwork, sub_info);
            used = max_of(used, static_cast<zint>(real(work[0])));
        }
    }

    if (fixed < minmn) {
        const zint sm = m - fixed, sn = n - fixed, sminmn = minmn - fixed;
        const zint room = norm_room<T>(sn);
        zint nb = ilaenv(1, name, " ", sm, sn, -1, -1);
        zint nbmin = 2, crossover = 0;
        if (nb > 1 && nb < sminmn) {
            crossover = max_of(0, ilaenv(3, name, " ", sm, sn, -1, -1));
            if (crossover < sminmn) {
                const zint blocked_room = room + (sn + 1) * nb;
                used = max_of(used, blocked_room);
                if (lwork < blocked_room) {
                    nb = (lwork - room) / (sn + 1);
                    nbmin = max_of(2, ilaenv(2, name, " ", sm, sn, -1, -1));
                }
            }
        }
        double* vn1 = kIsComplex<T> ? rwork : reinterpret_cast<double*>(work);
        double* vn2 = vn1 + n;
        T* scratch = kIsComplex<T> ? work : work + 2 * n;
        for (zint j = fixed; j < n; ++j) {
            vn1[j] = Blas<T>::nrm2(sm, A(fixed, j), 1);
            vn2[j] = vn1[j];
        }
        zint j = fixed;
        if (nb >= nbmin && nb < sminmn && crossover < sminmn) {
            const zint blocked_end = minmn - crossover;
            while (j < blocked_end) {
                const zint jb = min_of(nb, blocked_end - j);
                zint done = 0;
                laqps(m, n - j, j, jb, done, A(0, j), lda, jpvt + j, tau + j, vn1 + j, vn2 + j, scratch,
                      scratch + jb, n - j);
                j += done;
            }
        }
        if (j < minmn) laqp2(m, n - j, j, A(0, j), lda, jpvt + j, tau + j, vn1 + j, vn2 + j, scratch);
    }
    work[0] = from_real<T>(static_cast<double>(used));
}

}  // namespace zor

ZOR_INSTANTIATE(geqp3)
ZOR_INSTANTIATE(check_geqp3)
