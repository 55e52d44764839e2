// orgqr: the first n columns of the Q of a QR factorization in blocks of reflectors, from the last
// block: the unblocked org2r forms the trailing columns, then each block's larfb builds on them and
// org2r finishes the block's own columns (generate.hpp).

#include "lapack/qr/generate.hpp"

ZOR_Q_GENERATOR(orgqr, false)
