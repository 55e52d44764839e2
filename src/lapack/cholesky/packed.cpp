// dpptrf, dpptrs, dpptri and their complex forms: Cholesky in packed storage.
//
// The factorisation and the solve with many right-hand sides work in full-storage blocks copied out
// of the packed triangle when a work block can be had ("Memory"), because the level-3 kernels need
// full storage; without one ("No Memory") they work on the packed storage through the packed kernels.

#include <cmath>

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/dispatch.hpp"
#include "lapack/element.hpp"
#include "lapack/triangular/triangular.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/handlers.hpp"
#include "service/lsame.hpp"
#include "service/memory.hpp"

namespace zor {

namespace {

template <class T>
T* column_of(T* ap, bool upper, zint n, zint j) {
    return ap + packed_start(upper, n, j);
}

// The diagonal step of every path: ajj = its real part less `sum`; a value that is not positive
// (or NaN) stays in place and info = j + 1. Returns the root, or 0 on failure.
template <class T>
double diagonal_root(T& cell, double sum, zint j, zint& info) {
    using E = Element<T>;
    const double ajj = E::real(cell) - sum;
    if (!(ajj > 0.0)) {
        cell = E::from_real(ajj);
        info = j + 1;
        return 0.0;
    }
    const double root = std::sqrt(ajj);
    cell = E::from_real(root);
    return root;
}

// The published unblocked algorithm: upper, each column solved against the finished triangle before
// it; lower, each column scaled and its outer product taken from the triangle after it.
template <class T>
void pptrf_unblocked(bool upper, zint n, T* ap, zint& info) {
    using E = Element<T>;
    for (zint j = 0; j < n; ++j) {
        T* column = column_of(ap, upper, n, j);
        if (upper) {
            tpsm<T>('U', kAdjoint<T>, 'N', j, 1, ap, column, 0, 0);
            if (diagonal_root(column[j], E::real(E::dotc(j, column, 1, column, 1)), j, info) == 0.0) return;
        } else {
            const double root = diagonal_root(column[0], 0.0, j, info);
            if (root == 0.0) return;
            if (j + 1 < n) {
                E::scal_real(n - j - 1, 1.0 / root, column + 1, 1);
                hprk<T>('L', n - j - 1, 1, -1.0, column + 1, 0, 0, column_of(ap, false, n, j + 1));
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
    using E = Element<T>;
    const T one = E::one(), minus_one = E::from_real(-1.0);
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
                    out ? E::copy(count, packed, 1, to + c * nb, 1)
                        : E::copy(count, to + c * nb, 1, packed, 1);
                } else {
                    const zint column = i0 + c, first = max_of(j0, column), count = j0 + extent - first;
                    T* packed = column_of(ap, false, n, column) + (first - column);
                    T* full = to + (first - j0) + c * span;
                    out ? E::copy(count, packed, 1, full, 1) : E::copy(count, full, 1, packed, 1);
                }
            }
        };
        transfer(j0, jb, current, true, span);
        for (zint i0 = 0; i0 < j0; i0 += nb) {
            const zint ib = min_of(nb, j0 - i0);
            transfer(i0, ib, earlier, true, span);
            if (upper) {
                E::herk('U', adjoint, jb, ib, -1.0, earlier, nb, 1.0, current, nb);
                if (span > jb)
                    E::gemm(adjoint, 'N', jb, span - jb, ib, minus_one, earlier, nb, earlier + jb * nb, nb,
                            one, current + jb * nb, nb);
            } else {
                E::herk('L', 'N', jb, ib, -1.0, earlier, span, 1.0, current, span);
                if (span > jb)
                    E::gemm('N', adjoint, span - jb, jb, ib, minus_one, earlier + jb, span, earlier, span,
                            one, current + jb, span);
            }
        }
        const zint ld = upper ? nb : span;
        zint block_info = 0;
        potf2_kernel(upper, jb, current, ld, block_info);
        if (block_info == 0 && span > jb) {
            if (upper) {
                E::trsm('L', 'U', adjoint, 'N', jb, span - jb, one, current, ld, current + jb * ld, ld);
            } else {
                E::trsm('R', 'L', adjoint, 'N', span - jb, jb, one, current, ld, current + jb, ld);
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
    using E = Element<T>;
    for (zint j0 = 0; j0 < n; j0 += nb) {
        const zint jb = min_of(nb, n - j0), end = j0 + jb;
        if (upper) {
            tpsm<T>('U', kAdjoint<T>, 'N', j0, jb, ap, column_of(ap, true, n, j0), j0 + 1, 1);
            for (zint c = j0; c < end; ++c) {
                T* column = column_of(ap, true, n, c);
                for (zint i = j0; i < c; ++i) {
                    const T* finished = column_of(ap, true, n, i);
                    const T t = E::sub(column[i], E::dotc(i, finished, 1, column, 1));
                    column[i] = E::scale(t, 1.0 / E::real(finished[i]));
                }
                if (diagonal_root(column[c], E::real(E::dotc(c, column, 1, column, 1)), c, info) == 0.0)
                    return 0;
            }
        } else {
            for (zint c = j0; c < end; ++c) {
                T* column = column_of(ap, false, n, c);
                const double root = diagonal_root(column[0], 0.0, c, info);
                if (root == 0.0) return 0;
                E::scal_real(n - c - 1, 1.0 / root, column + 1, 1);
                for (zint d = c + 1; d < end; ++d) {
                    const T factor = E::scale(E::conj(column[d - c]), -1.0);
                    E::axpy(n - d, factor, column + (d - c), 1, column_of(ap, false, n, d), 1);
                }
            }
            if (end < n)
                hprk<T>('L', n - end, jb, -1.0, column_of(ap, false, n, j0) + jb, n - j0 - 1, -1,
                        column_of(ap, false, n, end));
        }
        if (report_progress(0, static_cast<std::int32_t>(end), stage, 6) != 0) return 1;
    }
    return 0;
}

template <class T>
void pptrf(char uplo, zint n, T* ap, zint& info) {
    using E = Element<T>;
    const char* name = E::name("DPPTRF", "ZPPTRF");
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(name, {{!upper && !lsame(uplo, 'L'), 1}, {n < 0, 2}});
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

// Solves with the factor in blocks of nb right-hand sides through the packed kernels.
template <class T>
void pptrs_packed(bool upper, zint n, zint nrhs, zint nb, const T* ap, T* b, zint ldb) {
    const char uplo = upper ? 'U' : 'L';
    for (zint j = 0; j < nrhs; j += nb) {
        const zint count = min_of(nb, nrhs - j);
        T* block = b + j * ldb;
        tpsm<T>(uplo, upper ? kAdjoint<T> : 'N', 'N', n, count, ap, block, ldb, 0);
        tpsm<T>(uplo, upper ? 'N' : kAdjoint<T>, 'N', n, count, ap, block, ldb, 0);
    }
}

// Solves in full-storage block columns of the factor (n by nb, leading dimension n), each copied out
// once a pass: Uᴴ U or L Lᴴ, the first pass forward, the second backward.
template <class T>
void pptrs_memory(bool upper, zint n, zint nrhs, zint nb, const T* ap, T* b, zint ldb, T* w) {
    using E = Element<T>;
    const T one = E::one(), minus_one = E::from_real(-1.0);
    const char adjoint = kAdjoint<T>;
    // Block column J: for U rows 0..j0+jb-1 (diagonal block's upper part), for L rows j0..n-1.
    const auto copy_out = [&](zint j0, zint jb) {
        for (zint c = j0; c < j0 + jb; ++c) {
            const T* packed = ap + packed_start(upper, n, c);
            if (upper) {
                E::copy(c + 1, packed, 1, w + (c - j0) * n, 1);
            } else {
                E::copy(n - c, packed, 1, w + (c - j0) + (c - j0) * n, 1);
            }
        }
    };
    const zint last = (n - 1) / nb * nb;
    for (zint j0 = 0; j0 < n; j0 += nb) {
        const zint jb = min_of(nb, n - j0), after = n - j0 - jb;
        copy_out(j0, jb);
        if (upper) {
            E::gemm(adjoint, 'N', jb, nrhs, j0, minus_one, w, n, b, ldb, one, b + j0, ldb);
            E::trsm('L', 'U', adjoint, 'N', jb, nrhs, one, w + j0, n, b + j0, ldb);
        } else {
            E::trsm('L', 'L', 'N', 'N', jb, nrhs, one, w, n, b + j0, ldb);
            E::gemm('N', 'N', after, nrhs, jb, minus_one, w + jb, n, b + j0, ldb, one, b + j0 + jb, ldb);
        }
    }
    for (zint j0 = last; j0 >= 0; j0 -= nb) {
        const zint jb = min_of(nb, n - j0), after = n - j0 - jb;
        copy_out(j0, jb);
        if (upper) {
            E::trsm('L', 'U', 'N', 'N', jb, nrhs, one, w + j0, n, b + j0, ldb);
            E::gemm('N', 'N', j0, nrhs, jb, minus_one, w, n, b + j0, ldb, one, b, ldb);
        } else {
            E::gemm(adjoint, 'N', jb, nrhs, after, minus_one, w + jb, n, b + j0 + jb, ldb, one, b + j0, ldb);
            E::trsm('L', 'L', adjoint, 'N', jb, nrhs, one, w, n, b + j0, ldb);
        }
    }
}

template <class T>
void pptrs(char uplo, zint n, zint nrhs, const T* ap, T* b, zint ldb, zint& info) {
    using E = Element<T>;
    const char* name = E::name("DPPTRS", "ZPPTRS");
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(
        name, {{!upper && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {nrhs < 0, 3}, {ldb < max_of(1, n), 6}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    // A block size of 1 says the copies would not pay for themselves (few right-hand sides).
    const zint nb = min_of(n, ilaenv(1, name, "Memory", n, nrhs, -1, -1, 6, 6));
    if (nb > 1) {
        const WorkArea<T> work(static_cast<std::size_t>(n * nb));
        if (work) {
            pptrs_memory(upper, n, nrhs, nb, ap, b, ldb, work.get());
            return;
        }
    }
    const zint packed_nb = max_of(1, ilaenv(1, name, "No Memory", n, nrhs, -1, -1, 6, 9));
    pptrs_packed(upper, n, nrhs, packed_nb, ap, b, ldb);
}

// inv(U) inv(U)ᴴ: column j's outer product goes into the triangle before it, then the column is
// scaled by its diagonal; inv(L)ᴴ inv(L): each column becomes the product of the triangle after it
// (transposed) with itself.
template <class T>
void pptri(char uplo, zint n, T* ap, zint& info) {
    using E = Element<T>;
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(E::name("DPPTRI", "ZPPTRI"), {{!upper && !lsame(uplo, 'L'), 1}, {n < 0, 2}});
    if (info != 0 || n == 0) return;
    tptri(uplo, 'N', n, ap, info);
    if (info > 0) return;
    for (zint j = 0; j < n; ++j) {
        T* column = column_of(ap, upper, n, j);
        if (upper) {
            if (j > 0) hprk<T>('U', j, 1, 1.0, column, 0, 0, ap);
            E::scal_real(j + 1, E::real(column[j]), column, 1);
        } else {
            column[0] = E::from_real(E::real(E::dotc(n - j, column, 1, column, 1)));
            if (j + 1 < n)
                tpmv<T>('L', kAdjoint<T>, 'N', n - j - 1, column_of(ap, false, n, j + 1), column + 1);
        }
    }
}

}  // namespace

void dpptrf(const char& uplo, const zint& n, double* ap, zint& info) {
    pptrf(uplo, n, ap, info);
}

void zpptrf(const char& uplo, const zint& n, zcomplex* ap, zint& info) {
    pptrf(uplo, n, ap, info);
}

void dpptrs(const char& uplo, const zint& n, const zint& nrhs, const double* ap, double* b, const zint& ldb,
            zint& info) {
    pptrs(uplo, n, nrhs, ap, b, ldb, info);
}

void zpptrs(const char& uplo, const zint& n, const zint& nrhs, const zcomplex* ap, zcomplex* b,
            const zint& ldb, zint& info) {
    pptrs(uplo, n, nrhs, ap, b, ldb, info);
}

void dpptri(const char& uplo, const zint& n, double* ap, zint& info) {
    pptri(uplo, n, ap, info);
}

void zpptri(const char& uplo, const zint& n, zcomplex* ap, zint& info) {
    pptri(uplo, n, ap, info);
}

}  // namespace zor
