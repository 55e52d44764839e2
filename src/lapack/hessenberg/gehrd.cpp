// gehrd: the blocked Hessenberg reduction. Panels of NB columns are reduced by lahr2, which also
// returns Y = A V T; the trailing columns then take the block reflector from the right with one
// GEMM (A := A - Y Vᴴ) and a triangular correction for the panel's own columns, and from the
// left with larfb. The last columns (fewer than the crossover) go through gehd2.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr zint kLargestBlock = 64;
constexpr zint kLdt = kLargestBlock + 1;  // the panel's T follows n·NB elements of Y in work
constexpr zint kTriangleSize = kLdt * kLargestBlock;

}  // namespace

template <class T>
zint check_gehrd(zint n, zint ilo, zint ihi, zint lda, zint lwork) {
    return check_arguments(routine_name<T>("DGEHRD", "ZGEHRD"), {{n < 0, 1},
                                                                 {ilo < 1 || ilo > max_of(1, n), 2},
                                                                 {ihi < min_of(ilo, n) || ihi > n, 3},
                                                                 {lda < max_of(1, n), 5},
                                                                 {lwork != -1 && lwork < max_of(1, n), 8}});
}

template <class T>
zint gehrd_workspace(zint n, zint ilo, zint ihi) {
    const zint nb =
        min_of(kLargestBlock, ilaenv(1, routine_name<T>("DGEHRD", "ZGEHRD"), " ", n, ilo, ihi, -1));
    return n == 0 ? 1 : n * nb + kTriangleSize;
}

template <class T>
void gehrd(zint n, zint ilo, zint ihi, T* a, zint lda, T* tau, T* work, zint lwork, zint& info) {
    info = check_gehrd<T>(n, ilo, ihi, lda, lwork);
    if (info != 0) return;
    const char* name = routine_name<T>("DGEHRD", "ZGEHRD");
    zint nb = min_of(kLargestBlock, ilaenv(1, name, " ", n, ilo, ihi, -1));
    const zint optimal = gehrd_workspace<T>(n, ilo, ihi);
    work[0] = from_real<T>(static_cast<double>(optimal));
    if (lwork == -1) return;

    for (zint i = 0; i < ilo - 1; ++i) tau[i] = zero<T>();
    for (zint i = max_of(1, ihi) - 1; i < n - 1; ++i) tau[i] = zero<T>();
    const zint nh = ihi - ilo + 1;
    if (nh <= 1) {
        work[0] = one<T>();
        return;
    }

    zint nbmin = 2, nx = 0;
    if (nb > 1 && nb < nh) {
        nx = max_of(nb, ilaenv(3, name, " ", n, ilo, ihi, -1));
        if (nx < nh && lwork < n * nb + kTriangleSize) {
            // Less work than the optimal block needs: the largest block that fits, if worth it.
            nbmin = max_of(2, ilaenv(2, name, " ", n, ilo, ihi, -1));
            nb = lwork >= n * nbmin + kTriangleSize ? (lwork - kTriangleSize) / n : 1;
        }
    }

    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    const auto A = [&](zint i, zint j) { return a + i + j * lda; };
    // Zero-based column i of the panel's first reflector.
    zint i = ilo - 1;
    if (nb >= nbmin && nb < nh) {
        T* y = work;
        T* t = work + n * nb;
        for (; i < ihi - 1 - nx; i += nb) {
            const zint ib = min_of(nb, ihi - 1 - i);
            lahr2(ihi, i + 1, ib, A(0, i), lda, tau + i, t, kLdt, y, n);
            // A(0:ihi, i+ib:ihi) -= Y V(i+ib:ihi, :)ᴴ, the rows of V that meet those columns; the
            // last reflector's unit element lies among them.
            T* corner = A(i + ib, i + ib - 1);
            const T saved = *corner;
            *corner = one;
            Blas<T>::gemm('N', adjoint, ihi, ihi - i - ib, ib, minus_one, y, n, A(i + ib, i), lda, one,
                          A(0, i + ib), lda);
            *corner = saved;
            // The panel's own columns, rows 0 .. i: A -= Y V1ᴴ with V1 the unit lower triangle.
            Blas<T>::trmm('R', 'L', adjoint, 'U', i + 1, ib - 1, one, A(i + 1, i), lda, y, n);
            for (zint j = 0; j + 1 < ib; ++j)
                Blas<T>::axpy(i + 1, minus_one, y + n * j, 1, A(0, i + j + 1), 1);
            // A(i+1:ihi, i+ib:n) := Hᴴ A from the left.
            larfb('L', adjoint, 'F', 'C', ihi - i - 1, n - i - ib, ib, A(i + 1, i), lda, t, kLdt,
                  A(i + 1, i + ib), lda, y, n);
        }
    }
    zint sub_info = 0;
    gehd2(n, i + 1, ihi, a, lda, tau, work, sub_info);
    work[0] = from_real<T>(static_cast<double>(optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(gehrd)
ZOR_INSTANTIATE(check_gehrd)
ZOR_INSTANTIATE(gehrd_workspace)
