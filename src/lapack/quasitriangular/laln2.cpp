// laln2: the 1 by 1 or 2 by 2 system (ca A - w D) X = s B with a real or complex w, the step of the
// quasi-triangular solves in trevc3 and trsyl. A 2 by 2 system is solved by Gaussian elimination
// with complete pivoting; a matrix or pivot smaller than smin is replaced by smin (info = 1), and
// s <= 1 scales the right-hand side so that X cannot overflow.

#include <cmath>

#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// The 2 by 2 matrix as four entries in column order (c11, c21, c12, c22); for the largest entry p:
// where the entry in its column, the one in its row and the opposite one are, and whether the
// pivot lies in the second row or the second column.
constexpr int kPivotOrder[4][4] = {{0, 1, 2, 3}, {1, 0, 3, 2}, {2, 3, 0, 1}, {3, 2, 1, 0}};
constexpr bool kSecondRow[4] = {false, true, false, true};
constexpr bool kSecondColumn[4] = {false, false, true, true};

}  // namespace

void laln2(bool ltrans, zint na, zint nw, double smin, double ca, const double* a, zint lda, double d1,
           double d2, const double* b, zint ldb, double wr, double wi, double* x, zint ldx, double& scale,
           double& xnorm, zint& info) {
    const auto A = [&](zint i, zint j) { return a[(i - 1) + (j - 1) * lda]; };
    const auto B = [&](zint i, zint j) { return b[(i - 1) + (j - 1) * ldb]; };
    const auto X = [&](zint i, zint j) -> double& { return x[(i - 1) + (j - 1) * ldx]; };
    const double smlnum = 2.0 * dlamch("S"), bignum = 1.0 / smlnum;
    const double smini = std::fmax(smin, smlnum);
    info = 0;
    scale = 1.0;

    if (na == 1) {
        if (nw == 1) {
            double csr = ca * A(1, 1) - wr * d1;
            double cnorm = std::fabs(csr);
            if (cnorm < smini) {
                csr = smini;
                cnorm = smini;
                info = 1;
            }
            const double bnorm = std::fabs(B(1, 1));
            if (cnorm < 1.0 && bnorm > 1.0 && bnorm > bignum * cnorm) scale = 1.0 / bnorm;
            X(1, 1) = (B(1, 1) * scale) / csr;
            xnorm = std::fabs(X(1, 1));
        } else {
            zcomplex c{ca * A(1, 1) - wr * d1, -wi * d1};
            double cnorm = std::fabs(c.re) + std::fabs(c.im);
            if (cnorm < smini) {
                c = {smini, 0.0};
                cnorm = smini;
                info = 1;
            }
            const double bnorm = std::fabs(B(1, 1)) + std::fabs(B(1, 2));
            if (cnorm < 1.0 && bnorm > 1.0 && bnorm > bignum * cnorm) scale = 1.0 / bnorm;
            const zcomplex q = zcomplex{scale * B(1, 1), scale * B(1, 2)} / c;
            X(1, 1) = q.re;
            X(1, 2) = q.im;
            xnorm = std::fabs(q.re) + std::fabs(q.im);
        }
        return;
    }

    // C below smin: smin times the identity instead.
    const auto below_smin = [&] {
        double bnorm = 0.0;
        for (zint r = 1; r <= 2; ++r)
            bnorm = std::fmax(bnorm, std::fabs(B(r, 1)) + (nw == 2 ? std::fabs(B(r, 2)) : 0.0));
        if (smini < 1.0 && bnorm > 1.0 && bnorm > bignum * smini) scale = 1.0 / bnorm;
        const double temp = scale / smini;
        for (zint c = 1; c <= nw; ++c) {
            for (zint r = 1; r <= 2; ++r) X(r, c) = temp * B(r, c);
        }
        xnorm = temp * bnorm;
        info = 1;
    };
    // Further scaling when ||C|| ||X|| could overflow.
    const auto limit_growth = [&](double cmax) {
        if (!(xnorm > 1.0 && cmax > 1.0 && xnorm > bignum / cmax)) return;
        const double temp = cmax / bignum;
        for (zint c = 1; c <= nw; ++c) {
            for (zint r = 1; r <= 2; ++r) X(r, c) *= temp;
        }
        xnorm *= temp;
        scale *= temp;
    };

    // The real part of C = ca A - w D (or with Aᵀ), in column order.
    double cr[4];
    cr[0] = ca * A(1, 1) - wr * d1;
    cr[3] = ca * A(2, 2) - wr * d2;
    cr[1] = ca * (ltrans ? A(1, 2) : A(2, 1));
    cr[2] = ca * (ltrans ? A(2, 1) : A(1, 2));

    if (nw == 1) {
        double cmax = 0.0;
        int icmax = -1;
        for (int j = 0; j < 4; ++j) {
            if (std::fabs(cr[j]) > cmax) {
                cmax = std::fabs(cr[j]);
                icmax = j;
            }
        }
        if (cmax < smini || icmax < 0) {
            below_smin();
            return;
        }
        const int* order = kPivotOrder[icmax];
        const double ur11 = cr[icmax], cr21 = cr[order[1]], ur12 = cr[order[2]], cr22 = cr[order[3]];
        const double ur11r = 1.0 / ur11, lr21 = ur11r * cr21;
        double ur22 = cr22 - ur12 * lr21;
        if (std::fabs(ur22) < smini) {
            ur22 = smini;
            info = 1;
        }
        double br1 = kSecondRow[icmax] ? B(2, 1) : B(1, 1);
        double br2 = kSecondRow[icmax] ? B(1, 1) : B(2, 1);
        br2 -= lr21 * br1;
        const double bbnd = std::fmax(std::fabs(br1 * (ur22 * ur11r)), std::fabs(br2));
        if (bbnd > 1.0 && std::fabs(ur22) < 1.0 && bbnd >= bignum * std::fabs(ur22)) scale = 1.0 / bbnd;
        const double xr2 = (br2 * scale) / ur22;
        const double xr1 = (scale * br1) * ur11r - xr2 * (ur11r * ur12);
        X(1, 1) = kSecondColumn[icmax] ? xr2 : xr1;
        X(2, 1) = kSecondColumn[icmax] ? xr1 : xr2;
        xnorm = std::fmax(std::fabs(xr1), std::fabs(xr2));
        limit_growth(cmax);
        return;
    }

    // Complex w: the imaginary part of C is diagonal.
    const double ci[4] = {-wi * d1, 0.0, 0.0, -wi * d2};
    double cmax = 0.0;
    int icmax = -1;
    for (int j = 0; j < 4; ++j) {
        if (std::fabs(cr[j]) + std::fabs(ci[j]) > cmax) {
            cmax = std::fabs(cr[j]) + std::fabs(ci[j]);
            icmax = j;
        }
    }
    if (cmax < smini || icmax < 0) {
        below_smin();
        return;
    }
    const int* order = kPivotOrder[icmax];
    const double ur11 = cr[icmax], ui11 = ci[icmax];
    const double cr21 = cr[order[1]], ci21 = ci[order[1]];
    const double ur12 = cr[order[2]], ui12 = ci[order[2]];
    const double cr22 = cr[order[3]], ci22 = ci[order[3]];
    double ur11r, ui11r, lr21, li21, ur12s, ui12s, ur22, ui22;
    if (icmax == 0 || icmax == 3) {
        // The pivot is a diagonal entry: the off-diagonal entries of the pivoted C are real.
        if (std::fabs(ur11) > std::fabs(ui11)) {
            const double temp = ui11 / ur11;
            ur11r = 1.0 / (ur11 * (1.0 + temp * temp));
            ui11r = -temp * ur11r;
        } else {
            const double temp = ur11 / ui11;
            ui11r = -1.0 / (ui11 * (1.0 + temp * temp));
            ur11r = -temp * ui11r;
        }
        lr21 = cr21 * ur11r;
        li21 = cr21 * ui11r;
        ur12s = ur12 * ur11r;
        ui12s = ur12 * ui11r;
        ur22 = cr22 - ur12 * lr21;
        ui22 = ci22 - ur12 * li21;
    } else {
        // The pivot is off the diagonal: the diagonal entries of the pivoted C are real.
        ur11r = 1.0 / ur11;
        ui11r = 0.0;
        lr21 = cr21 * ur11r;
        li21 = ci21 * ur11r;
        ur12s = ur12 * ur11r;
        ui12s = ui12 * ur11r;
        ur22 = cr22 - ur12 * lr21 + ui12 * li21;
        ui22 = -ur12 * li21 - ui12 * lr21;
    }
    const double u22abs = std::fabs(ur22) + std::fabs(ui22);
    if (u22abs < smini) {
        ur22 = smini;
        ui22 = 0.0;
        info = 1;
    }
    double br1, br2, bi1, bi2;
    if (kSecondRow[icmax]) {
        br2 = B(1, 1);
        br1 = B(2, 1);
        bi2 = B(1, 2);
        bi1 = B(2, 2);
    } else {
        br1 = B(1, 1);
        br2 = B(2, 1);
        bi1 = B(1, 2);
        bi2 = B(2, 2);
    }
    br2 = br2 - lr21 * br1 + li21 * bi1;
    bi2 = bi2 - li21 * br1 - lr21 * bi1;
    const double bbnd =
        std::fmax((std::fabs(br1) + std::fabs(bi1)) * (u22abs * (std::fabs(ur11r) + std::fabs(ui11r))),
                  std::fabs(br2) + std::fabs(bi2));
    if (bbnd > 1.0 && u22abs < 1.0 && bbnd >= bignum * u22abs) {
        scale = 1.0 / bbnd;
        br1 *= scale;
        bi1 *= scale;
        br2 *= scale;
        bi2 *= scale;
    }
    const zcomplex x2 = zcomplex{br2, bi2} / zcomplex{ur22, ui22};
    const double xr2 = x2.re, xi2 = x2.im;
    const double xr1 = ur11r * br1 - ui11r * bi1 - ur12s * xr2 + ui12s * xi2;
    const double xi1 = ui11r * br1 + ur11r * bi1 - ui12s * xr2 - ur12s * xi2;
    if (kSecondColumn[icmax]) {
        X(1, 1) = xr2;
        X(2, 1) = xr1;
        X(1, 2) = xi2;
        X(2, 2) = xi1;
    } else {
        X(1, 1) = xr1;
        X(2, 1) = xr2;
        X(1, 2) = xi1;
        X(2, 2) = xi2;
    }
    xnorm = std::fmax(std::fabs(xr1) + std::fabs(xi1), std::fabs(xr2) + std::fabs(xi2));
    limit_growth(cmax);
}

}  // namespace zor
