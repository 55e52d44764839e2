#include "blas/probe.hpp"

#include <immintrin.h>

#include "blas/kernel.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

constexpr std::uint32_t kCrc32cPolynomial = 0x82F63B78u;  // reflected Castagnoli polynomial

std::uint32_t crc32c_bytes(std::uint32_t crc, const double* x, zint n) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(x);
    for (zint i = 0; i < n * 8; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (kCrc32cPolynomial & (0u - (crc & 1u)));
    }
    return crc;
}

std::uint32_t crc32c(const double* x, zint n) {
    std::uint32_t crc = 0xFFFFFFFFu;
    if constexpr (kLevel >= CpuLevel::Sse42) {
        std::uint64_t wide = crc;
        for (zint i = 0; i < n; ++i) {
            std::uint64_t word;
            __builtin_memcpy(&word, x + i, 8);
            wide = _mm_crc32_u64(wide, word);
        }
        crc = static_cast<std::uint32_t>(wide);
    } else {
        crc = crc32c_bytes(crc, x, n);
    }
    return crc ^ 0xFFFFFFFFu;
}

// The two lanes of v added.
double lane_sum(__m128d v) {
    if constexpr (kLevel == CpuLevel::Sse3) {
        return _mm_cvtsd_f64(_mm_hadd_pd(v, v));
    } else if constexpr (kLevel >= CpuLevel::Ssse3) {
        const __m128i bits = _mm_castpd_si128(v);
        const __m128d swapped = _mm_castsi128_pd(_mm_alignr_epi8(bits, bits, 8));
        return _mm_cvtsd_f64(_mm_add_sd(v, swapped));
    } else {
        return _mm_cvtsd_f64(_mm_add_sd(v, _mm_unpackhi_pd(v, v)));
    }
}

double sum(const double* x, zint n) {
    zint i = 0;
    __m128d pair = _mm_setzero_pd();
    if constexpr (kLevel == CpuLevel::Avx) {
        __m256d quad = _mm256_setzero_pd();
        for (; i + 4 <= n; i += 4) quad = _mm256_add_pd(quad, _mm256_loadu_pd(x + i));
        pair = _mm_add_pd(_mm256_castpd256_pd128(quad), _mm256_extractf128_pd(quad, 1));
    }
    for (; i + 2 <= n; i += 2) pair = _mm_add_pd(pair, _mm_loadu_pd(x + i));
    double total = lane_sum(pair);
    if (i < n) total += x[i];
    return total;
}

}  // namespace

ProbeResult variant_probe(const zint& n, const double* x) {
    if (n <= 0) return {0.0, 0, static_cast<std::int32_t>(kLevel)};
    return {sum(x, n), crc32c(x, n), static_cast<std::int32_t>(kLevel)};
}

}  // namespace zor::ZOR_LEVEL_NS
