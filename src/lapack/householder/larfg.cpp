// larfg: an elementary reflector that takes (alpha; x) to (beta; 0) with beta real.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

// -sign(alpha) · ||(alpha; x)|| from the norm of x.
template <class T>
double signed_norm(const T& alpha, double xnorm) {
    double norm;
    if constexpr (kIsComplex<T>) {
        norm = lapy3(alpha.re, alpha.im, xnorm);
    } else {
        norm = lapy2(alpha, xnorm);
    }
    return -std::copysign(norm, real(alpha));
}

// A norm scaled up this many times at most: one step lifts any nonzero finite norm above the
// threshold, so the bound only matters for inputs no scaling can help.
constexpr int kMaxRescalings = 20;

}  // namespace

template <class T>
void larfg(zint n, T& alpha, T* x, zint incx, T& tau) {
    if (n <= 0) {
        tau = zero<T>();
        return;
    }
    double xnorm = n > 1 ? Blas<T>::nrm2(n - 1, x, incx) : 0.0;
    if (xnorm == 0.0 && imag(alpha) == 0.0) {
        tau = zero<T>();
        return;
    }
    double beta = signed_norm(alpha, xnorm);
    const double safe_minimum = dlamch("S") / dlamch("E");
    int rescalings = 0;
    if (std::fabs(beta) < safe_minimum) {
        // The norm may have lost all its digits: scale x and alpha up and compute it again.
        const double up = 1.0 / safe_minimum;
        do {
            ++rescalings;
            if (n > 1) Blas<T>::scal_real(n - 1, up, x, incx);
            beta *= up;
            alpha = alpha * up;
        } while (std::fabs(beta) < safe_minimum && rescalings < kMaxRescalings);
        xnorm = n > 1 ? Blas<T>::nrm2(n - 1, x, incx) : 0.0;
        beta = signed_norm(alpha, xnorm);
    }
    if constexpr (kIsComplex<T>) {
        tau = {(beta - alpha.re) / beta, -alpha.im / beta};
    } else {
        tau = (beta - alpha) / beta;
    }
    if (n > 1) Blas<T>::scal(n - 1, one<T>() / (alpha - from_real<T>(beta)), x, incx);
    for (int i = 0; i < rescalings; ++i) beta *= safe_minimum;
    alpha = from_real<T>(beta);
}

}  // namespace zor

ZOR_INSTANTIATE(larfg)
