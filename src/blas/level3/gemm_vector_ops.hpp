#pragma once
// The vector operations of gemm_tiles.hpp at the level being compiled: 128-bit SSE (with the SSE3
// pair instructions from level Sse3 on) and, in the Avx variant, 256-bit AVX without FMA. Internal
// linkage, as the tiles that use them.

#include <immintrin.h>

#include "blas/kernel.hpp"

namespace zor::ZOR_LEVEL_NS {
namespace {

struct SseOps {
    using Vec = __m128d;
    static constexpr int kLanes = 2;
    static Vec load(const double* p) { return _mm_load_pd(p); }
    static Vec loadu(const double* p) { return _mm_loadu_pd(p); }
    static void storeu(double* p, Vec v) { _mm_storeu_pd(p, v); }
    static Vec broadcast(const double* p) { return _mm_load1_pd(p); }
    static Vec broadcast_pair(const double* p) { return _mm_loadu_pd(p); }
    static Vec zero() { return _mm_setzero_pd(); }
    static Vec mul_add(Vec a, Vec b, Vec c) { return _mm_add_pd(_mm_mul_pd(a, b), c); }
    static Vec add(Vec a, Vec b) { return _mm_add_pd(a, b); }
    static Vec sub(Vec a, Vec b) { return _mm_sub_pd(a, b); }
    static Vec mul(Vec a, Vec b) { return _mm_mul_pd(a, b); }
    static Vec swap_pairs(Vec a) { return _mm_shuffle_pd(a, a, 1); }
    static Vec add_sub(Vec a, Vec b) {
        if constexpr (kLevel >= CpuLevel::Sse3) {
            return _mm_addsub_pd(a, b);
        } else {
            return _mm_add_pd(a, _mm_xor_pd(b, _mm_set_pd(0.0, -0.0)));
        }
    }
};

#ifdef __AVX__
struct AvxOps {
    using Vec = __m256d;
    static constexpr int kLanes = 4;
    static Vec load(const double* p) { return _mm256_load_pd(p); }
    static Vec loadu(const double* p) { return _mm256_loadu_pd(p); }
    static void storeu(double* p, Vec v) { _mm256_storeu_pd(p, v); }
    static Vec broadcast(const double* p) { return _mm256_broadcast_sd(p); }
    static Vec broadcast_pair(const double* p) {
        return _mm256_broadcast_pd(reinterpret_cast<const __m128d*>(p));
    }
    static Vec zero() { return _mm256_setzero_pd(); }
    static Vec mul_add(Vec a, Vec b, Vec c) { return _mm256_add_pd(_mm256_mul_pd(a, b), c); }
    static Vec add(Vec a, Vec b) { return _mm256_add_pd(a, b); }
    static Vec sub(Vec a, Vec b) { return _mm256_sub_pd(a, b); }
    static Vec mul(Vec a, Vec b) { return _mm256_mul_pd(a, b); }
    static Vec swap_pairs(Vec a) { return _mm256_permute_pd(a, 0x5); }
    static Vec add_sub(Vec a, Vec b) { return _mm256_addsub_pd(a, b); }
};
#endif

}  // namespace
}  // namespace zor::ZOR_LEVEL_NS
