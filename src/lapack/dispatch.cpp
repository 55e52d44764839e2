#include "lapack/dispatch.hpp"

namespace zor {

ZOR_DEFINE_DISPATCHER(dpotf2_upper);
ZOR_DEFINE_DISPATCHER(dpotf2_lower);
ZOR_DEFINE_DISPATCHER(zpotf2_upper);
ZOR_DEFINE_DISPATCHER(zpotf2_lower);

ZOR_DEFINE_DISPATCHER(dgtts2);

ZOR_DEFINE_DISPATCHER(dtpsm);
ZOR_DEFINE_DISPATCHER(ztpsm);
ZOR_DEFINE_DISPATCHER(dtpmv);
ZOR_DEFINE_DISPATCHER(ztpmv);
ZOR_DEFINE_DISPATCHER(dsprk);
ZOR_DEFINE_DISPATCHER(zhprk);

}  // namespace zor
