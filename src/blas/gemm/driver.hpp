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
    return lsame(trans, 'T') ? t : c;
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
// A path that computes C += alpha·op(A)·op(B) from the caller's arrays for the shapes it takes, with
// the bits of the blocked path; false when it does not take the shape.
template <class T>
using DirectPath = bool(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                        const T& alpha, const T* a, const zint& lda, const T* b, const zint& ldb, T* c,
                        const zint& ldc);

// The loop nest of every blocked design: column blocks of nc, depth blocks of kc (or, with
// `remainder_first`, the k mod kc remainder first and whole blocks after it), B packed once per
// column and depth block, row blocks of mc with A (times alpha) packed once per block, and the
// macro-kernel on each. Beta goes in with the first depth block (pass one when C has been scaled
// already). The designs differ only in what this record says.
template <class T>
struct GemmLoop {
    using Pack = typename GemmOperations<T>::Pack;
    using MacroKernel = typename GemmOperations<T>::MacroKernel;

    zint mc, nc, kc;
    zint mr, nr, kr;  // panel widths of A and B; packed depths are multiples of kr
    bool remainder_first = false;
    T* a_area = nullptr;
    T* b_area = nullptr;
    Pack* pack_a = nullptr;
    Pack* pack_b = nullptr;
    MacroKernel* kernel = nullptr;
    // A kernel compiled for one packed depth, used for depth blocks of exactly that depth.
    zint special_depth = 0;
    MacroKernel* special_kernel = nullptr;
    // When set, B is packed a panel of nr columns at a time here, inside the row blocks, instead of
    // a whole block into b_area (the light mode of the Sse3 design).
    T* b_panel_area = nullptr;
};

// No work after the row blocks of a column and depth block.
struct NothingAfterRows {
    template <class T>
    void operator()(zint, zint, zint, zint, const T&) const {}
};

// `after_rows(jc, nb, pc, kb, block_beta)` runs after the row blocks of each column and depth block
// (the fixed design finishes an odd last row there).
template <class T, class AfterRows = NothingAfterRows>
void gemm_loop(const GemmLoop<T>& g, const char& transa, const char& transb, zint m, zint n, zint k,
               const T& alpha, const T* a, const zint& lda, const T* b, const zint& ldb, const T& beta, T* c,
               const zint& ldc, AfterRows&& after_rows = {}) {
    const auto round_up = [](zint x, zint step) { return (x + step - 1) / step * step; };
    const T one = zor::one<T>();
    const zint first_depth = g.remainder_first && k % g.kc != 0 ? k % g.kc : g.kc;
    for (zint jc = 0; jc < n; jc += g.nc) {
        const zint nb = n - jc < g.nc ? n - jc : g.nc;
        for (zint pc = 0, depth = first_depth; pc < k; pc += depth, depth = g.kc) {
            const zint kb = k - pc < depth ? k - pc : depth;
            const zint kb_padded = round_up(kb, g.kr);
            const T& block_beta = pc == 0 ? beta : one;
            auto* kernel =
                kb_padded == g.special_depth && g.special_kernel != nullptr ? g.special_kernel : g.kernel;
            const T* b_block = op_address(b, ldb, transb, pc, jc);
            if (g.b_panel_area == nullptr) g.pack_b(kb, nb, b_block, ldb, g.b_area, g.nr * kb_padded, one);
            for (zint ic = 0; ic < m; ic += g.mc) {
                const zint mb = m - ic < g.mc ? m - ic : g.mc;
                g.pack_a(mb, kb, op_address(a, lda, transa, ic, pc), lda, g.a_area, g.mr * kb_padded, alpha);
                T* c_block = c + ic + jc * ldc;
                if (g.b_panel_area == nullptr) {
                    kernel(mb, nb, kb_padded, g.a_area, g.b_area, &block_beta, c_block, ldc);
                    continue;
                }
                for (zint j = 0; j < nb; j += g.nr) {
                    const zint width = nb - j < g.nr ? nb - j : g.nr;
                    g.pack_b(kb, width, op_address(b, ldb, transb, pc, jc + j), ldb, g.b_panel_area,
                             g.nr * kb_padded, one);
                    kernel(mb, width, kb_padded, g.a_area, g.b_panel_area, &block_beta, c_block + j * ldc,
                           ldc);
                }
            }
            after_rows(jc, nb, pc, kb, block_beta);
        }
    }
}

// The table-driven variant, with its record loaded into `params`; `direct` (may be null) is asked
// before anything is packed.
template <class T>
void gemm_table_driven(GemmBlockingParams<T>& params, SmallPath<T>* small, ScaleC<T>* scale,
                       DirectPath<T>* direct, const char& transa, const char& transb, const zint& m,
                       const zint& n, const zint& k, const T& alpha, const T* a, const zint& lda, const T* b,
                       const zint& ldb, const T& beta, T* c, const zint& ldc) {
    if (m <= 0 || n <= 0) return;
    if (!is_one(beta)) scale(m, n, beta, c, ldc);
    if (is_zero(alpha)) return;
    const T one = zor::one<T>();
    if (m < params.mr || n < params.nr || k < params.kr || m < params.min_m || n < params.min_n ||
        k < params.min_k) {
        small(transa, transb, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
        return;
    }
    if (direct != nullptr && direct(transa, transb, m, n, k, alpha, a, lda, b, ldb, c, ldc)) return;
    const GemmOperations<T>& ops = params.operations;
    ops.choose_blocks(m, n, k, params);
    const zint k_rounded = (k + params.kr - 1) / params.kr * params.kr;
    ops.buffer_sizes(kGemmAreasAll, kGemmClampToProblem, m, n, k_rounded, params);
    void* block = ops.get_buffers(kGemmAreasAll, params);
    if (check_allocation(block, "xgemm") != 0) {
        small(transa, transb, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
        return;
    }
    const GemmLoop<T> loop{.mc = params.mc,
                           .nc = params.nc,
                           .kc = params.kc,
                           .mr = params.mr,
                           .nr = params.nr,
                           .kr = params.kr,
                           .a_area = static_cast<T*>(params.a_buffer.start),
                           .b_area = static_cast<T*>(params.b_buffer.start),
                           .pack_a = pick_pack(transa, ops.pack_a_n, ops.pack_a_t, ops.pack_a_c),
                           .pack_b = pick_pack(transb, ops.pack_b_n, ops.pack_b_t, ops.pack_b_c),
                           .kernel = ops.macro_kernel};
    gemm_loop(loop, transa, transb, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
    zor_deallocate(block);
}

// A blocked product with fixed blocks and its own allocation, beta applied with the first depth
// block instead of beforehand: the alternate drivers. Returns false, having reported the failure
// under `routine`, when the work area cannot be had; C is then untouched. `loop` brings the blocks,
// panel widths, packing routines and kernel; its areas are carved here.
template <class T>
bool gemm_blocked_with_beta(GemmLoop<T> loop, const char* routine, const char& transa, const char& transb,
                            const zint& m, const zint& n, const zint& k, const T& alpha, const T* a,
                            const zint& lda, const T* b, const zint& ldb, const T& beta, T* c,
                            const zint& ldc) {
    const auto round_up = [](zint x, zint step) { return (x + step - 1) / step * step; };
    const zint mc = round_up(m < loop.mc ? m : loop.mc, loop.mr),
               nc = round_up(n < loop.nc ? n : loop.nc, loop.nr);
    const zint kc = round_up(k < loop.kc ? k : loop.kc, loop.kr);
    const std::uint64_t a_bytes = static_cast<std::uint64_t>(round_up(mc * kc * sizeof(T), 4096));
    const std::uint64_t b_bytes = static_cast<std::uint64_t>(nc * kc * sizeof(T));
    void* block = zor_allocate(a_bytes + b_bytes + 4096, kWorkAlignment);
    if (check_allocation(block, routine) != 0) return false;
    loop.a_area =
        reinterpret_cast<T*>((reinterpret_cast<std::uintptr_t>(block) + 4095) & ~std::uintptr_t{4095});
    loop.b_area = loop.a_area + a_bytes / sizeof(T);
    gemm_loop(loop, transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    zor_deallocate(block);
    return true;
}

}  // namespace zor::ZOR_LEVEL_NS
