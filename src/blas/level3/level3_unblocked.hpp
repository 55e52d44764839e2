#pragma once
// The triangular kernels without packing, on the canonical operands of level3_blocks.hpp: what
// trsm and trmm run when their work area cannot be had, and what the solve kernel runs on a
// diagonal block whose reciprocals would lose what a division keeps.

#include "blas/level3/level3_common.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

// Y := M⁻¹ (alpha Y), column by column, forward substitution with true divisions.
template <class T>
void solve_unblocked(zint b, zint nv, const ConstView<T>& m, bool unit, const T& alpha,
                     const MutableView<T>& y) {
    for (zint v = 0; v < nv; ++v) {
        if (!is_one(alpha)) {
            for (zint u = 0; u < b; ++u) at(y, u, v) = alpha * at(y, u, v);
        }
        for (zint k = 0; k < b; ++k) {
            T& yk = at(y, k, v);
            if (!unit) yk = yk / at(m, k, k);
            const T xk = yk;
            for (zint i = k + 1; i < b; ++i) at(y, i, v) = at(y, i, v) - (xk * at(m, i, k));
        }
    }
}

// Y := alpha M Y, from the last row up, so that each row still reads the original rows above it.
template <class T>
void multiply_unblocked(zint b, zint nv, const ConstView<T>& m, bool unit, const T& alpha,
                        const MutableView<T>& y) {
    for (zint v = 0; v < nv; ++v) {
        for (zint i = b - 1; i >= 0; --i) {
            T sum = unit ? at(y, i, v) : at(m, i, i) * at(y, i, v);
            for (zint j = 0; j < i; ++j) sum = sum + (at(m, i, j) * at(y, j, v));
            at(y, i, v) = is_one(alpha) ? sum : alpha * sum;
        }
    }
}

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
