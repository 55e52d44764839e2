#pragma once
// What the level-3 routines written once for real and complex elements share besides the element
// arithmetic of service/element.hpp: the level's engines by element type, and element access
// through the strided views.

#include "blas/gemm/gemm.hpp"
#include "blas/kernel.hpp"
#include "blas/level3/level3_blocks.hpp"
#include "service/cpu.hpp"
#include "service/element.hpp"
#include "service/letters.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

// What the templates over the element type call of their own level: its GEMM engine (called
// unqualified, so the level's own variant runs), its diagonal-block kernels and its scaling of C.
template <class T>
struct Engine;

template <>
struct Engine<double> {
    static void gemm(char transa, char transb, zint m, zint n, zint k, double alpha, const double* a,
                     zint lda, const double* b, zint ldb, double beta, double* c, zint ldc) {
        dgemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    }
    static const BlockKernels<double>& kernels(std::uint32_t extensions) {
        return real_block_kernels(extensions);
    }
    // C := beta C; zeros without reading C for beta = 0.
    static void scale(zint m, zint n, double beta, double* c, zint ldc) { scale_c(m, n, beta, c, ldc); }
};

template <>
struct Engine<zcomplex> {
    static void gemm(char transa, char transb, zint m, zint n, zint k, const zcomplex& alpha,
                     const zcomplex* a, zint lda, const zcomplex* b, zint ldb, const zcomplex& beta,
                     zcomplex* c, zint ldc) {
        zgemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    }
    static const BlockKernels<zcomplex>& kernels(std::uint32_t extensions) {
        return complex_block_kernels(extensions);
    }
    static void scale(zint m, zint n, const zcomplex& beta, zcomplex* c, zint ldc) {
        zscale_c(m, n, beta, c, ldc);
    }
};

template <class T>
T at(const ConstView<T>& v, zint i, zint j) {
    const T x = v.base[i * v.rs + j * v.cs];
    return v.conj ? conj(x) : x;
}

template <class T>
T& at(const MutableView<T>& v, zint i, zint j) {
    return v.base[i * v.rs + j * v.cs];
}

// The view of the block that starts at (i, j).
template <class T>
ConstView<T> shifted(const ConstView<T>& v, zint i, zint j) {
    return {v.base + i * v.rs + j * v.cs, v.rs, v.cs, v.conj};
}

template <class T>
MutableView<T> shifted(const MutableView<T>& v, zint i, zint j) {
    return {v.base + i * v.rs + j * v.cs, v.rs, v.cs};
}

// The extensions beyond AVX this processor lets the Avx variant use; nothing at the other levels.
inline std::uint32_t processor_extensions() {
    if constexpr (kLevel == CpuLevel::Avx) return detect_avx_extensions();
    return 0;
}

// Where op(X)(i, j) is, for X stored with leading dimension ld.
template <class T>
const T* op_block(const T* x, zint ld, char trans, zint i, zint j) {
    return lsame(trans, 'N') ? x + i + j * ld : x + j + i * ld;
}

template <class T>
void fill_zero(zint rows, zint cols, T* x, zint ld) {
    for (zint j = 0; j < cols; ++j) {
        for (zint i = 0; i < rows; ++i) x[i + j * ld] = zero<T>();
    }
}

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
