// geqr2: the QR factorization column by column: a reflector for each column, applied at once to
// the columns on its right (unblocked.hpp).

#include "lapack/qr/qr.hpp"
#include "lapack/qr/unblocked.hpp"

ZOR_UNBLOCKED_FACTORIZATION(geqr2, false, "DGEQR2", "ZGEQR2")
