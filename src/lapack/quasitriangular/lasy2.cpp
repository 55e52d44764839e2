// lasy2: the Sylvester equation op(TL) X + isgn X op(TR) = scale B for blocks of order 1 or 2, the
// kernel of block swaps and of trsyl. Orders 1 by 2 and 2 by 1 are a 2 by 2 linear system, 2 by 2 a 4
// by 4 one (the Kronecker form), each solved by Gaussian elimination with complete pivoting;
// pivots too small are raised to eps times the data and the right-hand side scaled down when the
// solution could overflow.

#include <cmath>
#include <utility>

#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// The 2 by 2 system [t0 t2; t1 t3] (column-major in t) with complete pivoting: for the largest
// entry p, where the row and column partners and the remaining entry sit, and whether the pivot's
// row and column are the second ones.
constexpr int kPartnerInRow[4] = {2, 3, 0, 1};     // u12: same row as the pivot
constexpr int kPartnerInColumn[4] = {1, 0, 3, 2};  // l21: same column
constexpr int kOpposite[4] = {3, 2, 1, 0};         // u22
constexpr bool kSecondColumn[4] = {false, false, true, true};
constexpr bool kSecondRow[4] = {false, true, false, true};

int largest_of(const double* v, int count) {
    int best = 0;
    double largest = std::fabs(v[0]);
    for (int i = 1; i < count; ++i) {
        if (std::fabs(v[i]) > largest) {
            largest = std::fabs(v[i]);
            best = i;
        }
    }
    return best;
}

}  // namespace

void lasy2(bool ltranl, bool ltranr, zint isgn, zint n1, zint n2, const double* tl, zint ldtl,
           const double* tr, zint ldtr, const double* b, zint ldb, double& scale, double* x, zint ldx,
           double& xnorm, zint& info) {
    info = 0;
    if (n1 == 0 || n2 == 0) return;
    const auto TL = [&](zint i, zint j) { return tl[(i - 1) + (j - 1) * ldtl]; };
    const auto TR = [&](zint i, zint j) { return tr[(i - 1) + (j - 1) * ldtr]; };
    const auto B = [&](zint i, zint j) { return b[(i - 1) + (j - 1) * ldb]; };
    const auto X = [&](zint i, zint j) -> double& { return x[(i - 1) + (j - 1) * ldx]; };
    const double eps = dlamch("P"), smlnum = dlamch("S") / eps;
    const double sgn = static_cast<double>(isgn);

    if (n1 == 1 && n2 == 1) {
        double tau1 = TL(1, 1) + sgn * TR(1, 1);
        double bet = std::fabs(tau1);
        if (bet <= smlnum) {
            tau1 = smlnum;
            bet = smlnum;
            info = 1;
        }
        scale = 1.0;
        const double gam = std::fabs(B(1, 1));
        if (smlnum * gam > bet) scale = 1.0 / gam;
        X(1, 1) = (B(1, 1) * scale) / tau1;
        xnorm = std::fabs(X(1, 1));
        return;
    }

    if (n1 + n2 == 3) {
        // One of the blocks is 1 by 1: a 2 by 2 system in tmp (column-major), right side btmp.
        // The 2 by 2 block's entries and the 1 by 1 block bound the pivots from below.
        const auto block = [&](zint i, zint j) { return n1 == 1 ? TR(i, j) : TL(i, j); };
        double largest = std::fabs(n1 == 1 ? TL(1, 1) : TR(1, 1));
        for (zint i = 1; i <= 2; ++i) {
            for (zint j = 1; j <= 2; ++j) largest = std::fmax(largest, std::fabs(block(i, j)));
        }
        const double smin = std::fmax(eps * largest, smlnum);
        double tmp[4], btmp[2];
        if (n1 == 1) {
            tmp[0] = TL(1, 1) + sgn * TR(1, 1);
            tmp[3] = TL(1, 1) + sgn * TR(2, 2);
            tmp[1] = sgn * (ltranr ? TR(2, 1) : TR(1, 2));
            tmp[2] = sgn * (ltranr ? TR(1, 2) : TR(2, 1));
            btmp[0] = B(1, 1);
            btmp[1] = B(1, 2);
        } else {
            tmp[0] = TL(1, 1) + sgn * TR(1, 1);
            tmp[3] = TL(2, 2) + sgn * TR(1, 1);
            tmp[1] = ltranl ? TL(1, 2) : TL(2, 1);
            tmp[2] = ltranl ? TL(2, 1) : TL(1, 2);
            btmp[0] = B(1, 1);
            btmp[1] = B(2, 1);
        }
        const int p = largest_of(tmp, 4);
        double u11 = tmp[p];
        if (std::fabs(u11) <= smin) {
            info = 1;
            u11 = smin;
        }
        const double u12 = tmp[kPartnerInRow[p]];
        const double l21 = tmp[kPartnerInColumn[p]] / u11;
        double u22 = tmp[kOpposite[p]] - u12 * l21;
        if (std::fabs(u22) <= smin) {
            info = 1;
            u22 = smin;
        }
        if (kSecondRow[p]) {
            const double temp = btmp[1];
            btmp[1] = btmp[0] - l21 * temp;
            btmp[0] = temp;
        } else {
            btmp[1] = btmp[1] - l21 * btmp[0];
        }
        scale = 1.0;
        if ((2.0 * smlnum) * std::fabs(btmp[1]) > std::fabs(u22) ||
            (2.0 * smlnum) * std::fabs(btmp[0]) > std::fabs(u11)) {
            scale = 0.5 / std::fmax(std::fabs(btmp[0]), std::fabs(btmp[1]));
            btmp[0] *= scale;
            btmp[1] *= scale;
        }
        double x2[2];
        x2[1] = btmp[1] / u22;
        x2[0] = btmp[0] / u11 - (u12 / u11) * x2[1];
        if (kSecondColumn[p]) {
            const double temp = x2[1];
            x2[1] = x2[0];
            x2[0] = temp;
        }
        X(1, 1) = x2[0];
        if (n1 == 1) {
            X(1, 2) = x2[1];
            xnorm = std::fabs(X(1, 1)) + std::fabs(X(1, 2));
        } else {
            X(2, 1) = x2[1];
            xnorm = std::fmax(std::fabs(X(1, 1)), std::fabs(X(2, 1)));
        }
        return;
    }

    // 2 by 2: the 4 by 4 Kronecker system for (x11, x21, x12, x22).
    double smin = 0.0;
    for (zint i = 1; i <= 2; ++i) {
        for (zint j = 1; j <= 2; ++j)
            smin = std::fmax(smin, std::fmax(std::fabs(TR(i, j)), std::fabs(TL(i, j))));
    }
    smin = std::fmax(eps * smin, smlnum);
    double t16[4][4] = {};  // t16[row][column]
    t16[0][0] = TL(1, 1) + sgn * TR(1, 1);
    t16[1][1] = TL(2, 2) + sgn * TR(1, 1);
    t16[2][2] = TL(1, 1) + sgn * TR(2, 2);
    t16[3][3] = TL(2, 2) + sgn * TR(2, 2);
    const double tl12 = ltranl ? TL(2, 1) : TL(1, 2), tl21 = ltranl ? TL(1, 2) : TL(2, 1);
    t16[0][1] = tl12;
    t16[1][0] = tl21;
    t16[2][3] = tl12;
    t16[3][2] = tl21;
    const double tr12 = ltranr ? TR(1, 2) : TR(2, 1), tr21 = ltranr ? TR(2, 1) : TR(1, 2);
    t16[0][2] = sgn * tr12;
    t16[1][3] = sgn * tr12;
    t16[2][0] = sgn * tr21;
    t16[3][1] = sgn * tr21;
    double btmp[4] = {B(1, 1), B(2, 1), B(1, 2), B(2, 2)};
    int column_pivot[3];
    for (int i = 0; i < 3; ++i) {
        // The largest remaining entry (the first of equals in the published scan order wins
        // the last place: >= keeps moving it).
        double xmax = 0.0;
        int ipsv = i, jpsv = i;
        for (int ip = i; ip < 4; ++ip) {
            for (int jp = i; jp < 4; ++jp) {
                if (std::fabs(t16[ip][jp]) >= xmax) {
                    xmax = std::fabs(t16[ip][jp]);
                    ipsv = ip;
                    jpsv = jp;
                }
            }
        }
        if (ipsv != i) {
            for (int c = 0; c < 4; ++c) std::swap(t16[ipsv][c], t16[i][c]);
            std::swap(btmp[i], btmp[ipsv]);
        }
        if (jpsv != i) {
            for (int r = 0; r < 4; ++r) std::swap(t16[r][jpsv], t16[r][i]);
        }
        column_pivot[i] = jpsv;
        if (std::fabs(t16[i][i]) < smin) {
            info = 1;
            t16[i][i] = smin;
        }
        for (int j = i + 1; j < 4; ++j) {
            t16[j][i] /= t16[i][i];
            btmp[j] -= t16[j][i] * btmp[i];
            for (int k = i + 1; k < 4; ++k) t16[j][k] -= t16[j][i] * t16[i][k];
        }
    }
    if (std::fabs(t16[3][3]) < smin) t16[3][3] = smin;
    scale = 1.0;
    if ((8.0 * smlnum) * std::fabs(btmp[0]) > std::fabs(t16[0][0]) ||
        (8.0 * smlnum) * std::fabs(btmp[1]) > std::fabs(t16[1][1]) ||
        (8.0 * smlnum) * std::fabs(btmp[2]) > std::fabs(t16[2][2]) ||
        (8.0 * smlnum) * std::fabs(btmp[3]) > std::fabs(t16[3][3])) {
        scale = 0.125 / std::fmax(std::fmax(std::fabs(btmp[0]), std::fabs(btmp[1])),
                                  std::fmax(std::fabs(btmp[2]), std::fabs(btmp[3])));
        for (double& v : btmp) v *= scale;
    }
    double tmp[4];
    for (int k = 3; k >= 0; --k) {
        const double temp = 1.0 / t16[k][k];
        tmp[k] = btmp[k] * temp;
        for (int j = k + 1; j < 4; ++j) tmp[k] -= (temp * t16[k][j]) * tmp[j];
    }
    for (int i = 2; i >= 0; --i) {
        if (column_pivot[i] != i) std::swap(tmp[i], tmp[column_pivot[i]]);
    }
    X(1, 1) = tmp[0];
    X(2, 1) = tmp[1];
    X(1, 2) = tmp[2];
    X(2, 2) = tmp[3];
    xnorm = std::fmax(std::fabs(tmp[0]) + std::fabs(tmp[2]), std::fabs(tmp[1]) + std::fabs(tmp[3]));
}

}  // namespace zor
