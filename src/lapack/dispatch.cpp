#include "lapack/dispatch.hpp"

namespace zor {

ZOR_LAPACK_KERNELS(ZOR_DEFINE_DISPATCHER)

}  // namespace zor
