// sytd2: the unblocked tridiagonal reduction. Each step makes a reflector of the column beside the
// diagonal and applies it to the triangle left to reduce from both sides as one rank-2 update.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/symmetric/reflect.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

template <class T>
void sytd2(char uplo, zint n, T* a, zint lda, double* d, double* e, T* tau, zint& info) {
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(routine_name<T>("DSYTD2", "ZHETD2"),
                           {{!upper && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}});
    if (info != 0 || n <= 0) return;
    const auto A = [&](zint i, zint j) -> T& { return a[i + j * lda]; };
    if (upper) {
        A(n - 1, n - 1) = real_part(A(n - 1, n - 1));
        // Zero-based: the reflector of step i annihilates A(0 : i - 1, i + 1).
        for (zint i = n - 2; i >= 0; --i) {
            T alpha = A(i, i + 1), taui;
            larfg(i + 1, alpha, &A(0, i + 1), 1, taui);
            e[i] = real(alpha);
            if (!is_zero(taui)) {
                A(i, i + 1) = one<T>();
                reflect_hermitian(uplo, i + 1, a, lda, &A(0, i + 1), taui, tau);
            } else {
                A(i, i) = real_part(A(i, i));
            }
            A(i, i + 1) = from_real<T>(e[i]);
            d[i + 1] = real(A(i + 1, i + 1));
            tau[i] = taui;
        }
        d[0] = real(A(0, 0));
    } else {
        A(0, 0) = real_part(A(0, 0));
        // The reflector of step i annihilates A(i + 2 : n - 1, i).
        for (zint i = 0; i < n - 1; ++i) {
            T alpha = A(i + 1, i), taui;
            larfg(n - i - 1, alpha, &A(min_of(i + 2, n - 1), i), 1, taui);
            e[i] = real(alpha);
            if (!is_zero(taui)) {
                A(i + 1, i) = one<T>();
                reflect_hermitian(uplo, n - i - 1, &A(i + 1, i + 1), lda, &A(i + 1, i), taui, tau + i);
            } else {
                A(i + 1, i + 1) = real_part(A(i + 1, i + 1));
            }
            A(i + 1, i) = from_real<T>(e[i]);
            d[i] = real(A(i, i));
            tau[i] = taui;
        }
        d[n - 1] = real(A(n - 1, n - 1));
    }
}

}  // namespace zor

ZOR_INSTANTIATE(sytd2)
