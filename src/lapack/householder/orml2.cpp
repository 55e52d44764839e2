// orml2: the Q of an LQ factorization applied reflector by reflector (multiply.hpp).

#include "lapack/householder/multiply.hpp"

ZOR_Q_PRODUCT_ONE_BY_ONE(orml2, true, "DORML2", "ZUNML2")
