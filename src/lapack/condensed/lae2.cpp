// lae2: the eigenvalues of a 2 by 2 symmetric matrix.

#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/condensed/tridiagonal_steps.hpp"

namespace zor {

void lae2(double a, double b, double c, double& rt1, double& rt2) {
    rt1 = symmetric_2x2_values(a, b, c, rt2).larger;
}

}  // namespace zor
