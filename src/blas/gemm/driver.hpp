#pragma once
// The GEMM driver of the table-driven design, shared by the real and the complex engines of a level:
// quick returns, beta, the thresholds, the blocks, one allocation, and the strategy-2 loop nest (B
// block outermost, A block innermost), everything else through the routine table of the record.

#include "blas/gemm/blocking.hpp"
#include "blas/gemm/gemm.hpp"
#include "blas/kernel.hpp"
#include "service/cpu.hpp"
#include "service/element.hpp"
#include "service/handlers.hpp"
#include "service/letters.hpp"
#include "service/memory.hpp"

namespace zor::ZOR_LEVEL_NS {

// What this processor answers to the questions a level's GEMM variants ask.
inline GemmChoice processor_choice() {
    GemmChoice choice{};
    if constexpr (kLevel == CpuLevel::Avx) choice.extensions = detect_avx_extensions();
    if constexpr (kLevel == CpuLevel::Sse42 || kLevel == CpuLevel::Ssse3)
        choice.sublevel = detect_cpu_sublevel();
    if constexpr (kLevel == CpuLevel::Default) {
        choice.family_10h = detect_cpu_level() == CpuLevel::Default && is_amd_family_10h() == 1;
    }
    return choice;
}

// The packing routine for an operation letter: "N" packs X, "T" Xᵀ, anything else the conjugate
// transpose, which for real data is the transpose again.
template <class Pack>
Pack* pick_pack(char trans, Pack* n, Pack* t, Pack* c) {
    if (lsame(trans, 'N')) return n;
    return (trans == 'T' || trans == 't') ? t : c;
}

// Where op(X)(i, p) lives.
template <class T>
const T* op_address(const T* x, zint ld, char trans, zint i, zint p) {
    return lsame(trans, 'N') ? x + i + p * ld : x + p + i * ld;
}

template <class T>
using SmallPath = void(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                       const T& alpha, const T* a, const zint& lda, const T* b, const zint& ldb,
                       const T& beta, T* c, const zint& ldc);
template <class T>
using ScaleC = void(const zint& m, const zint& n, const T& beta, T* c, const zint& ldc);

// The table-driven variant, with its record loaded into `params`.
template <class T>
void gemm_table_driven(GemmBlockingParams<T>& params, SmallPath<T>* small, ScaleC<T>* scale,
                       const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                       const T& alpha, const T* a, const zint& lda, const T* b, const zint& ldb,
                       const T& beta, T* c, const zint& ldc) {
    if (m <= 0 || n <= 0) return;
    if (!is_one(beta)) scale(m, n, beta, c, ldc);
    if (is_zero(alpha)) return;
    const T one = zor::one<T>();
    if (m < params.mr || n < params.nr || k < params.kr || m < params.min_m || n < params.min_n ||
        k < params.min_k) {
        small(transa, transb, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
        return;
    }
    const GemmOperations<T>& ops = params.operations;
    ops.choose_blocks(m, n, k, params);
    const zint k_rounded = (k + params.kr - 1) / params.kr * params.kr;
    ops.buffer_sizes(kGemmAreasAll, kGemmClampToProblem, m, n, k_rounded, params);
    void* block = ops.get_buffers(kGemmAreasAll, params);
    if (check_allocation(block, "xgemm") != 0) {
        small(transa, transb, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
        return;
    }
    T* packed_a = static_cast<T*>(params.a_buffer.start);
    T* packed_b = static_cast<T*>(params.b_buffer.start);
    auto* pack_a = pick_pack(transa, ops.pack_a_n, ops.pack_a_t, ops.pack_a_c);
    auto* pack_b = pick_pack(transb, ops.pack_b_n, ops.pack_b_t, ops.pack_b_c);
    for (zint jc = 0; jc < n; jc += params.nc) {
        const zint nb = n - jc < params.nc ? n - jc : params.nc;
        for (zint pc = 0; pc < k; pc += params.kc) {
            const zint kb = k - pc < params.kc ? k - pc : params.kc;
            const zint kb_padded = (kb + params.kr - 1) / params.kr * params.kr;
            pack_b(kb, nb, op_address(b, ldb, transb, pc, jc), ldb, packed_b, params.nr * kb_padded, one);
            for (zint ic = 0; ic < m; ic += params.mc) {
                const zint mb = m - ic < params.mc ? m - ic : params.mc;
                pack_a(mb, kb, op_address(a, lda, transa, ic, pc), lda, packed_a, params.mr * kb_padded,
                       alpha);
                ops.macro_kernel(mb, nb, kb_padded, packed_a, packed_b, &one, c + ic + jc * ldc, ldc);
            }
        }
    }
    zor_deallocate(block);
}

// A blocked product with fixed blocks, beta applied with the first depth block instead of
// beforehand: the loop of the alternate drivers. Returns false, having reported the failure under
// `routine`, when the work area cannot be had; C is then untouched.
template <class T>
struct BetaBlockedGemm {
    zint mr, nr, kr, mc, nc, kc;
    typename GemmOperations<T>::Pack* pack_a;
    typename GemmOperations<T>::Pack* pack_b;
    typename GemmOperations<T>::MacroKernel* macro_kernel;
};

template <class T>
bool gemm_blocked_with_beta(const BetaBlockedGemm<T>& g, const char* routine, const char& transa,
                            const char& transb, const zint& m, const zint& n, const zint& k, const T& alpha,
                            const T* a, const zint& lda, const T* b, const zint& ldb, const T& beta, T* c,
                            const zint& ldc) {
    const auto round_up = [](zint x, zint step) { return (x + step - 1) / step * step; };
    const zint mc = round_up(m < g.mc ? m : g.mc, g.mr), nc = round_up(n < g.nc ? n : g.nc, g.nr);
    const zint kc = round_up(k < g.kc ? k : g.kc, g.kr);
    const std::uint64_t a_bytes = static_cast<std::uint64_t>(round_up(mc * kc * sizeof(T), 4096));
    const std::uint64_t b_bytes = static_cast<std::uint64_t>(nc * kc * sizeof(T));
    void* block = zor_allocate(a_bytes + b_bytes + 4096, kWorkAlignment);
    if (check_allocation(block, routine) != 0) return false;
    T* packed_a =
        reinterpret_cast<T*>((reinterpret_cast<std::uintptr_t>(block) + 4095) & ~std::uintptr_t{4095});
    T* packed_b = packed_a + a_bytes / sizeof(T);
    const T one = zor::one<T>();
    for (zint jc = 0; jc < n; jc += g.nc) {
        const zint nb = n - jc < g.nc ? n - jc : g.nc;
        for (zint pc = 0; pc < k; pc += g.kc) {
            const zint kb = k - pc < g.kc ? k - pc : g.kc;
            const zint kb_padded = round_up(kb, g.kr);
            g.pack_b(kb, nb, op_address(b, ldb, transb, pc, jc), ldb, packed_b, g.nr * kb_padded, one);
            for (zint ic = 0; ic < m; ic += g.mc) {
                const zint mb = m - ic < g.mc ? m - ic : g.mc;
                g.pack_a(mb, kb, op_address(a, lda, transa, ic, pc), lda, packed_a, g.mr * kb_padded, alpha);
                g.macro_kernel(mb, nb, kb_padded, packed_a, packed_b, pc == 0 ? &beta : &one,
                               c + ic + jc * ldc, ldc);
            }
        }
    }
    zor_deallocate(block);
    return true;
}

}  // namespace zor::ZOR_LEVEL_NS
