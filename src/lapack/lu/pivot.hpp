#pragma once
// Scaling a column of L by its pivot, shared by the general and band factorisations.

#include <cstdint>

#include "lapack/lapack.hpp"

namespace zor {

// x(i) := x(i) / pivot. Multiplying by the reciprocal is the fast way, but for a pivot below the
// safe minimum the reciprocal overflows, so each entry is divided: the scalar steps bring x to a
// 16-byte boundary so that the eight-fold body vectorises on aligned pairs.
template <class T>
void scale_by_pivot(zint n, T* x, const T& pivot) {
    if (abs(pivot) >= dlamch("S")) {
        Blas<T>::scal(n, reciprocal(pivot), x, 1);
        return;
    }
    zint i = 0;
    while (i < n && (reinterpret_cast<std::uintptr_t>(x + i) & 15) != 0) {
        x[i] = x[i] / pivot;
        ++i;
    }
    for (; i + 8 <= n; i += 8) {
        for (zint k = 0; k < 8; ++k) x[i + k] = x[i + k] / pivot;
    }
    for (; i < n; ++i) x[i] = x[i] / pivot;
}

}  // namespace zor
