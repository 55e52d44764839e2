// orm2r: the Q of a QR factorization applied reflector by reflector (multiply.hpp).

#include "lapack/householder/multiply.hpp"

ZOR_Q_PRODUCT_ONE_BY_ONE(orm2r, false, "DORM2R", "ZUNM2R")
