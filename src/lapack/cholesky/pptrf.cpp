// pptrf: Cholesky factorisation in packed storage.
//
// The factorisation works in full-storage blocks copied out of the packed triangle when a work
// block can be had ("Memory"), because the level-3 kernels need full storage; without one
// ("No Memory") it works on the packed storage through the packed kernels.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"

namespace zor {

namespace {

// The diagonal step of every path: ajj = its real part less `sum`; a value that is not positive
// (or NaN) stays in place and info = j + 1. Returns the root, or 0 on failure.
template <class T>
double diagonal_root(T& cell, double sum, zint j, zint& info) {
    const double ajj = real(cell) - sum;
    if (!(ajj > 0.0)) {
        cell = from_real<T>(ajj);
        info = j + 1;
        return 0.0;
    }
    const double root = std::sqrt(ajj);
    cell = from_real<T>(root);
    return root;
}

// The published unblocked algorithm: upper, each column solved against the finished triangle before
// it; lower, each column scaled and its outer product taken from the triangle after it.
template <class T>
void pptrf_unblocked(bool upper, zint n, T* ap, zint& info) {
    for (zint j = 0; j < n; ++j) {
        T* column = column_of(ap, upper, n, j);
        if (upper) {
            Blas<T>::tpsm('U', kAdjoint<T>, 'N', j, 1, ap, column, 0, 0);
            if (diagonal_root(column[j], real(Blas<T>::dotc(j, column, 1, column, 1)), j, info) == 0.0)
                return;
        } else {
            const double root = diagonal_root(column[0], 0.0, j, info);
            if (root == 0.0) return;
            if (j + 1 < n) {
                Blas<T>::scal_real(n - j - 1, 1.0 / root, column + 1, 1);
                Blas<T>::hprk('L', n - j - 1, 1, -1.0, column + 1, 0, 0, column_of(ap, false, n, j + 1));
            }
        }
    }
}

// Full-storage blocks: block column J is copied out (for the upper triangle the block row J of U,
// jb by n - j0 with leading dimension nb, for the lower one the block column of L, n - j0 by jb with
// leading dimension n - j0), updated block by block with the earlier ones, each copied out in turn
// into the second half of the work block, factored, solved and copied back.
template <class T>
int pptrf_memory(bool upper, zint n, zint nb, T* ap, T* work, zint& info, const char* stage) {
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    T* current = work;
    T* earlier = work + n * nb;
    for (zint j0 = 0; j0 < n; j0 += nb) {
        const zint jb = min_of(nb, n - j0), span = n - j0;
        // Copies the part of block I (rows or columns i0..i0+ib-1) that meets the first `extent`
        // columns (rows) from j0 on into `to`, or back; only stored elements.
        const auto transfer = [&](zint i0, zint ib, T* to, bool out, zint extent) {
            for (zint c = 0; c < (upper ? extent : ib); ++c) {
                if (upper) {
                    const zint column = j0 + c, count = min_of(ib, column - i0 + 1);
                    T* packed = column_of(ap, true, n, column) + i0;
                    out ? Blas<T>::copy(count, packed, 1, to + c * nb, 1)
                        : Blas<T>::copy(count, to + c * nb, 1, packed, 1);
                } else {
                    const zint column = i0 + c, first = max_of(j0, column), count = j0 + extent - first;
                    T* packed = column_of(ap, false, n, column) + (first - column);
                    T* full = to + (first - j0) + c * span;
                    out ? Blas<T>::copy(count, packed, 1, full, 1) : Blas<T>::copy(count, full, 1, packed, 1);
                }
            }
        };
        transfer(j0, jb, current, true, span);
        for (zint i0 = 0; i0 < j0; i0 += nb) {
            const zint ib = min_of(nb, j0 - i0);
            transfer(i0, ib, earlier, true, span);
            if (upper) {
                Blas<T>::herk('U', adjoint, jb, ib, -1.0, earlier, nb, 1.0, current, nb);
                if (span > jb)
                    Blas<T>::gemm(adjoint, 'N', jb, span - jb, ib, minus_one, earlier, nb, earlier + jb * nb,
                                  nb, one, current + jb * nb, nb);
            } else {
                Blas<T>::herk('L', 'N', jb, ib, -1.0, earlier, span, 1.0, current, span);
                if (span > jb)
                    Blas<T>::gemm('N', adjoint, span - jb, jb, ib, minus_one, earlier + jb, span, earlier,
                                  span, one, current + jb, span);
            }
        }
        const zint ld = upper ? nb : span;
        zint block_info = 0;
        potf2_kernel(upper, jb, current, ld, block_info);
        if (block_info == 0 && span > jb) {
            if (upper) {
                Blas<T>::trsm('L', 'U', adjoint, 'N', jb, span - jb, one, current, ld, current + jb * ld, ld);
            } else {
                Blas<T>::trsm('R', 'L', adjoint, 'N', span - jb, jb, one, current, ld, current + jb, ld);
            }
        }
        // After a failure only the diagonal block goes back: what follows it stays unfactored.
        transfer(j0, jb, current, false, block_info == 0 ? span : jb);
        if (block_info != 0) {
            info = block_info + j0;
            return 0;
        }
        if (report_progress(0, static_cast<std::int32_t>(j0 + jb), stage, 6) != 0) return 1;
    }
    return 0;
}

// The packed kernels on the triangle itself. Upper: the columns of block J are solved against the
// finished triangle before it in one kernel call, then finished one by one inside the block. Lower:
// the block's columns are factored among themselves, then their outer products leave the triangle
// after the block in one kernel call.
template <class T>
int pptrf_packed(bool upper, zint n, zint nb, T* ap, zint& info, const char* stage) {
    for (zint j0 = 0; j0 < n; j0 += nb) {
        const zint jb = min_of(nb, n - j0), end = j0 + jb;
        if (upper) {
            Blas<T>::tpsm('U', kAdjoint<T>, 'N', j0, jb, ap, column_of(ap, true, n, j0), j0 + 1, 1);
            for (zint c = j0; c < end; ++c) {
                T* column = column_of(ap, true, n, c);
                for (zint i = j0; i < c; ++i) {
                    const T* finished = column_of(ap, true, n, i);
                    const T t = column[i] - Blas<T>::dotc(i, finished, 1, column, 1);
                    column[i] = t * (1.0 / real(finished[i]));
                }
                if (diagonal_root(column[c], real(Blas<T>::dotc(c, column, 1, column, 1)), c, info) == 0.0)
                    return 0;
            }
        } else {
            for (zint c = j0; c < end; ++c) {
                T* column = column_of(ap, false, n, c);
                const double root = diagonal_root(column[0], 0.0, c, info);
                if (root == 0.0) return 0;
                Blas<T>::scal_real(n - c - 1, 1.0 / root, column + 1, 1);
                for (zint d = c + 1; d < end; ++d) {
                    const T factor = conj(column[d - c]) * -1.0;
                    Blas<T>::axpy(n - d, factor, column + (d - c), 1, column_of(ap, false, n, d), 1);
                }
            }
            if (end < n)
                Blas<T>::hprk('L', n - end, jb, -1.0, column_of(ap, false, n, j0) + jb, n - j0 - 1, -1,
                              column_of(ap, false, n, end));
        }
        if (report_progress(0, static_cast<std::int32_t>(end), stage, 6) != 0) return 1;
    }
    return 0;
}

}  // namespace

template <class T>
zint check_pptrf(char uplo, zint n) {
    return check_arguments(routine_name<T>("DPPTRF", "ZPPTRF"),
                           {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1}, {n < 0, 2}});
}

template <class T>
void pptrf(char uplo, zint n, T* ap, zint& info) {
    const char* name = routine_name<T>("DPPTRF", "ZPPTRF");
    const bool upper = lsame(uplo, 'U');
    info = check_pptrf<T>(uplo, n);
    if (info != 0 || n == 0) return;
    if (n <= ilaenv(3, name, " ", n, -1, -1, -1)) {
        pptrf_unblocked(upper, n, ap, info);
        return;
    }
    // Two blocks of n by nb elements: 16 n nb bytes for real elements.
    const zint nb = max_of(1, min_of(n, ilaenv(1, name, "Memory", n, -1, -1, -1, 6, 6)));
    const WorkArea<T> work(static_cast<std::size_t>(2 * n * nb));
    if (work) {
        pptrf_memory(upper, n, nb, ap, work.get(), info, name);
        return;
    }
    // Without the work block nothing is reported: the packed path gives the same factor.
    const zint packed_nb = max_of(1, ilaenv(1, name, "No Memory", n, -1, -1, -1, 6, 9));
    pptrf_packed(upper, n, packed_nb, ap, info, name);
}

}  // namespace zor

ZOR_INSTANTIATE(pptrf)
ZOR_INSTANTIATE(check_pptrf)
