// ormlq: the Q of an LQ factorization applied in blocks of reflectors (larft, larfb), or one by
// one when the block would not pay or the workspace holds too narrow a block (multiply.hpp).

#include "lapack/householder/multiply.hpp"

ZOR_Q_PRODUCT_IN_BLOCKS(ormlq, true, "DORMLQ", "ZUNMLQ")
