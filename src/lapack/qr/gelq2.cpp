// gelq2: the LQ factorization row by row: a reflector for each row (made from the conjugated row),
// applied at once to the rows below it (unblocked.hpp).

#include "lapack/qr/qr.hpp"
#include "lapack/qr/unblocked.hpp"

ZOR_UNBLOCKED_FACTORIZATION(gelq2, true, "DGELQ2", "ZGELQ2")
