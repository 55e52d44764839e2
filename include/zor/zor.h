/* zor: dense linear algebra (BLAS and LAPACK) in double and double-complex precision.
 * This header includes every public header of the library; it compiles as C and as C++. */
#ifndef ZOR_ZOR_H
#define ZOR_ZOR_H

#include "zor/zor_config.h"
#include "zor/zor_lapack.h"
#include "zor/zor_memory.h"
#include "zor/zor_cblas.h"

#endif
