// dpotrf / zpotrf: Cholesky factorisation, left-looking by block columns with each diagonal block
// factored recursively; dpotf2 / zpotf2: the unblocked step; dpotrs / dposv: solve, factor and solve.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/dispatch.hpp"
#include "lapack/element.hpp"
#include "lapack/tuning/tuning.hpp"
#include "service/handlers.hpp"
#include "service/lsame.hpp"

namespace zor {

template <class T>
void potf2_kernel(bool upper, zint n, T* a, zint lda, zint& info) {
    if constexpr (Element<T>::kComplex) {
        upper ? zor::zpotf2_upper(n, a, lda, info) : zor::zpotf2_lower(n, a, lda, info);
    } else {
        upper ? zor::dpotf2_upper(n, a, lda, info) : zor::dpotf2_lower(n, a, lda, info);
    }
}

template void potf2_kernel(bool, zint, double*, zint, zint&);
template void potf2_kernel(bool, zint, zcomplex*, zint, zint&);

namespace {

template <class T>
int potrf_core(char uplo, zint n, T* a, zint lda, zint& info, const std::int32_t& thread,
               std::int32_t offset) {
    using E = Element<T>;
    const char* name = E::name("DPOTRF", "ZPOTRF");
    const bool upper = lsame(uplo, 'U');
    const char options[1] = {uplo};
    const zint nb = ilaenv(1, name, options, n, -1, -1, -1);
    if (nb < 2 || nb >= n) {
        potf2_kernel(upper, n, a, lda, info);
        const auto step =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(n) + static_cast<std::uint32_t>(offset));
        return report_progress(thread, step, name, 6) != 0 ? 1 : 0;
    }
    const T one = E::one(), minus_one = E::from_real(-1.0);
    const char adjoint = kAdjoint<T>;
    for (zint j = 0; j < n; j += nb) {
        const zint jb = min_of(nb, n - j), rest = n - j - jb;
        T* diagonal = a + j + j * lda;
        const auto block_offset =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(offset) + static_cast<std::uint32_t>(j));
        zint block_info = 0;
        if (upper) {
            E::herk('U', adjoint, jb, j, -1.0, a + j * lda, lda, 1.0, diagonal, lda);
            if (potrf_core('U', jb, diagonal, lda, block_info, thread, block_offset) != 0) return 1;
            if (block_info > 0) {
                info = block_info + j;
                return 0;
            }
            if (rest > 0) {
                T* right = diagonal + jb * lda;
                E::gemm(adjoint, 'N', jb, rest, j, minus_one, a + j * lda, lda, a + (j + jb) * lda, lda, one,
                        right, lda);
                E::trsm('L', 'U', adjoint, 'N', jb, rest, one, diagonal, lda, right, lda);
            }
        } else {
            E::herk('L', 'N', jb, j, -1.0, a + j, lda, 1.0, diagonal, lda);
            if (potrf_core('L', jb, diagonal, lda, block_info, thread, block_offset) != 0) return 1;
            if (block_info > 0) {
                info = block_info + j;
                return 0;
            }
            if (rest > 0) {
                T* below = diagonal + jb;
                E::gemm('N', adjoint, rest, jb, j, minus_one, a + j + jb, lda, a + j, lda, one, below, lda);
                E::trsm('R', 'L', adjoint, 'N', rest, jb, one, diagonal, lda, below, lda);
            }
        }
    }
    return 0;
}

template <class T>
zint check_factor(const char* name, char uplo, zint n, zint lda) {
    return check_arguments(
        name, {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}});
}

// dpotrf's checks and factorisation; returns 1 when the progress handler stopped it.
template <class T>
int potrf(char uplo, zint n, T* a, zint lda, zint& info) {
    const char* name = Element<T>::name("DPOTRF", "ZPOTRF");
    info = check_factor<T>(name, uplo, n, lda);
    if (info != 0 || n == 0) return 0;
    // The crossover, not the block size, decides: below it the kernel runs without a progress report.
    const char options[1] = {uplo};
    if (ilaenv(3, name, options, n, -1, -1, -1) > n) {
        potf2_kernel(lsame(uplo, 'U'), n, a, lda, info);
        return 0;
    }
    const std::int32_t thread = 0;
    return potrf_core(uplo, n, a, lda, info, thread, 0);
}

template <class T>
void potf2(char uplo, zint n, T* a, zint lda, zint& info) {
    info = check_factor<T>(Element<T>::name("DPOTF2", "ZPOTF2"), uplo, n, lda);
    if (info == 0 && n > 0) potf2_kernel(lsame(uplo, 'U'), n, a, lda, info);
}

template <class T>
void potrs(char uplo, zint n, zint nrhs, const T* a, zint lda, T* b, zint ldb, zint& info) {
    using E = Element<T>;
    const bool upper = lsame(uplo, 'U');
    info = check_arguments(E::name("DPOTRS", "ZPOTRS"), {{!upper && !lsame(uplo, 'L'), 1},
                                                         {n < 0, 2},
                                                         {nrhs < 0, 3},
                                                         {lda < max_of(1, n), 5},
                                                         {ldb < max_of(1, n), 7}});
    if (info != 0 || n == 0 || nrhs == 0) return;
    const T one = E::one();
    const auto solve = [&](char op) {
        if (nrhs == 1) {
            E::trsv(upper ? 'U' : 'L', op, 'N', n, a, lda, b, 1);
        } else {
            E::trsm('L', upper ? 'U' : 'L', op, 'N', n, nrhs, one, a, lda, b, ldb);
        }
    };
    // A = Uᴴ U or L Lᴴ.
    solve(upper ? kAdjoint<T> : 'N');
    solve(upper ? 'N' : kAdjoint<T>);
}

template <class T>
void posv(char uplo, zint n, zint nrhs, T* a, zint lda, T* b, zint ldb, zint& info) {
    info = check_arguments(Element<T>::name("DPOSV ", "ZPOSV "), {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1},
                                                                  {n < 0, 2},
                                                                  {nrhs < 0, 3},
                                                                  {lda < max_of(1, n), 5},
                                                                  {ldb < max_of(1, n), 7}});
    if (info != 0) return;
    const int stopped = potrf(uplo, n, a, lda, info);
    if (info == 0 && stopped == 0) potrs(uplo, n, nrhs, a, lda, b, ldb, info);
}

}  // namespace

void dpotrf(const char& uplo, const zint& n, double* a, const zint& lda, zint& info) {
    potrf(uplo, n, a, lda, info);
}

void zpotrf(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info) {
    potrf(uplo, n, a, lda, info);
}

int dpotrf_core(const char& uplo, const zint& n, double* a, const zint& lda, zint& info,
                const std::int32_t& thread, std::int32_t offset) {
    return potrf_core(uplo, n, a, lda, info, thread, offset);
}

int zpotrf_core(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info,
                const std::int32_t& thread, std::int32_t offset) {
    return potrf_core(uplo, n, a, lda, info, thread, offset);
}

void dpotf2(const char& uplo, const zint& n, double* a, const zint& lda, zint& info) {
    potf2(uplo, n, a, lda, info);
}

void zpotf2(const char& uplo, const zint& n, zcomplex* a, const zint& lda, zint& info) {
    potf2(uplo, n, a, lda, info);
}

void dpotrs(const char& uplo, const zint& n, const zint& nrhs, const double* a, const zint& lda, double* b,
            const zint& ldb, zint& info) {
    potrs(uplo, n, nrhs, a, lda, b, ldb, info);
}

void zpotrs(const char& uplo, const zint& n, const zint& nrhs, const zcomplex* a, const zint& lda,
            zcomplex* b, const zint& ldb, zint& info) {
    potrs(uplo, n, nrhs, a, lda, b, ldb, info);
}

void dposv(const char& uplo, const zint& n, const zint& nrhs, double* a, const zint& lda, double* b,
           const zint& ldb, zint& info) {
    posv(uplo, n, nrhs, a, lda, b, ldb, info);
}

void zposv(const char& uplo, const zint& n, const zint& nrhs, zcomplex* a, const zint& lda, zcomplex* b,
           const zint& ldb, zint& info) {
    posv(uplo, n, nrhs, a, lda, b, ldb, info);
}

}  // namespace zor
