// lacgv: conjugates a vector in place.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

template <class T>
void lacgv(zint n, T* x, zint incx) {
    if constexpr (kIsComplex<T>) {
        // Every element changes alike, so the direction of a negative stride does not matter.
        const zint step = incx < 0 ? -incx : incx;
        for (zint i = 0; i < n; ++i) x[i * step].im = -x[i * step].im;
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lacgv)
