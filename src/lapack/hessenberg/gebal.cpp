// gebal: balancing. The permutation pushes rows that are zero left of the diagonal (within the
// remaining block) to the bottom and columns that are zero below it to the left, isolating their
// diagonal entries as eigenvalues; the scaling then multiplies row and column pairs of the
// remaining block by powers of two until their 2-norms are within a factor of about 2 of each
// other, without pushing the scale factors towards overflow or underflow.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/hessenberg/hessenberg.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

constexpr double kRadix = 2.0;
// A row and column pair is rescaled only when that shrinks the sum of its norms below this
// fraction of what it was.
constexpr double kWorthwhile = 0.95;
// Scaling converges long before this many passes; the bound only keeps pathological input finite.
constexpr int kMostPasses = 1000;

template <class T>
struct Balancer {
    zint n;
    T* a;
    zint lda;
    double* scale;
    zint k;  // zero-based first and last row of the block not yet isolated
    zint l;

    T& at(zint i, zint j) { return a[i + j * lda]; }

    // Rows and columns j and m exchanged (the columns over rows 0 .. l, the rows over columns
    // k .. n - 1, the part a permutation of the block touches); scale(m) records j one-based.
    void exchange(zint j, zint m) {
        scale[m] = static_cast<double>(j + 1);
        if (j == m) return;
        Blas<T>::swap(l + 1, a + j * lda, 1, a + m * lda, 1);
        Blas<T>::swap(n - k, a + j + k * lda, lda, a + m + k * lda, lda);
    }

    // A row of the block whose entries left of the block's end are zero but for its diagonal.
    bool row_isolates(zint j) {
        for (zint i = 0; i <= l; ++i) {
            if (i != j && !is_zero(at(j, i))) return false;
        }
        return true;
    }
    // A column whose entries in rows k .. l are zero but for its diagonal.
    bool column_isolates(zint j) {
        for (zint i = k; i <= l; ++i) {
            if (i != j && !is_zero(at(i, j))) return false;
        }
        return true;
    }

    // Returns false when the whole matrix has been isolated.
    bool permute() {
        // Rows first, from the bottom; each one found shrinks the block from below.
        for (bool found = true; found;) {
            found = false;
            for (zint j = l; j >= 0; --j) {
                if (!row_isolates(j)) continue;
                exchange(j, l);
                if (l == 0) return false;
                --l;
                found = true;
                break;
            }
        }
        for (bool found = true; found;) {
            found = false;
            for (zint j = k; j <= l; ++j) {
                if (!column_isolates(j)) continue;
                exchange(j, k);
                ++k;
                found = true;
                break;
            }
        }
        return true;
    }

    // The scaling passes; returns false after a NaN.
    bool balance() {
        const double small1 = dlamch("S") / dlamch("P"), large1 = 1.0 / small1;
        const double small2 = small1 * kRadix, large2 = 1.0 / small2;
        const zint size = l - k + 1;
        for (int pass = 0; pass < kMostPasses; ++pass) {
            bool changed = false;
            for (zint i = k; i <= l; ++i) {
                double c = Blas<T>::nrm2(size, a + k + i * lda, 1);
                double r = Blas<T>::nrm2(size, a + i + k * lda, lda);
                double ca = abs(at(Blas<T>::iamax(l + 1, a + i * lda, 1) - 1, i));
                double ra = abs(at(i, Blas<T>::iamax(n - k, a + i + k * lda, lda) - 1 + k));
                // A zero norm (perhaps from underflow) gives nothing to balance against.
                if (c == 0.0 || r == 0.0) continue;
                if (std::isnan(c + ca + r + ra)) return false;
                double g = r / kRadix, f = 1.0;
                const double s = c + r;
                while (c < g && max_of3(f, c, ca) < large2 && min_of3(r, g, ra) > small2) {
                    f *= kRadix;
                    c *= kRadix;
                    ca *= kRadix;
                    r /= kRadix;
                    g /= kRadix;
                    ra /= kRadix;
                }
                g = c / kRadix;
                while (g >= r && std::fmax(r, ra) < large2 &&
                       std::fmin(std::fmin(f, c), std::fmin(g, ca)) > small2) {
                    f /= kRadix;
                    c /= kRadix;
                    g /= kRadix;
                    ca /= kRadix;
                    r *= kRadix;
                    ra *= kRadix;
                }
                if (c + r >= kWorthwhile * s) continue;
                // Keep the accumulated factor away from the ends of the range.
                if (f < 1.0 && scale[i] < 1.0 && f * scale[i] <= small1) continue;
                if (f > 1.0 && scale[i] > 1.0 && scale[i] >= large1 / f) continue;
                scale[i] *= f;
                changed = true;
                Blas<T>::scal_real(n - k, 1.0 / f, a + i + k * lda, lda);
                Blas<T>::scal_real(l + 1, f, a + i * lda, 1);
            }
            if (!changed) break;
        }
        return true;
    }

    static double max_of3(double x, double y, double z) { return std::fmax(std::fmax(x, y), z); }
    static double min_of3(double x, double y, double z) { return std::fmin(std::fmin(x, y), z); }
};

}  // namespace

template <class T>
zint check_gebal(char job, zint n, zint lda) {
    return check_arguments(routine_name<T>("DGEBAL", "ZGEBAL"),
                           {{!lsame(job, 'N') && !lsame(job, 'P') && !lsame(job, 'S') && !lsame(job, 'B'), 1},
                            {n < 0, 2},
                            {lda < max_of(1, n), 4}});
}

template <class T>
void gebal(char job, zint n, T* a, zint lda, zint& ilo, zint& ihi, double* scale, zint& info) {
    info = check_gebal<T>(job, n, lda);
    if (info != 0) return;
    ilo = 1;
    ihi = n;
    if (n == 0) return;
    if (lsame(job, 'N')) {
        for (zint i = 0; i < n; ++i) scale[i] = 1.0;
        return;
    }
    Balancer<T> b{n, a, lda, scale, 0, n - 1};
    const bool remains = lsame(job, 'S') || b.permute();
    ilo = b.k + 1;
    ihi = b.l + 1;
    if (!remains) return;
    for (zint i = b.k; i <= b.l; ++i) scale[i] = 1.0;
    if (lsame(job, 'P')) return;
    if (!b.balance()) info = check_arguments(routine_name<T>("DGEBAL", "ZGEBAL"), {{true, 3}});
}

}  // namespace zor

ZOR_INSTANTIATE(gebal)
ZOR_INSTANTIATE(check_gebal)
