// getrf: LU factorisation with partial pivoting, recursive on panels, with a Crout-ordered
// unblocked step at the leaves.

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"
#include "lapack/lu/pivot.hpp"
#include "service/handlers.hpp"

namespace zor {

namespace {

// The unblocked step. Column j is complete on arrival (its updates from the columns before it were
// made when they were finished), so it only needs the pivot search and the scaling; then one
// matrix-vector product finishes row j of U and another brings column j + 1 up to date.
template <class T>
void getf2_crout(zint m, zint n, T* a, zint lda, zint* ipiv, zint& info) {
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const zint steps = min_of(m, n);
    for (zint j = 0; j < steps; ++j) {
        T* column = a + j * lda;
        const zint pivot = j - 1 + Blas<T>::iamax(m - j, column + j, 1);
        ipiv[j] = pivot + 1;
        if (!is_zero(column[pivot])) {
            if (pivot != j) Blas<T>::swap(n, a + j, lda, a + pivot, lda);
            if (j + 1 < m) scale_by_pivot(m - j - 1, column + j + 1, column[j]);
        } else if (info == 0) {
            info = j + 1;
        }
        if (j > 0 && j + 1 < n)
            Blas<T>::gemv('T', j, n - j - 1, minus_one, a + (j + 1) * lda, lda, a + j, lda, one,
                          a + j + (j + 1) * lda, lda);
        if (j + 1 < steps)
            Blas<T>::gemv('N', m - j - 1, j + 1, minus_one, a + j + 1, lda, column + lda, 1, one,
                          column + lda + j + 1, 1);
    }
}

// ipiv(i) += shift for a panel's pivots, which it numbered from its own first row.
void shift_pivots(zint count, zint* ipiv, zint shift) {
    zint i = 0;
    while (i < count && (reinterpret_cast<std::uintptr_t>(ipiv + i) & 15) != 0) ipiv[i++] += shift;
    for (; i + 8 <= count; i += 8) {
        for (zint k = 0; k < 8; ++k) ipiv[i + k] += shift;
    }
    for (; i < count; ++i) ipiv[i] += shift;
}

// The recursive factorisation: `thread` and the column offset of this panel in the whole matrix go
// to the progress handler. Returns 1 when the handler asked to stop, else 0. Arguments unchecked.
template <class T>
int getrf_core(zint m, zint n, T* a, zint lda, zint* ipiv, zint& info, const std::int32_t& thread,
               std::int32_t offset) {
    const char* name = routine_name<T>("DGETRF", "ZGETRF");
    const zint steps = min_of(m, n);
    // "S": this library's own answers for its recursive panels, not the reference's blank.
    const zint nb = ilaenv(1, name, "S", m, n, -1, -1);
    if (nb <= 1 || nb >= steps) {
        getf2_crout(m, n, a, lda, ipiv, info);
        const auto step =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(n) + static_cast<std::uint32_t>(offset));
        return report_progress(thread, step, name, 6) != 0 ? 1 : 0;
    }
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    for (zint j = 0; j < steps; j += nb) {
        const zint jb = min_of(nb, steps - j);
        T* panel = a + j + j * lda;
        zint panel_info = 0;
        const auto panel_offset =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(offset) + static_cast<std::uint32_t>(j));
        if (getrf_core(m - j, jb, panel, lda, ipiv + j, panel_info, thread, panel_offset) != 0) return 1;
        if (info == 0 && panel_info > 0) info = panel_info + j;
        shift_pivots(jb, ipiv + j, j);
        const zint right = n - j - jb;
        if (right > 0) {
            T* upper = panel + jb * lda;
            laswp(right, a + (j + jb) * lda, lda, j + 1, j + jb, ipiv, 1);
            Blas<T>::trsm('L', 'L', 'N', 'U', jb, right, one, panel, lda, upper, lda);
            if (m > j + jb)
                Blas<T>::gemm('N', 'N', m - j - jb, right, jb, minus_one, panel + jb, lda, upper, lda, one,
                              upper + jb, lda);
        }
    }
    // The interchanges of later panels reach the columns left of them only now, one pass a block.
    for (zint j = 0; j + nb < steps; j += nb) laswp(nb, a + j * lda, lda, j + nb + 1, steps, ipiv, 1);
    return 0;
}

}  // namespace

template <class T>
zint check_getrf(zint m, zint n, zint lda) {
    return check_arguments(routine_name<T>("DGETRF", "ZGETRF"),
                           {{m < 0, 1}, {n < 0, 2}, {lda < max_of(1, m), 4}});
}

template <class T>
bool getrf(zint m, zint n, T* a, zint lda, zint* ipiv, zint& info) {
    info = check_getrf<T>(m, n, lda);
    if (info != 0 || m == 0 || n == 0) return false;
    const std::int32_t thread = 0;
    return getrf_core(m, n, a, lda, ipiv, info, thread, 0) != 0;
}

}  // namespace zor

ZOR_INSTANTIATE(getrf)
ZOR_INSTANTIATE(check_getrf)
