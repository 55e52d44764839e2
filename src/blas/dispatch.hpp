#pragma once
// Every kernel dispatcher of the BLAS layer, in one table. A dispatcher is called like the routine
// it serves: zor::variant_probe(n, x) runs the variant chosen for this processor.

#include "blas/probe.hpp"
#include "service/dispatch.hpp"

namespace zor {

extern const KernelDispatcher<decltype(default_::variant_probe)> variant_probe;

}  // namespace zor
