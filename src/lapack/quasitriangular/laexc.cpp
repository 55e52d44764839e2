// laexc: swaps two adjacent diagonal blocks of a real Schur form by an orthogonal similarity. Two
// 1 by 1 blocks exchange by one rotation; otherwise the Sylvester equation T11 X - X T22 = scale
// T12 gives the invariant subspace, whose QR factorization (one or two reflectors of order 3) is
// tried on a copy of the blocks first: the swap is refused when it would leave more than about
// 10 eps ||T(blocks)|| below the new diagonal blocks. The new 2 by 2 blocks are standardised.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// The rotation (cs, sn) on rows or columns x and y of `count` entries.
void rotate(zint count, double* x, zint incx, double* y, zint incy, double cs, double sn) {
    for (zint i = 0; i < count; ++i) {
        const double tx = cs * x[i * incx] + sn * y[i * incy];
        y[i * incy] = cs * y[i * incy] - sn * x[i * incx];
        x[i * incx] = tx;
    }
}

// C := H C (side "L", C 3 by n) or C H ("R", C m by 3) for H = I - tau u uᵀ of order 3, entry by
// entry: the blocks swapped here are too narrow for the matrix-vector kernels to pay.
void reflect(char side, zint m, zint n, const double* u, double tau, double* c, zint ldc) {
    if (tau == 0.0) return;
    const double t0 = tau * u[0], t1 = tau * u[1], t2 = tau * u[2];
    if (side == 'L') {
        for (zint j = 0; j < n; ++j) {
            double* x = c + j * ldc;
            const double sum = u[0] * x[0] + u[1] * x[1] + u[2] * x[2];
            x[0] -= sum * t0;
            x[1] -= sum * t1;
            x[2] -= sum * t2;
        }
    } else {
        for (zint i = 0; i < m; ++i) {
            double* x = c + i;
            const double sum = x[0] * u[0] + x[ldc] * u[1] + x[2 * ldc] * u[2];
            x[0] -= sum * t0;
            x[ldc] -= sum * t1;
            x[2 * ldc] -= sum * t2;
        }
    }
}

}  // namespace

void laexc(bool wantq, zint n, double* tp, zint ldt, double* qp, zint ldq, zint j1, zint n1, zint n2,
           zint& info) {
    info = 0;
    if (n == 0 || n1 == 0 || n2 == 0 || j1 + n1 > n) return;
    const auto T = [&](zint i, zint j) -> double& { return tp[(i - 1) + (j - 1) * ldt]; };
    const auto Q = [&](zint i, zint j) { return qp + (i - 1) + (j - 1) * ldq; };
    const zint j2 = j1 + 1, j3 = j1 + 2, j4 = j1 + 3;

    if (n1 == 1 && n2 == 1) {
        const double t11 = T(j1, j1), t22 = T(j2, j2);
        double cs, sn, r;
        lartg(T(j1, j2), t22 - t11, cs, sn, r);
        if (j3 <= n) rotate(n - j1 - 1, &T(j1, j3), ldt, &T(j2, j3), ldt, cs, sn);
        rotate(j1 - 1, &T(1, j1), 1, &T(1, j2), 1, cs, sn);
        T(j1, j1) = t22;
        T(j2, j2) = t11;
        if (wantq) rotate(n, Q(1, j1), 1, Q(1, j2), 1, cs, sn);
        return;
    }

    // The blocks in a 4 by 4 copy d, where the swap is tried first.
    constexpr zint ldd = 4;
    double d[ldd * 4] = {};
    const zint nd = n1 + n2;
    lacpy('A', nd, nd, &T(j1, j1), ldt, d, ldd);
    const auto D = [&](zint i, zint j) -> double& { return d[(i - 1) + (j - 1) * ldd]; };
    double dnorm = 0.0;
    for (zint j = 1; j <= nd; ++j) {
        for (zint i = 1; i <= nd; ++i) dnorm = std::fmax(dnorm, std::fabs(D(i, j)));
    }
    const double eps = dlamch("P"), smlnum = dlamch("S") / eps;
    const double thresh = std::fmax(10.0 * eps * dnorm, smlnum);
    // T11 X - X T22 = scale T12.
    double x[4], scale, xnorm;
    constexpr zint ldx = 2;
    zint ierr = 0;
    lasy2(false, false, -1, n1, n2, d, ldd, &D(n1 + 1, n1 + 1), ldd, &D(1, n1 + 1), ldd, scale, x, ldx, xnorm,
          ierr);
    const auto X = [&](zint i, zint j) { return x[(i - 1) + (j - 1) * ldx]; };

    // The swap by one reflector of order 3, tried on d: whether it leaves at most thresh in the two
    // entries that must vanish and in the difference of the moved 1 by 1 block from its value t.
    const auto acceptable = [&](const double* u, double tau, zint zero1, zint zero2, zint moved, double t) {
        reflect('L', 3, 3, u, tau, d, ldd);
        reflect('R', 3, 3, u, tau, d, ldd);
        return std::fmax(std::fmax(std::fabs(d[zero1]), std::fabs(d[zero2])), std::fabs(d[moved] - t)) <=
               thresh;
    };

    if (n1 == 1) {
        // n2 = 2: the reflector H with (scale, x11, x12) H = (0, 0, *).
        double u[3] = {scale, X(1, 1), X(1, 2)}, tau;
        larfg(3, u[2], u, 1, tau);
        u[2] = 1.0;
        const double t11 = T(j1, j1);
        // d(3, 1) and d(3, 2) must vanish, d(3, 3) become t11.
        if (!acceptable(u, tau, 2, 2 + ldd, 2 + 2 * ldd, t11)) {
            info = 1;
            return;
        }
        reflect('L', 3, n - j1 + 1, u, tau, &T(j1, j1), ldt);
        reflect('R', j2, 3, u, tau, &T(1, j1), ldt);
        T(j3, j1) = 0.0;
        T(j3, j2) = 0.0;
        T(j3, j3) = t11;
        if (wantq) reflect('R', n, 3, u, tau, Q(1, j1), ldq);
    } else if (n2 == 1) {
        // n1 = 2: the reflector H with H (-x11, -x21, scale)ᵀ = (*, 0, 0)ᵀ.
        double u[3] = {-X(1, 1), -X(2, 1), scale}, tau;
        larfg(3, u[0], u + 1, 1, tau);
        u[0] = 1.0;
        const double t33 = T(j3, j3);
        // d(2, 1) and d(3, 1) must vanish, d(1, 1) become t33.
        if (!acceptable(u, tau, 1, 2, 0, t33)) {
            info = 1;
            return;
        }
        reflect('R', j3, 3, u, tau, &T(1, j1), ldt);
        reflect('L', 3, n - j1, u, tau, &T(j1, j2), ldt);
        T(j1, j1) = t33;
        T(j2, j1) = 0.0;
        T(j3, j1) = 0.0;
        if (wantq) reflect('R', n, 3, u, tau, Q(1, j1), ldq);
    } else {
        // Two 2 by 2 blocks: reflectors H(1), H(2) with H(2) H(1) [-X; scale I] upper triangular.
        double u1[3] = {-X(1, 1), -X(2, 1), scale}, tau1;
        larfg(3, u1[0], u1 + 1, 1, tau1);
        u1[0] = 1.0;
        const double temp = -tau1 * (X(1, 2) + u1[1] * X(2, 2));
        double u2[3] = {-temp * u1[1] - X(2, 2), -temp * u1[2], scale}, tau2;
        larfg(3, u2[0], u2 + 1, 1, tau2);
        u2[0] = 1.0;
        reflect('L', 3, 4, u1, tau1, d, ldd);
        reflect('R', 4, 3, u1, tau1, d, ldd);
        reflect('L', 3, 4, u2, tau2, &D(2, 1), ldd);
        reflect('R', 4, 3, u2, tau2, &D(1, 2), ldd);
        if (std::fmax(std::fmax(std::fabs(D(3, 1)), std::fabs(D(3, 2))),
                      std::fmax(std::fabs(D(4, 1)), std::fabs(D(4, 2)))) > thresh) {
            info = 1;
            return;
        }
        reflect('L', 3, n - j1 + 1, u1, tau1, &T(j1, j1), ldt);
        reflect('R', j4, 3, u1, tau1, &T(1, j1), ldt);
        reflect('L', 3, n - j1 + 1, u2, tau2, &T(j2, j1), ldt);
        reflect('R', j4, 3, u2, tau2, &T(1, j2), ldt);
        T(j3, j1) = 0.0;
        T(j3, j2) = 0.0;
        T(j4, j1) = 0.0;
        T(j4, j2) = 0.0;
        if (wantq) {
            reflect('R', n, 3, u1, tau1, Q(1, j1), ldq);
            reflect('R', n, 3, u2, tau2, Q(1, j2), ldq);
        }
    }

    double wr1, wi1, wr2, wi2, cs, sn;
    if (n2 == 2) {
        // The new leading block.
        lanv2(T(j1, j1), T(j1, j2), T(j2, j1), T(j2, j2), wr1, wi1, wr2, wi2, cs, sn);
        rotate(n - j1 - 1, &T(j1, j1 + 2), ldt, &T(j2, j1 + 2), ldt, cs, sn);
        rotate(j1 - 1, &T(1, j1), 1, &T(1, j2), 1, cs, sn);
        if (wantq) rotate(n, Q(1, j1), 1, Q(1, j2), 1, cs, sn);
    }
    if (n1 == 2) {
        // The new trailing block.
        const zint k3 = j1 + n2, k4 = k3 + 1;
        lanv2(T(k3, k3), T(k3, k4), T(k4, k3), T(k4, k4), wr1, wi1, wr2, wi2, cs, sn);
        if (k3 + 2 <= n) rotate(n - k3 - 1, &T(k3, k3 + 2), ldt, &T(k4, k3 + 2), ldt, cs, sn);
        rotate(k3 - 1, &T(1, k3), 1, &T(1, k4), 1, cs, sn);
        if (wantq) rotate(n, Q(1, k3), 1, Q(1, k4), 1, cs, sn);
    }
}

}  // namespace zor
