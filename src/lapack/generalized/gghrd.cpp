// gghrd: the Hessenberg-triangular reduction of a pencil whose B is already upper triangular. Each
// column of A is cleared from the bottom up: a rotation of two rows zeroes an entry of A and
// creates one below the diagonal of B, which a rotation of two columns removes again. The rows go
// into Q, the columns into Z. ilaenv's query 7 chooses the algorithm where a blocked reduction
// exists; this is the published unblocked sweep, which is used for every size.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/generalized/generalized_support.hpp"

namespace zor {

template <class T>
zint check_gghrd(char compq, char compz, zint n, zint ilo, zint ihi, zint lda, zint ldb, zint ldq, zint ldz) {
    const bool wantq = lsame(compq, 'I') || lsame(compq, 'V');
    const bool wantz = lsame(compz, 'I') || lsame(compz, 'V');
    return check_arguments(routine_name<T>("DGGHRD", "ZGGHRD"), {{!valid_compq(compq), 1},
                                                                 {!valid_compq(compz), 2},
                                                                 {n < 0, 3},
                                                                 {ilo < 1, 4},
                                                                 {ihi > n || ihi < ilo - 1, 5},
                                                                 {lda < max_of(1, n), 7},
                                                                 {ldb < max_of(1, n), 9},
                                                                 {(wantq && ldq < n) || ldq < 1, 11},
                                                                 {(wantz && ldz < n) || ldz < 1, 13}});
}

template <class T>
void gghrd(char compq, char compz, zint n, zint ilo, zint ihi, T* a, zint lda, T* b, zint ldb, T* q, zint ldq,
           T* z, zint ldz, zint& info) {
    info = check_gghrd<T>(compq, compz, n, ilo, ihi, lda, ldb, ldq, ldz);
    if (info != 0) return;
    const bool wantq = !lsame(compq, 'N'), wantz = !lsame(compz, 'N');
    if (lsame(compq, 'I')) laset('F', n, n, zero<T>(), one<T>(), q, ldq);
    if (lsame(compz, 'I')) laset('F', n, n, zero<T>(), one<T>(), z, ldz);
    if (n <= 1) return;
    const OneBased<T> A{a, lda}, B{b, ldb}, Q{q, ldq}, Z{z, ldz};
    // B below its diagonal is zero by contract.
    for (zint j = 1; j < n; ++j)
        for (zint i = j + 1; i <= n; ++i) B(i, j) = zero<T>();
    for (zint jcol = ilo; jcol + 2 <= ihi; ++jcol) {
        for (zint jrow = ihi; jrow >= jcol + 2; --jrow) {
            double c = 0.0;
            T s{}, r{};
            // Rows jrow - 1 and jrow: A(jrow, jcol) := 0.
            lartg(A(jrow - 1, jcol), A(jrow, jcol), c, s, r);
            A(jrow - 1, jcol) = r;
            A(jrow, jcol) = zero<T>();
            rotate_rows(A, jrow - 1, jcol + 1, n, c, s);
            rotate_rows(B, jrow - 1, jrow - 1, n, c, s);
            if (wantq) rotate_columns(Q, jrow - 1, jrow, 1, n, c, conj(s));
            // Columns jrow and jrow - 1: B(jrow, jrow - 1) := 0.
            lartg(B(jrow, jrow), B(jrow, jrow - 1), c, s, r);
            B(jrow, jrow) = r;
            B(jrow, jrow - 1) = zero<T>();
            rotate_columns(A, jrow, jrow - 1, 1, ihi, c, s);
            rotate_columns(B, jrow, jrow - 1, 1, jrow - 1, c, s);
            if (wantz) rotate_columns(Z, jrow, jrow - 1, 1, n, c, s);
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(gghrd)
ZOR_INSTANTIATE(check_gghrd)
