// larft: the triangular factor of a block reflector, one column of T per reflector: the new column
// is -tau(i) times the inner products of vector i with the earlier vectors, multiplied by the part
// of T already formed.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

// y := y + alpha · A · conj(x) for the count by length matrix A and the row x (stride ldx): the
// inner products of rowwise vectors, where x holds vᴴ. Real data needs no conjugate: one gemv.
template <class T>
void add_row_products(zint count, zint length, T alpha, const T* a, zint lda, const T* x, zint ldx, T* y) {
    if (count <= 0 || length <= 0) return;
    if constexpr (kIsComplex<T>) {
        Blas<T>::gemm('N', 'C', count, 1, length, alpha, a, lda, x, ldx, one<T>(), y, count);
    } else {
        Blas<T>::gemv('N', count, length, alpha, a, lda, x, ldx, one<T>(), y, 1);
    }
}

}  // namespace

template <class T>
void larft(char direct, char storev, zint n, zint k, const T* v, zint ldv, const T* tau, T* t, zint ldt) {
    if (n <= 0) return;
    const bool columnwise = lsame(storev, 'C');
    const T one = zor::one<T>();
    const auto V = [&](zint i, zint j) -> const T& { return v[i + j * ldv]; };
    const auto Tm = [&](zint i, zint j) -> T& { return t[i + j * ldt]; };
    if (lsame(direct, 'F')) {
        for (zint i = 0; i < k; ++i) {
            if (is_zero(tau[i])) {
                for (zint j = 0; j <= i; ++j) Tm(j, i) = zero<T>();
                continue;
            }
            const T scale = -tau[i];
            T* column = &Tm(0, i);
            if (columnwise) {
                // T(1:i-1, i) := -tau(i) V(i:n, 1:i-1)ᴴ v_i, the unit element of v_i taken apart.
                for (zint j = 0; j < i; ++j) column[j] = scale * conj(V(i, j));
                if (i > 0 && i + 1 < n)
                    Blas<T>::gemv(kAdjoint<T>, n - i - 1, i, scale, &V(i + 1, 0), ldv, &V(i + 1, i), 1, one,
                                  column, 1);
            } else {
                for (zint j = 0; j < i; ++j) column[j] = scale * V(j, i);
                add_row_products(i, n - i - 1, scale, &V(0, i + 1), ldv, &V(i, i + 1), ldv, column);
            }
            if (i > 0) Blas<T>::trmv('U', 'N', 'N', i, t, ldt, column, 1);
            Tm(i, i) = tau[i];
        }
        return;
    }
    for (zint i = k - 1; i >= 0; --i) {
        if (is_zero(tau[i])) {
            for (zint j = i; j < k; ++j) Tm(j, i) = zero<T>();
            continue;
        }
        const zint later = k - 1 - i;
        if (later > 0) {
            // T(i+1:k, i) := -tau(i) V(:, i+1:k)ᴴ v_i, where v_i ends in its unit element at n - k + i.
            const T scale = -tau[i];
            T* column = &Tm(i + 1, i);
            const zint unit = n - k + i;
            if (columnwise) {
                for (zint j = 0; j < later; ++j) column[j] = scale * conj(V(unit, i + 1 + j));
                if (unit > 0)
                    Blas<T>::gemv(kAdjoint<T>, unit, later, scale, &V(0, i + 1), ldv, &V(0, i), 1, one,
                                  column, 1);
            } else {
                for (zint j = 0; j < later; ++j) column[j] = scale * V(i + 1 + j, unit);
                add_row_products(later, unit, scale, &V(i + 1, 0), ldv, &V(i, 0), ldv, column);
            }
            Blas<T>::trmv('L', 'N', 'N', later, &Tm(i + 1, i + 1), ldt, column, 1);
        }
        Tm(i, i) = tau[i];
    }
}

}  // namespace zor

ZOR_INSTANTIATE(larft)
