#pragma once
// Scalar arithmetic of the level-3 routines, written once for real and complex elements: the small
// traits the templates over the element type use, and element access through the strided views.
// Complex products are the written-out formulas, as everywhere in the kernels.

#include "blas/kernel.hpp"
#include "blas/level3/gemm.hpp"
#include "blas/level3/level3_blocks.hpp"
#include "service/cpu.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

template <class T>
struct Arith;

template <>
struct Arith<double> {
    static constexpr bool kComplex = false;
    static double zero() { return 0.0; }
    static double one() { return 1.0; }
    static double minus_one() { return -1.0; }
    static bool is_zero(double x) { return x == 0.0; }
    static bool is_one(double x) { return x == 1.0; }
    static double conj(double x) { return x; }
    static double real(double x) { return x; }
    static double add(double x, double y) { return x + y; }
    static double sub(double x, double y) { return x - y; }
    static double neg(double x) { return -x; }
    static double mul(double x, double y) { return x * y; }
    static double div(double x, double y) { return x / y; }
    static double recip(double d) { return 1.0 / d; }
    // Whether x·(1/d) stands in for x/d: 1/d neither overflows nor loses bits to the subnormal range.
    // Zero, infinite and NaN d give the same answers both ways.
    static bool reciprocal_safe(double d) {
        const double magnitude = d < 0 ? -d : d;
        if (!(magnitude > 0.0 && magnitude <= 0x1.fffffffffffffp1023)) return true;
        return magnitude >= 0x1p-1021 && magnitude <= 0x1p1021;
    }
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
struct Arith<zcomplex> {
    static constexpr bool kComplex = true;
    static zcomplex zero() { return {0.0, 0.0}; }
    static zcomplex one() { return {1.0, 0.0}; }
    static zcomplex minus_one() { return {-1.0, 0.0}; }
    static bool is_zero(const zcomplex& x) { return x.re == 0.0 && x.im == 0.0; }
    static bool is_one(const zcomplex& x) { return x.re == 1.0 && x.im == 0.0; }
    static zcomplex conj(const zcomplex& x) { return {x.re, -x.im}; }
    static zcomplex real(const zcomplex& x) { return {x.re, 0.0}; }
    static zcomplex add(const zcomplex& x, const zcomplex& y) { return {x.re + y.re, x.im + y.im}; }
    static zcomplex sub(const zcomplex& x, const zcomplex& y) { return {x.re - y.re, x.im - y.im}; }
    static zcomplex neg(const zcomplex& x) { return {-x.re, -x.im}; }
    static zcomplex mul(const zcomplex& x, const zcomplex& y) {
        return {x.re * y.re - x.im * y.im, x.re * y.im + x.im * y.re};
    }
    // Smith's division: the larger part of the divisor is divided out first, so that no square
    // overflows or underflows.
    static zcomplex div(const zcomplex& x, const zcomplex& d) {
        const double abs_re = d.re < 0 ? -d.re : d.re, abs_im = d.im < 0 ? -d.im : d.im;
        if (abs_re >= abs_im) {
            const double ratio = d.im / d.re, denominator = d.re + d.im * ratio;
            return {(x.re + x.im * ratio) / denominator, (x.im - x.re * ratio) / denominator};
        }
        const double ratio = d.re / d.im, denominator = d.re * ratio + d.im;
        return {(x.re * ratio + x.im) / denominator, (x.im * ratio - x.re) / denominator};
    }
    static zcomplex recip(const zcomplex& d) { return div(one(), d); }
    // Both parts finite and the larger of a moderate size: the reciprocal then loses nothing that
    // the division would keep. Otherwise the division itself is used.
    static bool reciprocal_safe(const zcomplex& d) {
        const double abs_re = d.re < 0 ? -d.re : d.re, abs_im = d.im < 0 ? -d.im : d.im;
        const double larger = abs_re > abs_im ? abs_re : abs_im;
        return larger >= 0x1p-500 && larger <= 0x1p500;
    }
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
    return v.conj ? Arith<T>::conj(x) : x;
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

inline bool letter_is(char letter, char upper) {
    return letter == upper || letter == upper + ('a' - 'A');
}

// The extensions beyond AVX this processor lets the Avx variant use; nothing at the other levels.
inline std::uint32_t processor_extensions() {
    if constexpr (kLevel == CpuLevel::Avx) return detect_avx_extensions();
    return 0;
}

// Where op(X)(i, j) is, for X stored with leading dimension ld.
template <class T>
const T* op_block(const T* x, zint ld, char trans, zint i, zint j) {
    return letter_is(trans, 'N') ? x + i + j * ld : x + j + i * ld;
}

template <class T>
void fill_zero(zint rows, zint cols, T* x, zint ld) {
    for (zint j = 0; j < cols; ++j) {
        for (zint i = 0; i < rows; ++i) x[i + j * ld] = Arith<T>::zero();
    }
}

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
