// gbtrf: LU factorisation of a band matrix with partial pivoting, the blocked band
// algorithm. The factors keep the band layout: U with kl + ku superdiagonals (the kl rows on top
// take the fill-in), L as the multipliers of each column below its diagonal, every column's
// multipliers as they were when it was eliminated (later interchanges are not applied to them).

#include "lapack/lapack.hpp"
#include "lapack/lu/lu.hpp"
#include "lapack/lu/pivot.hpp"
#include "service/handlers.hpp"

namespace zor {

namespace {

// The band array as a matrix: A(i, j) (zero-based) and, from any stored element, the next one in its
// row ldab - 1 further on, so that a block lying inside the band is an ordinary matrix with leading
// dimension ldab - 1.
template <class T>
struct BandMatrix {
    T* ab;
    zint ldab;
    zint kv;  // kl + ku: the superdiagonals of U
    T* at(zint i, zint j) const { return ab + kv + i - j + j * ldab; }
    zint row_step() const { return ldab - 1; }
};

// Column j's kl fill-in rows (those of real matrix rows) start as zeros: the elimination reads them.
template <class T>
void clear_fill_in(const BandMatrix<T>& a, zint ku, zint n) {
    for (zint j = ku + 1; j < min_of(a.kv, n); ++j) {
        for (zint i = max_of(0, j - a.kv); i < j - ku; ++i) *a.at(i, j) = zero<T>();
    }
}

template <class T>
void clear_fill_in_column(const BandMatrix<T>& a, zint kl, zint j, zint n) {
    if (j + a.kv < n) {
        T* column = a.ab + (j + a.kv) * a.ldab;
        for (zint i = 0; i < kl; ++i) column[i] = zero<T>();
    }
}

// The unblocked elimination, column by column with a rank-one update of the columns its pivot row
// reaches.
template <class T>
void gbtf2(zint m, zint n, zint kl, zint ku, const BandMatrix<T>& a, zint* ipiv, zint& info) {
    const zint ldr = a.row_step();
    clear_fill_in(a, ku, n);
    zint ju = 0;
    for (zint j = 0; j < min_of(m, n); ++j) {
        clear_fill_in_column(a, kl, j, n);
        const zint below = min_of(kl, m - j - 1);
        T* d = a.at(j, j);
        const zint jp = Blas<T>::iamax(below + 1, d, 1) - 1;
        ipiv[j] = j + jp + 1;
        if (is_zero(d[jp])) {
            if (info == 0) info = j + 1;
            continue;
        }
        ju = max_of(ju, min_of(j + ku + jp, n - 1));
        if (jp != 0) Blas<T>::swap(ju - j + 1, d + jp, ldr, d, ldr);
        if (below > 0) {
            scale_by_pivot(below, d + 1, d[0]);
            if (ju > j)
                Blas<T>::geru(below, ju - j, from_real<T>(-1.0), d + 1, 1, d + ldr, ldr, d + a.ldab, ldr);
        }
    }
}

constexpr zint kMaxBlock = 64;
constexpr zint kWorkRows = kMaxBlock + 1;

// The blocked elimination. A block of jb columns meets, below its kl - jb rows inside the band, the
// block A31 of up to jb rows whose strict lower triangle lies outside the band, and to its right,
// kv columns on, the block A13 whose strict upper triangle lies outside. Interchanges inside the
// block can move multipliers into A31's outside part, so A31 is kept whole in work31 while the block
// is eliminated; A13 is copied into work13 for its updates. The interchanges are applied to the
// whole rows of the block for the updates and then undone in its earlier columns, which gives the
// multipliers back the layout of the unblocked elimination.
template <class T>
int gbtrf_blocked(zint m, zint n, zint kl, zint ku, zint nb, const BandMatrix<T>& a, zint* ipiv, zint& info,
                  const char* stage) {
    const T zero = zor::zero<T>(), one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const zint ldr = a.row_step();
    T work13[kWorkRows * kMaxBlock];
    T work31[kWorkRows * kMaxBlock];
    for (zint j = 0; j < nb; ++j) {
        for (zint i = 0; i < j; ++i) work13[i + j * kWorkRows] = zero;
        for (zint i = j + 1; i < nb; ++i) work31[i + j * kWorkRows] = zero;
    }
    clear_fill_in(a, ku, n);
    const zint steps = min_of(m, n);
    zint ju = 0;
    for (zint j = 0; j < steps; j += nb) {
        const zint jb = min_of(nb, steps - j);
        const zint i2 = min_of(kl - jb, m - j - jb);  // rows between the block and A31
        const zint i3 = min_of(jb, m - j - kl);       // rows of A31
        for (zint jj = j; jj < j + jb; ++jj) {
            clear_fill_in_column(a, kl, jj, n);
            const zint below = min_of(kl, m - jj - 1);
            T* d = a.at(jj, jj);
            const zint jp = Blas<T>::iamax(below + 1, d, 1) - 1;
            ipiv[jj] = jj - j + jp + 1;
            if (!is_zero(d[jp])) {
                ju = max_of(ju, min_of(jj + ku + jp, n - 1));
                if (jp != 0) {
                    if (jj + jp < j + kl) {
                        Blas<T>::swap(jb, a.at(jj, j), ldr, a.at(jj + jp, j), ldr);
                    } else {
                        Blas<T>::swap(jj - j, a.at(jj, j), ldr, work31 + (jj + jp - j - kl), kWorkRows);
                        Blas<T>::swap(j + jb - jj, d, ldr, d + jp, ldr);
                    }
                }
                if (below > 0) scale_by_pivot(below, d + 1, d[0]);
                const zint last = min_of(ju, j + jb - 1);
                if (last > jj)
                    Blas<T>::geru(below, last - jj, minus_one, d + 1, 1, d + ldr, ldr, d + a.ldab, ldr);
            } else if (info == 0) {
                info = jj + 1;
            }
            const zint inside = min_of(jj - j + 1, i3);
            if (inside > 0) Blas<T>::copy(inside, a.at(j + kl, jj), 1, work31 + (jj - j) * kWorkRows, 1);
        }
        if (j + jb < n) {
            const zint j2 = min_of(ju - j + 1, a.kv) - jb;  // columns whose rows j.. lie inside the band
            const zint j3 = max_of(0, ju - j - a.kv + 1);   // the columns of A13
            laswp(j2, a.at(j, j + jb), ldr, 1, jb, ipiv + j, 1);
            for (zint i = j; i < j + jb; ++i) ipiv[i] += j;
            for (zint c = 0; c < j3; ++c) {
                const zint column = j + jb + j2 + c;
                for (zint row = j + c; row < j + jb; ++row) {
                    const zint pivot = ipiv[row] - 1;
                    if (pivot != row) {
                        T* x = a.at(row, column);
                        T* y = a.at(pivot, column);
                        const T t = *x;
                        *x = *y;
                        *y = t;
                    }
                }
            }
            if (j2 > 0) {
                T* a12 = a.at(j, j + jb);
                Blas<T>::trsm('L', 'L', 'N', 'U', jb, j2, one, a.at(j, j), ldr, a12, ldr);
                if (i2 > 0)
                    Blas<T>::gemm('N', 'N', i2, j2, jb, minus_one, a.at(j + jb, j), ldr, a12, ldr, one,
                                  a.at(j + jb, j + jb), ldr);
                if (i3 > 0)
                    Blas<T>::gemm('N', 'N', i3, j2, jb, minus_one, work31, kWorkRows, a12, ldr, one,
                                  a.at(j + kl, j + jb), ldr);
            }
            if (j3 > 0) {
                for (zint c = 0; c < j3; ++c) {
                    for (zint r = c; r < jb; ++r) work13[r + c * kWorkRows] = *a.at(j + r, j + a.kv + c);
                }
                Blas<T>::trsm('L', 'L', 'N', 'U', jb, j3, one, a.at(j, j), ldr, work13, kWorkRows);
                if (i2 > 0)
                    Blas<T>::gemm('N', 'N', i2, j3, jb, minus_one, a.at(j + jb, j), ldr, work13, kWorkRows,
                                  one, a.at(j + jb, j + a.kv), ldr);
                if (i3 > 0)
                    Blas<T>::gemm('N', 'N', i3, j3, jb, minus_one, work31, kWorkRows, work13, kWorkRows, one,
                                  a.at(j + kl, j + a.kv), ldr);
                for (zint c = 0; c < j3; ++c) {
                    for (zint r = c; r < jb; ++r) *a.at(j + r, j + a.kv + c) = work13[r + c * kWorkRows];
                }
            }
        } else {
            for (zint i = j; i < j + jb; ++i) ipiv[i] += j;
        }
        for (zint jj = j + jb - 1; jj >= j; --jj) {
            const zint jp = ipiv[jj] - 1 - jj;
            if (jp != 0) {
                if (jj + jp < j + kl) {
                    Blas<T>::swap(jj - j, a.at(jj, j), ldr, a.at(jj + jp, j), ldr);
                } else {
                    Blas<T>::swap(jj - j, a.at(jj, j), ldr, work31 + (jj + jp - j - kl), kWorkRows);
                }
            }
            const zint inside = min_of(i3, jj - j + 1);
            if (inside > 0) Blas<T>::copy(inside, work31 + (jj - j) * kWorkRows, 1, a.at(j + kl, jj), 1);
        }
        if (report_progress(0, static_cast<std::int32_t>(j + jb), stage, 7) != 0) return 1;
    }
    return 0;
}

}  // namespace

template <class T>
bool gbtrf(zint m, zint n, zint kl, zint ku, T* ab, zint ldab, zint* ipiv, zint& info) {
    const char* name = routine_name<T>("DGBTRF", "ZGBTRF");
    info = check_arguments(name,
                           {{m < 0, 1}, {n < 0, 2}, {kl < 0, 3}, {ku < 0, 4}, {ldab < 2 * kl + ku + 1, 6}});
    if (info != 0 || m == 0 || n == 0) return false;
    const char* stage = routine_name<T>("XDGBTRF", "XZGBTRF");
    const BandMatrix<T> a{ab, ldab, kl + ku};
    const zint nb = min_of(ilaenv(1, name, " ", m, n, kl, ku), kMaxBlock);
    if (nb <= 1 || nb > kl) {
        gbtf2(m, n, kl, ku, a, ipiv, info);
        return report_progress(0, static_cast<std::int32_t>(min_of(m, n)), stage, 7) != 0;
    }
    return gbtrf_blocked(m, n, kl, ku, nb, a, ipiv, info, stage) != 0;
}

}  // namespace zor

ZOR_INSTANTIATE(gbtrf)
