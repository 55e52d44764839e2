#include "blas/dispatch.hpp"

namespace zor {

constinit const KernelDispatcher<decltype(default_::variant_probe)> variant_probe{
    ZOR_VARIANTS(variant_probe)};

}  // namespace zor
