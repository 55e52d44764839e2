#pragma once
// Every kernel dispatcher of the BLAS layer, in one table. A dispatcher is called like the routine
// it serves: zor::variant_probe(n, x) runs the variant chosen for this processor.

#include "blas/level1/level1.hpp"
#include "blas/level2/level2.hpp"
#include "blas/level3/gemm.hpp"
#include "blas/level3/level3.hpp"
#include "blas/probe.hpp"
#include "service/dispatch.hpp"

namespace zor {

extern const KernelDispatcher<decltype(default_::variant_probe)> variant_probe;

// Level 1, real.
ZOR_DECLARE_DISPATCHER(dasum);
ZOR_DECLARE_DISPATCHER(daxpy);
ZOR_DECLARE_DISPATCHER(dcopy);
ZOR_DECLARE_DISPATCHER(ddot);
ZOR_DECLARE_DISPATCHER(dnrm2);
ZOR_DECLARE_DISPATCHER(drot);
ZOR_DECLARE_DISPATCHER(drotg);
ZOR_DECLARE_DISPATCHER(drotm);
ZOR_DECLARE_DISPATCHER(drotmg);
ZOR_DECLARE_DISPATCHER(dscal);
ZOR_DECLARE_DISPATCHER(dswap);
ZOR_DECLARE_DISPATCHER(idamax);
ZOR_DECLARE_DISPATCHER(idamin);

// Level 1, complex.
ZOR_DECLARE_DISPATCHER(dzasum);
ZOR_DECLARE_DISPATCHER(dznrm2);
ZOR_DECLARE_DISPATCHER(izamax);
ZOR_DECLARE_DISPATCHER(izamin);
ZOR_DECLARE_DISPATCHER(zaxpy);
ZOR_DECLARE_DISPATCHER(zcopy);
ZOR_DECLARE_DISPATCHER(zdotc);
ZOR_DECLARE_DISPATCHER(zdotu);
ZOR_DECLARE_DISPATCHER(zdrot);
ZOR_DECLARE_DISPATCHER(zrotg);
ZOR_DECLARE_DISPATCHER(zscal);
ZOR_DECLARE_DISPATCHER(zswap);

// Level 2.
ZOR_DECLARE_DISPATCHER(dgemv);
ZOR_DECLARE_DISPATCHER(dger);
ZOR_DECLARE_DISPATCHER(dsymv);
ZOR_DECLARE_DISPATCHER(dsyr);
ZOR_DECLARE_DISPATCHER(dsyr2);
ZOR_DECLARE_DISPATCHER(dtrmv);
ZOR_DECLARE_DISPATCHER(dtrsv);
ZOR_DECLARE_DISPATCHER(zgemv);
ZOR_DECLARE_DISPATCHER(zgerc);
ZOR_DECLARE_DISPATCHER(zgeru);
ZOR_DECLARE_DISPATCHER(zhemv);
ZOR_DECLARE_DISPATCHER(zher);
ZOR_DECLARE_DISPATCHER(zher2);
ZOR_DECLARE_DISPATCHER(ztrmv);
ZOR_DECLARE_DISPATCHER(ztrsv);

// Level 3.
ZOR_DECLARE_DISPATCHER(dgemm);
ZOR_DECLARE_DISPATCHER(zgemm);
ZOR_DECLARE_DISPATCHER(dsymm);
ZOR_DECLARE_DISPATCHER(zsymm);
ZOR_DECLARE_DISPATCHER(zhemm);
ZOR_DECLARE_DISPATCHER(dsyrk);
ZOR_DECLARE_DISPATCHER(zsyrk);
ZOR_DECLARE_DISPATCHER(zherk);
ZOR_DECLARE_DISPATCHER(dsyr2k);
ZOR_DECLARE_DISPATCHER(zsyr2k);
ZOR_DECLARE_DISPATCHER(zher2k);
ZOR_DECLARE_DISPATCHER(dtrmm);
ZOR_DECLARE_DISPATCHER(ztrmm);
ZOR_DECLARE_DISPATCHER(dtrsm);
ZOR_DECLARE_DISPATCHER(ztrsm);

}  // namespace zor
