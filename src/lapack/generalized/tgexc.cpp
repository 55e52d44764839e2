// tgexc: moves the diagonal block of a generalized Schur pair at row ifst to row ilst by exchanges
// of neighbouring blocks (tgex2), as trexc does for a Schur form. For real data ifst and ilst are
// moved to the first rows of their blocks (a 2 by 2 block is moved whole) and ilst is adjusted so
// that the block lands where the caller pointed; a refused exchange stops the move there (info 1,
// ilst the block's current row).

#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"

namespace zor {

namespace {

// The order of the block starting at row j (real data: 2 when A(j + 1, j) is nonzero).
template <class T>
zint block_at(const OneBased<T>& a, zint n, zint j) {
    if constexpr (kIsComplex<T>) {
        return 1;
    } else {
        return (j < n && a(j + 1, j) != 0.0) ? 2 : 1;
    }
}

}  // namespace

template <class T>
zint tgexc_workspace(zint n) {
    return kIsComplex<T> || n <= 1 ? 1 : 4 * n + 16;
}

template <class T>
zint check_tgexc(bool wantq, bool wantz, zint n, zint lda, zint ldb, zint ldq, zint ldz, zint ifst, zint ilst,
                 zint lwork) {
    const zint least = tgexc_workspace<T>(max_of(n, 0));
    return check_arguments(routine_name<T>("DTGEXC", "ZTGEXC"),
                           {{n < 0, 3},
                            {lda < max_of(1, n), 5},
                            {ldb < max_of(1, n), 7},
                            {ldq < 1 || (wantq && ldq < max_of(1, n)), 9},
                            {ldz < 1 || (wantz && ldz < max_of(1, n)), 11},
                            {ifst < 1 || ifst > n, 12},
                            {ilst < 1 || ilst > n, 13},
                            {!kIsComplex<T> && lwork < least && lwork != -1, 15}});
}

template <class T>
void tgexc(bool wantq, bool wantz, zint n, T* a, zint lda, T* b, zint ldb, T* q, zint ldq, T* z, zint ldz,
           zint& ifst, zint& ilst, T* work, zint lwork, zint& info) {
    info = check_tgexc<T>(wantq, wantz, n, lda, ldb, ldq, ldz, ifst, ilst, lwork);
    if (info != 0) return;
    if constexpr (!kIsComplex<T>) {
        work[0] = static_cast<double>(tgexc_workspace<T>(n));
        if (lwork == -1) return;
    }
    if (n <= 1) return;
    const OneBased<T> A{a, lda};
    // Both to the first rows of their blocks.
    if constexpr (!kIsComplex<T>) {
        if (ifst > 1 && A(ifst, ifst - 1) != 0.0) --ifst;
        if (ilst > 1 && A(ilst, ilst - 1) != 0.0) --ilst;
    }
    const zint nbf = block_at(A, n, ifst), nbl = block_at(A, n, ilst);
    if (ifst == ilst) return;
    zint here = ifst;
    zint ierr = 0;
    if (ifst < ilst) {
        if (nbf == 2 && nbl == 1) --ilst;
        if (nbf == 1 && nbl == 2) ++ilst;
        while (here < ilst) {
            const zint next = block_at(A, n, here + nbf);
            tgex2(wantq, wantz, n, a, lda, b, ldb, q, ldq, z, ldz, here, nbf, next, ierr);
            if (ierr != 0) {
                info = 1;
                ilst = here;
                return;
            }
            here += next;
        }
    } else {
        while (here > ilst) {
            const zint next = (here >= 3 && block_at(A, n, here - 2) == 2) ? 2 : 1;
            tgex2(wantq, wantz, n, a, lda, b, ldb, q, ldq, z, ldz, here - next, next, nbf, ierr);
            if (ierr != 0) {
                info = 1;
                ilst = here;
                return;
            }
            here -= next;
        }
    }
    ilst = here;
}

}  // namespace zor

ZOR_INSTANTIATE(tgexc)
ZOR_INSTANTIATE(check_tgexc)
ZOR_INSTANTIATE(tgexc_workspace)
