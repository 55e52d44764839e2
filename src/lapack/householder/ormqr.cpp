// ormqr: the Q of a QR factorization applied in blocks of reflectors (larft, larfb), or one by
// one when the block would not pay or the workspace holds too narrow a block (multiply.hpp).

#include "lapack/householder/multiply.hpp"

ZOR_Q_PRODUCT_IN_BLOCKS(ormqr, false, "DORMQR", "ZUNMQR")
