// syevd: the symmetric (Hermitian) eigenproblem by the tridiagonal reduction and divide and
// conquer. A is scaled into a safe range when its largest entry is near underflow or overflow,
// reduced to T = Qᴴ A Q (sytrd; for eigenvalues alone of large matrices in two stages, sy2sb and
// sb2st), T is solved by sterf (values) or by stedc "I" (vectors of T, in real arithmetic for both
// element types), and the vectors become Q Z (ormtr) in place of A.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/lapack.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

namespace {

// The workspace of syevd: the published minimal sizes (what the routine checks), the optimal ones
// (what a query answers) and where each part lives, from one function so that the answer and the
// carving cannot disagree. Real: work holds e, tau, then the reduction's work or Z (n by n) and the
// work of stedc and ormtr after it. Complex: e lives in rwork, with the real Z (n by n) and stedc's
// work after it; work holds tau, then the reduction's work or the complex copy of Z and ormtr's
// work after it. The two-stage reduction of the eigenvalues-only path (from the order of
// ilaenv(3, "DSY2SB")) puts its band (2 kd + 1 rows, room for the bulges) where tau would be and
// its work after it; the optimal size makes room for it, and with less the one-stage reduction runs.
struct Layout {
    zint lwork_min = 1, lrwork_min = 1, liwork_min = 1;
    zint lwork_opt = 1, lrwork_opt = 1, liwork_opt = 1;
    zint tau = 0;      // in work
    zint reduce = 0;   // in work: the reduction's work, then Z for ormtr
    zint after_z = 0;  // in work: ormtr's work (and real stedc's)
    zint e = 0;        // in work (real) or rwork (complex)
    zint real_z = 0;   // complex: in rwork, Z from stedc, then stedc's work after it
    zint kd = 0;       // the band of the two-stage reduction; 0 when it does not pay
    zint band = 0, band_rows = 0, stages = 0, two_stage_lwork = 0;  // in work
};

// The two-stage reduction's parts after `start` elements of work.
template <class T>
void plan_two_stages(Layout& l, zint n, zint start) {
    const char* name = routine_name<T>("DSY2SB", "ZHE2HB");
    if (n < ilaenv(3, name, " ", n, -1, -1, -1)) return;
    l.kd = max_of(1, min_of(ilaenv(1, name, " ", n, -1, -1, -1), n - 1));
    l.band = start;
    l.band_rows = 2 * l.kd + 1;
    l.stages = start + l.band_rows * n;
    l.two_stage_lwork = l.stages + max_of(sy2sb_work_size(n, l.kd), 3 * l.kd);
    l.lwork_opt = max_of(l.lwork_opt, l.two_stage_lwork);
}

template <class T>
Layout layout_of(bool vectors, char uplo, zint n) {
    Layout l;
    if (n <= 1) return l;
    if (n > kLargestOrder) {
        l.lwork_min = l.lrwork_min = l.liwork_min = kUnattainable;
        l.lwork_opt = l.lrwork_opt = l.liwork_opt = kUnattainable;
        return l;
    }
    const zint nn = n * n;
    const char opts[2] = {uplo, '\0'};
    const zint nb = ilaenv(1, routine_name<T>("DSYTRD", "ZHETRD"), opts, n, -1, -1, -1);
    if constexpr (kIsComplex<T>) {
        l.lwork_min = vectors ? 2 * n + nn : n + 1;
        l.lrwork_min = vectors ? 1 + 5 * n + 2 * nn : n;
        l.lwork_opt = max_of(l.lwork_min, n + n * nb);
        l.tau = 0;
        l.reduce = n;
        l.after_z = n + nn;
        l.e = 0;
        l.real_z = n;
    } else {
        l.lwork_min = vectors ? 1 + 6 * n + 2 * nn : 2 * n + 1;
        l.lwork_opt = max_of(l.lwork_min, 2 * n + n * nb);
        l.e = 0;
        l.tau = n;
        l.reduce = 2 * n;
        l.after_z = 2 * n + nn;
    }
    if (!vectors) plan_two_stages<T>(l, n, l.tau);
    l.liwork_min = vectors ? 3 + 5 * n : 1;
    l.lrwork_opt = l.lrwork_min;
    l.liwork_opt = l.liwork_min;
    return l;
}

bool wants_vectors(char jobz) {
    return lsame(jobz, 'V');
}

}  // namespace

template <class T>
zint check_syevd(char jobz, char uplo, zint n, zint lda, zint lwork, zint lrwork, zint liwork) {
    const bool vectors = wants_vectors(jobz);
    const bool query = lwork == -1 || liwork == -1 || (kIsComplex<T> && lrwork == -1);
    const bool valid = (vectors || lsame(jobz, 'N')) && (lsame(uplo, 'U') || lsame(uplo, 'L')) && n >= 0;
    // The sizes are only known once the letters and n are.
    const Layout l = valid ? layout_of<T>(vectors, uplo, n) : Layout{};
    const bool complex = kIsComplex<T>;
    return check_arguments(routine_name<T>("DSYEVD", "ZHEEVD"),
                           {{!vectors && !lsame(jobz, 'N'), 1},
                            {!lsame(uplo, 'U') && !lsame(uplo, 'L'), 2},
                            {n < 0, 3},
                            {lda < max_of(1, n), 5},
                            {lwork < l.lwork_min && !query, 8},
                            {complex && lrwork < l.lrwork_min && !query, 10},
                            {liwork < l.liwork_min && !query, complex ? 12 : 10}});
}

template <class T>
void syevd(char jobz, char uplo, zint n, T* a, zint lda, double* w, T* work, zint lwork, double* rwork,
           zint lrwork, zint* iwork, zint liwork, zint& info) {
    info = check_syevd<T>(jobz, uplo, n, lda, lwork, lrwork, liwork);
    if (info != 0) return;
    const bool vectors = wants_vectors(jobz);
    const Layout l = layout_of<T>(vectors, uplo, n);
    const auto answer_sizes = [&] {
        work[0] = from_real<T>(static_cast<double>(l.lwork_opt));
        if constexpr (kIsComplex<T>) rwork[0] = static_cast<double>(l.lrwork_opt);
        iwork[0] = l.liwork_opt;
    };
    answer_sizes();
    if (lwork == -1 || liwork == -1 || (kIsComplex<T> && lrwork == -1) || n == 0) return;
    if (n == 1) {
        w[0] = real(a[0]);
        if (vectors) a[0] = one<T>();
        return;
    }

    // Entries near underflow or overflow would lose accuracy in the reduction and the solvers:
    // scale the largest into [sqrt(safe min / eps), its reciprocal].
    const double small = dlamch("S") / dlamch("P");
    const double rmin = std::sqrt(small), rmax = std::sqrt(1.0 / small);
    const double norm = lanhe('M', uplo, n, a, lda, nullptr);
    const bool scaled = (norm > 0.0 && norm < rmin) || norm > rmax;
    const double sigma = norm < rmin ? rmin / norm : rmax / norm;
    zint sub_info = 0;
    if (scaled) lascl(uplo, 0, 0, 1.0, sigma, n, n, a, lda, sub_info);

    double* e;
    if constexpr (kIsComplex<T>) {
        e = rwork + l.e;
    } else {
        e = work + l.e;
    }
    T* tau = work + l.tau;
    if (l.kd > 0 && lwork >= l.two_stage_lwork) {
        sy2sb(uplo, n, l.kd, a, lda, work + l.band, l.band_rows, work + l.stages, lwork - l.stages, sub_info);
        sb2st(n, l.kd, work + l.band, l.band_rows, w, e, work + l.stages, sub_info);
    } else {
        sytrd(uplo, n, a, lda, w, e, tau, work + l.reduce, lwork - l.reduce, sub_info);
    }
    if (!vectors) {
        sterf(n, w, e, info);
    } else {
        T* z = work + l.reduce;
        if constexpr (kIsComplex<T>) {
            double* real_z = rwork + l.real_z;
            stedc('I', n, w, e, real_z, n, real_z + n * n, lrwork - l.real_z - n * n, iwork, liwork, info);
            if (info == 0) {
                for (zint j = 0; j < n; ++j) {
                    for (zint i = 0; i < n; ++i) z[i + j * n] = {real_z[i + j * n], 0.0};
                }
            }
        } else {
            stedc('I', n, w, e, z, n, work + l.after_z, lwork - l.after_z, iwork, liwork, info);
        }
        // A failed solve leaves A as the reduction made it.
        if (info == 0) {
            ormtr('L', uplo, 'N', n, n, a, lda, tau, z, n, work + l.after_z, lwork - l.after_z, sub_info);
            lacpy('A', n, n, z, n, a, lda);
        }
    }
    if (scaled) Blas<double>::scal(n, 1.0 / sigma, w, 1);
    answer_sizes();
}

zint syevd_iwork_entries(char jobz, zint n) {
    return wants_vectors(jobz) && n > 1 ? 3 + 5 * n : 1;
}

}  // namespace zor

ZOR_INSTANTIATE(syevd)
ZOR_INSTANTIATE(check_syevd)
