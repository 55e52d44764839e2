// orgtr: the Q of the tridiagonal reduction. Its reflectors are those of a QL (upper triangle) or
// QR (lower) factorization of order n - 1: the vectors move one column left (right), the last
// (first) row and column become those of the unit matrix, and orgql (orgqr) forms the rest.

#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

template <class T>
void orgtr(char uplo, zint n, T* a, zint lda, const T* tau, T* work, zint lwork, zint& info) {
    const bool upper = lsame(uplo, 'U');
    const bool query = lwork == -1;
    info = check_arguments(routine_name<T>("DORGTR", "ZUNGTR"), {{!upper && !lsame(uplo, 'L'), 1},
                                                                 {n < 0, 2},
                                                                 {lda < max_of(1, n), 4},
                                                                 {lwork < max_of(1, n - 1) && !query, 7}});
    if (info != 0) return;
    const zint order = max_of(n - 1, 0);
    const auto A = [&](zint i, zint j) -> T& { return a[i + j * lda]; };
    const auto generate = [&](T* q, zint work_size, zint& sub_info) {
        if (upper) {
            orgql(order, order, order, q, lda, tau, work, work_size, sub_info);
        } else {
            orgqr(order, order, order, q, lda, tau, work, work_size, sub_info);
        }
    };
    if (query) {
        // A query reads no array but work: the generator is asked with the caller's pointer.
        generate(a, -1, info);
        return;
    }
    if (n == 0) {
        work[0] = one<T>();
        return;
    }
    if (upper) {
        for (zint j = 0; j < n - 1; ++j) {
            for (zint i = 0; i < j; ++i) A(i, j) = A(i, j + 1);
            A(n - 1, j) = zero<T>();
        }
        for (zint i = 0; i < n - 1; ++i) A(i, n - 1) = zero<T>();
    } else {
        for (zint j = n - 1; j > 0; --j) {
            A(0, j) = zero<T>();
            for (zint i = j + 1; i < n; ++i) A(i, j) = A(i, j - 1);
        }
        for (zint i = 1; i < n; ++i) A(i, 0) = zero<T>();
    }
    A(upper ? n - 1 : 0, upper ? n - 1 : 0) = one<T>();
    zint sub_info = 0;
    generate(upper || n == 1 ? a : &A(1, 1), lwork, sub_info);
}

}  // namespace zor

ZOR_INSTANTIATE(orgtr)
