// orglq: the first m rows of the Q of an LQ factorization in blocks of reflectors, from the last
// block: the unblocked orgl2 forms the trailing rows, then each block's larfb builds on them and
// orgl2 finishes the block's own rows (generate.hpp).

#include "lapack/qr/generate.hpp"

ZOR_Q_GENERATOR(orglq, true)
