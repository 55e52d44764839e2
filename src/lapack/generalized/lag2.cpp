// lag2: the eigenvalues of a real 2 by 2 pencil with B upper triangular, computed as those of
// A B⁻¹ by the Moler-Stewart formulas on the pencil scaled to norm one (a tiny diagonal entry of
// B raised first), with the larger root computed directly and the smaller from the determinant;
// each eigenvalue is then returned as a numerator w and a denominator scale chosen so that
// neither w nor w·B overflows and scale does not underflow needlessly.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/generalized/generalized.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

// A little more than one, so that a size at the threshold is scaled anyway.
constexpr double kFuzzy = 1.0 + 1.0e-5;

struct Limits {
    double safmin, c1, c2, c3, c4, c5, ascale, bsize;
};

// The denominator for the eigenvalue of magnitude wabs, and the factor for w.
void choose_scale(const Limits& l, double wabs, double& scale, double& wscale) {
    const double wsize =
        std::fmax(std::fmax(l.safmin, l.c1),
                  std::fmax(kFuzzy * (wabs * l.c2 + l.c3), std::fmin(l.c4, 0.5 * std::fmax(wabs, l.c5))));
    if (wsize == 1.0) {
        scale = l.ascale * l.bsize;
        wscale = 1.0;
        return;
    }
    wscale = 1.0 / wsize;
    if (wsize > 1.0) {
        scale = (std::fmax(l.ascale, l.bsize) * wscale) * std::fmin(l.ascale, l.bsize);
    } else {
        scale = (std::fmin(l.ascale, l.bsize) * wscale) * std::fmax(l.ascale, l.bsize);
    }
}

}  // namespace

void lag2(const double* a, zint lda, const double* b, zint ldb, double safmin, double& scale1, double& scale2,
          double& wr1, double& wr2, double& wi) {
    const double rtmin = std::sqrt(safmin), rtmax = 1.0 / rtmin, safmax = 1.0 / safmin;
    // A scaled to norm one.
    const double anorm = std::fmax(
        std::fmax(std::fabs(a[0]) + std::fabs(a[1]), std::fabs(a[lda]) + std::fabs(a[lda + 1])), safmin);
    const double ascale = 1.0 / anorm;
    const double a11 = ascale * a[0], a21 = ascale * a[1], a12 = ascale * a[lda], a22 = ascale * a[lda + 1];
    // B with its diagonal kept away from zero, scaled by its largest diagonal entry.
    double b11 = b[0], b12 = b[ldb], b22 = b[ldb + 1];
    const double bmin =
        rtmin * std::fmax(std::fmax(std::fabs(b11), std::fabs(b12)), std::fmax(std::fabs(b22), rtmin));
    if (std::fabs(b11) < bmin) b11 = std::copysign(bmin, b11);
    if (std::fabs(b22) < bmin) b22 = std::copysign(bmin, b22);
    const double bnorm = std::fmax(std::fmax(std::fabs(b11), std::fabs(b12) + std::fabs(b22)), safmin);
    const double bsize = std::fmax(std::fabs(b11), std::fabs(b22));
    const double bscale = 1.0 / bsize;
    b11 *= bscale;
    b12 *= bscale;
    b22 *= bscale;

    // The eigenvalues of A B⁻¹, shifted by the diagonal quotient of smaller magnitude so that the
    // quadratic's coefficients lose nothing to cancellation.
    const double binv11 = 1.0 / b11, binv22 = 1.0 / b22;
    const double s1 = a11 * binv11, s2 = a22 * binv22;
    double as12 = 0.0, abi22 = 0.0, pp = 0.0, shift = 0.0;
    const double ss = a21 * (binv11 * binv22);
    if (std::fabs(s1) <= std::fabs(s2)) {
        as12 = a12 - s1 * b12;
        const double as22 = a22 - s1 * b22;
        abi22 = as22 * binv22 - ss * b12;
        pp = 0.5 * abi22;
        shift = s1;
    } else {
        as12 = a12 - s2 * b12;
        const double as11 = a11 - s2 * b11;
        abi22 = -ss * b12;
        pp = 0.5 * (as11 * binv11 + abi22);
        shift = s2;
    }
    const double qq = ss * as12;
    double discr = 0.0, r = 0.0;
    if (std::fabs(pp * rtmin) >= 1.0) {
        discr = (rtmin * pp) * (rtmin * pp) + qq * safmin;
        r = std::sqrt(std::fabs(discr)) * rtmax;
    } else if (pp * pp + std::fabs(qq) <= safmin) {
        discr = (rtmax * pp) * (rtmax * pp) + qq * safmax;
        r = std::sqrt(std::fabs(discr)) * rtmin;
    } else {
        discr = pp * pp + qq;
        r = std::sqrt(std::fabs(discr));
    }
    if (discr >= 0.0 || r == 0.0) {
        const double sum = pp + std::copysign(r, pp), diff = pp - std::copysign(r, pp);
        const double wbig = shift + sum;
        double wsmall = shift + diff;
        if (0.5 * std::fabs(wbig) > std::fmax(std::fabs(wsmall), safmin)) {
            const double wdet = (a11 * a22 - a12 * a21) * (binv11 * binv22);
            wsmall = wdet / wbig;
        }
        // The first is the one nearer the last diagonal entry of A B⁻¹.
        const double corner = shift + abi22;
        if (std::fabs(wsmall - corner) < std::fabs(wbig - corner)) {
            wr1 = wsmall;
            wr2 = wbig;
        } else {
            wr1 = wbig;
            wr2 = wsmall;
        }
        wi = 0.0;
    } else {
        wr1 = shift + pp;
        wr2 = wr1;
        wi = r;
    }

    // Denominators that keep w, w·B and the quotient representable.
    Limits l{safmin, 0, 0, 0, 1.0, 1.0, ascale, bsize};
    l.c1 = bsize * (safmin * std::fmax(1.0, ascale));
    l.c2 = safmin * std::fmax(1.0, bnorm);
    l.c3 = bsize * safmin;
    if (ascale <= 1.0 && bsize <= 1.0) l.c4 = std::fmin(1.0, (ascale / safmin) * bsize);
    if (ascale <= 1.0 || bsize <= 1.0) l.c5 = std::fmin(1.0, ascale * bsize);
    double wscale = 1.0;
    choose_scale(l, std::fabs(wr1) + std::fabs(wi), scale1, wscale);
    wr1 *= wscale;
    if (wi != 0.0) {
        wi *= wscale;
        wr2 = wr1;
        scale2 = scale1;
        return;
    }
    choose_scale(l, std::fabs(wr2), scale2, wscale);
    wr2 *= wscale;
}

bool pair_values(const double* a, zint lda, const double* b, zint ldb, double safmin, double* alphar,
                 double* alphai, double* beta) {
    constexpr double kSafety = 100.0;
    double s1 = 0.0, s2 = 0.0, wr = 0.0, wr2 = 0.0, wi = 0.0;
    lag2(a, lda, b, ldb, safmin * kSafety, s1, s2, wr, wr2, wi);
    if (wi == 0.0) return false;
    const double s1inv = 1.0 / s1;
    const double a11 = a[0], a21 = a[1], a12 = a[lda], a22 = a[lda + 1];
    const double b11 = b[0], b22 = b[ldb + 1];
    // The complex rotations (cz, sz) from the right and (cq, sq) from the left that would
    // triangularise the block: their products with T's diagonal are the betas.
    const double c11r = s1 * a11 - wr * b11, c11i = -wi * b11, c12 = s1 * a12;
    const double c21 = s1 * a21, c22r = s1 * a22 - wr * b22, c22i = -wi * b22;
    double cz = 0.0, szr = 0.0, szi = 0.0;
    if (std::fabs(c11r) + std::fabs(c11i) + std::fabs(c12) >
        std::fabs(c21) + std::fabs(c22r) + std::fabs(c22i)) {
        const double t1 = lapy3(c12, c11r, c11i);
        cz = c12 / t1;
        szr = -c11r / t1;
        szi = -c11i / t1;
    } else {
        cz = lapy2(c22r, c22i);
        if (cz <= safmin) {
            cz = 0.0;
            szr = 1.0;
            szi = 0.0;
        } else {
            const double tempr = c22r / cz, tempi = c22i / cz;
            const double t1 = lapy2(cz, c21);
            cz /= t1;
            szr = -c21 * tempr / t1;
            szi = c21 * tempi / t1;
        }
    }
    const double an = std::fabs(a11) + std::fabs(a12) + std::fabs(a21) + std::fabs(a22);
    const double bn = std::fabs(b11) + std::fabs(b22);
    const double wabs = std::fabs(wr) + std::fabs(wi);
    double cq = 0.0, sqr = 0.0, sqi = 0.0;
    if (s1 * an > wabs * bn) {
        cq = cz * b11;
        sqr = szr * b22;
        sqi = -szi * b22;
    } else {
        const double a1r = cz * a11 + szr * a12, a1i = szi * a12;
        const double a2r = cz * a21 + szr * a22, a2i = szi * a22;
        cq = lapy2(a1r, a1i);
        if (cq <= safmin) {
            cq = 0.0;
            sqr = 1.0;
            sqi = 0.0;
        } else {
            const double tempr = a1r / cq, tempi = a1i / cq;
            sqr = tempr * a2r + tempi * a2i;
            sqi = tempi * a2r - tempr * a2i;
        }
    }
    const double t1 = lapy3(cq, sqr, sqi);
    cq /= t1;
    sqr /= t1;
    sqi /= t1;
    const double tempr = sqr * szr - sqi * szi, tempi = sqr * szi + sqi * szr;
    const double b1a = lapy2(cq * cz * b11 + tempr * b22, tempi * b22);
    const double b2a = lapy2(cq * cz * b22 + tempr * b11, -tempi * b11);
    beta[0] = b1a;
    beta[1] = b2a;
    alphar[0] = (wr * b1a) * s1inv;
    alphai[0] = (wi * b1a) * s1inv;
    alphar[1] = (wr * b2a) * s1inv;
    alphai[1] = -(wi * b2a) * s1inv;
    return true;
}

}  // namespace zor
