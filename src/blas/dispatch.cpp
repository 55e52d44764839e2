#include "blas/dispatch.hpp"

namespace zor {

ZOR_BLAS_KERNELS(ZOR_DEFINE_DISPATCHER)

}  // namespace zor
