#pragma once
// The argument checks of every entry layer: a list of checks run in the published order, the first
// failure reported. Each layer reports in its own words (cblas_xerbla with the parameter number,
// xerbla with the reference BLAS number, the error handler with a LAPACK routine's name); the
// order, the numbering and where the checks stop are the same code for all of them.

#include <initializer_list>

#include "service/types.hpp"

namespace zor {

// One argument check: when `failed`, `parameter` is reported. A check that does not end the call is
// reported and the checks go on (some CBLAS level-2 entry points do this for a bad letter).
struct ArgumentCheck {
    bool failed;
    int parameter;
    bool ends_call = true;
};

ZOR_INLINE_BEGIN

// Runs the checks in order, handing each failure's parameter to `report`, up to the first failure
// that ends the call; returns that failure's parameter, or 0 when nothing ended the call.
template <class Report>
int first_failed_check(std::initializer_list<ArgumentCheck> checks, Report&& report) {
    for (const ArgumentCheck& check : checks) {
        if (!check.failed) continue;
        report(check.parameter);
        if (check.ends_call) return check.parameter;
    }
    return 0;
}

ZOR_INLINE_END
}  // namespace zor
