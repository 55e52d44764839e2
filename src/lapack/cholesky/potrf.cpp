// potrf: Cholesky factorisation, left-looking by block columns with each diagonal block factored
// recursively.

#include "lapack/cholesky/cholesky.hpp"
#include "lapack/lapack.hpp"
#include "service/handlers.hpp"

namespace zor {

namespace {

// The blocked factorisation: `thread` and the column offset of this block in the whole matrix go to
// the progress handler. Returns 1 when the handler asked to stop, else 0. Arguments unchecked.
template <class T>
int potrf_core(char uplo, zint n, T* a, zint lda, zint& info, const std::int32_t& thread,
               std::int32_t offset) {
    const char* name = routine_name<T>("DPOTRF", "ZPOTRF");
    const bool upper = lsame(uplo, 'U');
    const char options[1] = {uplo};
    const zint nb = ilaenv(1, name, options, n, -1, -1, -1);
    if (nb < 2 || nb >= n) {
        potf2_kernel(upper, n, a, lda, info);
        const auto step =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(n) + static_cast<std::uint32_t>(offset));
        return report_progress(thread, step, name, 6) != 0 ? 1 : 0;
    }
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const char adjoint = kAdjoint<T>;
    for (zint j = 0; j < n; j += nb) {
        const zint jb = min_of(nb, n - j), rest = n - j - jb;
        T* diagonal = a + j + j * lda;
        const auto block_offset =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(offset) + static_cast<std::uint32_t>(j));
        zint block_info = 0;
        if (upper) {
            Blas<T>::herk('U', adjoint, jb, j, -1.0, a + j * lda, lda, 1.0, diagonal, lda);
            if (potrf_core('U', jb, diagonal, lda, block_info, thread, block_offset) != 0) return 1;
            if (block_info > 0) {
                info = block_info + j;
                return 0;
            }
            if (rest > 0) {
                T* right = diagonal + jb * lda;
                Blas<T>::gemm(adjoint, 'N', jb, rest, j, minus_one, a + j * lda, lda, a + (j + jb) * lda, lda,
                              one, right, lda);
                Blas<T>::trsm('L', 'U', adjoint, 'N', jb, rest, one, diagonal, lda, right, lda);
            }
        } else {
            Blas<T>::herk('L', 'N', jb, j, -1.0, a + j, lda, 1.0, diagonal, lda);
            if (potrf_core('L', jb, diagonal, lda, block_info, thread, block_offset) != 0) return 1;
            if (block_info > 0) {
                info = block_info + j;
                return 0;
            }
            if (rest > 0) {
                T* below = diagonal + jb;
                Blas<T>::gemm('N', adjoint, rest, jb, j, minus_one, a + j + jb, lda, a + j, lda, one, below,
                              lda);
                Blas<T>::trsm('R', 'L', adjoint, 'N', rest, jb, one, diagonal, lda, below, lda);
            }
        }
    }
    return 0;
}

}  // namespace

template <class T>
zint check_potrf(char uplo, zint n, zint lda) {
    return check_arguments(
        routine_name<T>("DPOTRF", "ZPOTRF"),
        {{!lsame(uplo, 'U') && !lsame(uplo, 'L'), 1}, {n < 0, 2}, {lda < max_of(1, n), 4}});
}

template <class T>
bool potrf(char uplo, zint n, T* a, zint lda, zint& info) {
    const char* name = routine_name<T>("DPOTRF", "ZPOTRF");
    info = check_potrf<T>(uplo, n, lda);
    if (info != 0 || n == 0) return false;
    // The crossover, not the block size, decides: below it the kernel runs without a progress report.
    const char options[1] = {uplo};
    if (ilaenv(3, name, options, n, -1, -1, -1) > n) {
        potf2_kernel(lsame(uplo, 'U'), n, a, lda, info);
        return false;
    }
    const std::int32_t thread = 0;
    return potrf_core(uplo, n, a, lda, info, thread, 0) != 0;
}

}  // namespace zor

ZOR_INSTANTIATE(potrf)
ZOR_INSTANTIATE(check_potrf)
