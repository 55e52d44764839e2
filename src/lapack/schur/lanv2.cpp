// lanv2: the Schur factorization of a real 2 by 2 matrix in standard form: either upper triangular
// (real eigenvalues) or with equal diagonal entries and off-diagonal entries of opposite signs
// (a complex pair), by one rotation.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"
#include "lapack/schur/schur.hpp"

namespace zor {

namespace {

// Below this multiple of eps the discriminant is too close to zero to decide between real and
// complex eigenvalues; the diagonal is made equal first.
constexpr double kDecisive = 4.0;
// The rescaling of the equal-diagonal case reaches any finite input within this many steps.
constexpr int kMostRescalings = 20;

double sign_of(double magnitude, double of) {
    return std::copysign(std::fabs(magnitude), of);
}

}  // namespace

void lanv2(double& a, double& b, double& c, double& d, double& rt1r, double& rt1i, double& rt2r, double& rt2i,
           double& cs, double& sn) {
    const double eps = dlamch("P");
    // Powers of two near sqrt(safe minimum / eps) and its reciprocal.
    const double small = dlamch("F"), large = dlamch("X");
    if (c == 0.0) {
        cs = 1.0;
        sn = 0.0;
    } else if (b == 0.0) {
        // The rows and columns exchanged.
        cs = 0.0;
        sn = 1.0;
        const double temp = d;
        d = a;
        a = temp;
        b = -c;
        c = 0.0;
    } else if (a - d == 0.0 && std::signbit(b) != std::signbit(c)) {
        cs = 1.0;
        sn = 0.0;
    } else {
        double temp = a - d;
        double p = 0.5 * temp;
        const double bcmax = std::fmax(std::fabs(b), std::fabs(c));
        const double bcmis = std::fmin(std::fabs(b), std::fabs(c)) * sign_of(1.0, b) * sign_of(1.0, c);
        double scale = std::fmax(std::fabs(p), bcmax);
        double z = (p / scale) * p + (bcmax / scale) * bcmis;
        if (z >= kDecisive * eps) {
            // Real eigenvalues: A and D, then B and the rotation.
            z = p + sign_of(std::sqrt(scale) * std::sqrt(z), p);
            a = d + z;
            d = d - (bcmax / z) * bcmis;
            const double tau = lapy2(c, z);
            cs = z / tau;
            sn = c / tau;
            b = b - c;
            c = 0.0;
        } else {
            // Complex or nearly equal real eigenvalues: equalise the diagonal, with sigma and
            // temp brought into range first so that their hypotenuse neither overflows nor
            // underflows.
            double sigma = b + c;
            for (int count = 0; count < kMostRescalings; ++count) {
                scale = std::fmax(std::fabs(temp), std::fabs(sigma));
                if (scale >= large) {
                    sigma *= small;
                    temp *= small;
                } else if (scale <= small) {
                    sigma *= large;
                    temp *= large;
                } else {
                    break;
                }
            }
            p = 0.5 * temp;
            double tau = lapy2(sigma, temp);
            cs = std::sqrt(0.5 * (1.0 + std::fabs(sigma) / tau));
            sn = -(p / (tau * cs)) * sign_of(1.0, sigma);
            // [a b; c d] := [cs sn; -sn cs] [a b; c d] [cs -sn; sn cs]
            const double aa = a * cs + b * sn, bb = -a * sn + b * cs;
            const double cc = c * cs + d * sn, dd = -c * sn + d * cs;
            a = aa * cs + cc * sn;
            b = bb * cs + dd * sn;
            c = -aa * sn + cc * cs;
            d = -bb * sn + dd * cs;
            temp = 0.5 * (a + d);
            a = temp;
            d = temp;
            if (c != 0.0) {
                if (b != 0.0) {
                    if (std::signbit(b) == std::signbit(c)) {
                        // Real eigenvalues after all: reduce to upper triangular form.
                        const double sab = std::sqrt(std::fabs(b)), sac = std::sqrt(std::fabs(c));
                        p = sign_of(sab * sac, c);
                        tau = 1.0 / std::sqrt(std::fabs(b + c));
                        a = temp + p;
                        d = temp - p;
                        b = b - c;
                        c = 0.0;
                        const double cs1 = sab * tau, sn1 = sac * tau;
                        temp = cs * cs1 - sn * sn1;
                        sn = cs * sn1 + sn * cs1;
                        cs = temp;
                    }
                } else {
                    b = -c;
                    c = 0.0;
                    temp = cs;
                    cs = -sn;
                    sn = temp;
                }
            }
        }
    }
    rt1r = a;
    rt2r = d;
    if (c == 0.0) {
        rt1i = 0.0;
        rt2i = 0.0;
    } else {
        rt1i = std::sqrt(std::fabs(b)) * std::sqrt(std::fabs(c));
        rt2i = -rt1i;
    }
}

}  // namespace zor
