// laev2: the eigenvalues and the eigenvector of the larger one of a 2 by 2 symmetric matrix.

#include <cmath>

#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/condensed/tridiagonal_steps.hpp"

namespace zor {

void laev2(double a, double b, double c, double& rt1, double& rt2, double& cs1, double& sn1) {
    // The values by lae2's own computation, so that solvers with and without vectors agree to the bit.
    const Symmetric2x2 values = symmetric_2x2_values(a, b, c, rt2);
    rt1 = values.larger;
    const double difference = a - c;
    const double twice_b = b + b;
    // (cs, twice_b) is along the eigenvector of the value on the side of the difference's sign (cs
    // adds the root with that sign, so it never cancels); (cs1, sn1) is the unit vector orthogonal
    // to it, (-twice_b, cs) normalised through the ratio of smaller magnitude.
    const double cs = difference >= 0.0 ? difference + values.root : difference - values.root;
    if (std::fabs(cs) > std::fabs(twice_b)) {
        const double ct = -twice_b / cs;
        sn1 = 1.0 / std::sqrt(1.0 + ct * ct);
        cs1 = ct * sn1;
    } else if (twice_b == 0.0) {
        cs1 = 1.0;
        sn1 = 0.0;
    } else {
        const double tn = -cs / twice_b;
        cs1 = 1.0 / std::sqrt(1.0 + tn * tn);
        sn1 = tn * cs1;
    }
    // So (cs1, sn1) belongs to the value on the other side, which is rt1 when the trace and the
    // difference differ in sign (a zero trace counting as positive); otherwise turn it a quarter.
    const bool trace_negative = values.sum < 0.0;
    const bool difference_negative = difference < 0.0;
    if (trace_negative == difference_negative) {
        const double t = cs1;
        cs1 = -sn1;
        sn1 = t;
    }
}

}  // namespace zor
