// The real GEMM engine, five variants. Avx, Sse42 and Ssse3 run the table-driven driver with the
// record of their level; Default and Sse3 the fixed design; Default on an AMD family 10h the
// alternate driver.

#include "blas/gemm/avx_paths.hpp"
#include "blas/gemm/blocking.hpp"
#include "blas/gemm/driver.hpp"
#include "blas/gemm/gemm.hpp"
#include "blas/gemm/pack.hpp"
#include "blas/gemm/pack_avx.hpp"
#include "blas/gemm/tiles.hpp"
#include "blas/kernel.hpp"
#include "blas/level2/level2.hpp"
#include "blas/simd.hpp"
#include "service/cpu.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

using Macro = GemmOperations<double>::MacroKernel;
using Pack = GemmOperations<double>::Pack;

template <int MR, int NR, int RV, int NJ, int KB = 0, bool kWholeSlivers = false>
void macro_sse(const zint& mb, const zint& nb, const zint& kb, const double* packed_a, const double* packed_b,
               const double* beta, double* c, const zint& ldc) {
    dgemm_macro_columns<Vec2, MR, NR, RV, NJ, KB, kWholeSlivers>(mb, nb, kb, packed_a, packed_b, *beta, c,
                                                                 ldc, gemm_a_group_bytes());
}

// ---- table-driven design ----------------------------------------------------------------------------

// Panel widths of the level's record (real_gemm_record): the packing routines need them at compile
// time.
constexpr int kTableMr = kLevel == CpuLevel::Sse42 ? 2 : 4;
constexpr int kTableNr = kLevel == CpuLevel::Avx ? 8 : (kLevel == CpuLevel::Sse42 ? 8 : 4);

Macro* table_macro_kernel(const GemmChoice& choice, int record_index) {
    if constexpr (kLevel == CpuLevel::Avx) {
        if (choice.extensions & kExtensionAvx512f) return &dgemm_macro_avx512;
        if (choice.extensions & kExtensionFma) return &dgemm_macro_fma;
#ifdef __AVX__
        return [](const zint& mb, const zint& nb, const zint& kb, const double* packed_a,
                  const double* packed_b, const double* beta, double* c, const zint& ldc) {
            dgemm_macro_columns<Vec4, 4, 8, 2, 4>(mb, nb, kb, packed_a, packed_b, *beta, c, ldc,
                                                  gemm_a_group_bytes());
        };
#endif
    } else if constexpr (kLevel == CpuLevel::Sse42) {
        // Record 1 (processors with AES) takes taller tiles: 3 panels of 2 rows by 4 columns.
        return record_index == 1 ? &macro_sse<2, 8, 3, 4> : &macro_sse<2, 8, 2, 4>;
    } else {
        // Record 1 (with SSE4.1) takes 8 rows by 2 columns, record 0 4 rows by 4 columns.
        return record_index == 1 ? &macro_sse<4, 4, 4, 2> : &macro_sse<4, 4, 2, 4>;
    }
    (void)choice;
    (void)record_index;
    return nullptr;
}

void load_record(GemmBlockingParams<double>& params, const GemmChoice& choice) {
    const GemmRecord record = real_gemm_record(kLevel, choice.sublevel);
    load_record_numbers(params, record);
    params.operations = {.choose_blocks = &choose_blocks<double>,
                         .buffer_sizes = &buffer_sizes<double>,
                         .get_buffers = &get_buffers<double>,
                         .pack_a_n = &pack_a_n<kTableMr>,
                         .pack_a_t = &pack_a_t<kTableMr>,
                         .pack_a_c = &pack_a_t<kTableMr>,
                         .pack_b_n = &pack_b_n<kTableNr, double>,
                         .pack_b_t = &pack_b_t<kTableNr, double>,
                         .pack_b_c = &pack_b_t<kTableNr, double>,
                         .spare = {nullptr, nullptr},
                         .macro_kernel = table_macro_kernel(choice, record.record_index)};
#ifdef __AVX__
    params.operations.pack_a_n = &pack_a_n_avx;
    params.operations.pack_a_t = params.operations.pack_a_c = &pack_a_t_avx;
    params.operations.pack_b_n = &pack_b_n_avx;
    params.operations.pack_b_t = params.operations.pack_b_c = &pack_b_t_avx;
#endif
}

// ---- fixed design -----------------------------------------------------------------------------------

// Default and Sse3: panels of 2 rows of A and 4 columns of B, tiles of 2 panels by 4 columns; one
// kernel for the level's full depth (128 or 112), one for any other.
constexpr zint kFixedDepth = kLevel == CpuLevel::Sse3 ? 112 : 128;

struct FixedKernels {
    Pack* pack_a;
    Pack* pack_b;
    Macro* full_depth;
    Macro* any_depth;
};

FixedKernels fixed_kernels(const char& transa, const char& transb, bool whole_slivers) {
    FixedKernels kernels{};
    kernels.pack_a = lsame(transa, 'N') ? static_cast<Pack*>(&pack_a_n<2>) : static_cast<Pack*>(&pack_a_t<2>);
    kernels.pack_b = lsame(transb, 'N') ? &pack_b_n<4, double> : &pack_b_t<4, double>;
    if (whole_slivers) {
        kernels.full_depth = &macro_sse<2, 4, 2, 4, kFixedDepth, true>;
        kernels.any_depth = &macro_sse<2, 4, 2, 4, 0, true>;
    } else {
        kernels.full_depth = &macro_sse<2, 4, 2, 4, kFixedDepth>;
        kernels.any_depth = &macro_sse<2, 4, 2, 4>;
    }
    return kernels;
}

// The columns j of [first, n) one at a time by the level's dgemv: C(:, j) := beta C(:, j) +
// alpha op(A) op(B)(:, j), op(A) being A (m x k) or the transpose of the k x m matrix A.
void remaining_columns(const char& transa, const char& transb, zint first, const zint& m, const zint& n,
                       const zint& k, const double& alpha, const double* a, const zint& lda, const double* b,
                       const zint& ldb, const double& beta, double* c, const zint& ldc) {
    const bool plain = lsame(transa, 'N');
    const zint rows = plain ? m : k, cols = plain ? k : m;
    // Column j of op(B) is column j of B, or row j of B read across.
    const zint step = lsame(transb, 'N') ? 1 : ldb;
    const zint unit = 1;
    for (zint j = first; j < n; ++j) {
        dgemv(transa, rows, cols, alpha, a, lda, op_address(b, ldb, transb, 0, j), step, beta, c + j * ldc,
              unit);
    }
}

// The blocked part of the fixed design: rows [0, m rounded down to even) and columns [0, main_n)
// through the loop nest, beta applied with the first depth block; the odd last row of each column
// and depth block by the small path.
void fixed_blocked(GemmLoop<double> loop, const char& transa, const char& transb, const zint& m, zint main_n,
                   const zint& k, const double& alpha, const double* a, const zint& lda, const double* b,
                   const zint& ldb, const double& beta, double* c, const zint& ldc) {
    const zint main_m = m / 2 * 2;
    const auto odd_row = [&](zint jc, zint nb, zint pc, zint kb, const double& block_beta) {
        if (main_m == m) return;
        const zint one_row = 1;
        dgemm_small(transa, transb, one_row, nb, kb, alpha, op_address(a, lda, transa, m - 1, pc), lda,
                    op_address(b, ldb, transb, pc, jc), ldb, block_beta, c + (m - 1) + jc * ldc, ldc);
    };
    gemm_loop(loop, transa, transb, main_m, main_n, k, alpha, a, lda, b, ldb, beta, c, ldc, odd_row);
}

// The loop of the fixed design for its blocks and areas: panels of 2 rows of A and 4 columns of B.
GemmLoop<double> fixed_loop(const FixedKernels& kernels, zint mc, zint nc, zint kc,
                            const FixedGemmAreas& areas, bool light) {
    return {.mc = mc,
            .nc = nc,
            .kc = kc,
            .mr = 2,
            .nr = 4,
            .kr = 4,
            .a_area = reinterpret_cast<double*>(areas.a),
            .b_area = reinterpret_cast<double*>(areas.b),
            .pack_a = kernels.pack_a,
            .pack_b = kernels.pack_b,
            .kernel = kernels.any_depth,
            .special_depth = kFixedDepth,
            .special_kernel = kernels.full_depth,
            .b_panel_area = light ? reinterpret_cast<double*>(areas.third) : nullptr};
}

void dgemm_default_fixed(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                         const double& alpha, const double* a, const zint& lda, const double* b,
                         const zint& ldb, const double& beta, double* c, const zint& ldc) {
    if (beta != 1.0) scale_c(m, n, beta, c, ldc);
    if (alpha == 0.0) return;
    const double one = 1.0;
    if (m < 2 || n < 2 || k < 2) {
        dgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
        return;
    }
    const DefaultGemmBlocks blocks = default_gemm_blocks(m, n, k);
    void* block = zor_allocate(static_cast<std::uint64_t>(default_gemm_bytes(blocks)), kWorkAlignment);
    if (check_allocation(block, "xdgemm") != 0) {
        dgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
        return;
    }
    const FixedGemmAreas areas = carve_default_gemm(reinterpret_cast<std::uintptr_t>(block), blocks);
    const zint main_n = n / 4 * 4;
    fixed_blocked(
        fixed_loop(fixed_kernels(transa, transb, false), blocks.mc, blocks.nc, blocks.kc, areas, false),
        transa, transb, m, main_n, k, alpha, a, lda, b, ldb, one, c, ldc);
    remaining_columns(transa, transb, main_n, m, n, k, alpha, a, lda, b, ldb, one, c, ldc);
    zor_deallocate(block);
}

void dgemm_sse3_fixed(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                      const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
                      const double& beta, double* c, const zint& ldc) {
    if (alpha == 0.0) {
        if (beta != 1.0) scale_c(m, n, beta, c, ldc);
        return;
    }
    if (m <= 2 || n <= 2 || k <= 2) {
        dgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        return;
    }
    const Sse3GemmBlocks blocks = sse3_gemm_blocks(transb, m, n, k);
    void* block = zor_allocate(static_cast<std::uint64_t>(sse3_gemm_bytes(blocks)), kWorkAlignment);
    if (check_allocation(block, "xdgemm") != 0) {
        dgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        return;
    }
    const FixedGemmAreas areas = carve_sse3_gemm(reinterpret_cast<std::uintptr_t>(block), blocks);
    const bool light = blocks.mode == Sse3GemmMode::Light;
    const zint main_n = n / 4 * 4;
    // m and n multiples of 4: no odd row, no remaining columns, and every sliver a whole one.
    const bool aligned = blocks.mode == Sse3GemmMode::FullAligned;
    fixed_blocked(
        fixed_loop(fixed_kernels(transa, transb, aligned), blocks.mc, blocks.nc, blocks.kc, areas, light),
        transa, transb, m, main_n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    remaining_columns(transa, transb, main_n, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    zor_deallocate(block);
}

// ---- the alternate driver for AMD family 10h ---------------------------------------------------------

// Tuned for its 64 KiB level-1 and 512 KiB level-2 caches: A in panels of 4 rows (a block of 192
// rows by 256 fills a little under the level 2), B in panels of 2 columns, tiles of 8 rows by 2.
void dgemm_family10h(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                     const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
                     const double& beta, double* c, const zint& ldc) {
    if (alpha == 0.0) {
        if (beta != 1.0) scale_c(m, n, beta, c, ldc);
        return;
    }
    if (m >= 4 && n >= 2 && k >= 4) {
        const GemmLoop<double> loop{
            .mc = 192,
            .nc = 2048,
            .kc = 256,
            .mr = 4,
            .nr = 2,
            .kr = 4,
            .pack_a =
                lsame(transa, 'N') ? static_cast<Pack*>(&pack_a_n<4>) : static_cast<Pack*>(&pack_a_t<4>),
            .pack_b = lsame(transb, 'N') ? &pack_b_n<2, double> : &pack_b_t<2, double>,
            .kernel = &macro_sse<4, 2, 4, 2>};
        if (gemm_blocked_with_beta(loop, "xdgemm", transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c,
                                   ldc))
            return;
    }
    dgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace

void dgemm_with(const GemmChoice& choice, const char& transa, const char& transb, const zint& m,
                const zint& n, const zint& k, const double& alpha, const double* a, const zint& lda,
                const double* b, const zint& ldb, const double& beta, double* c, const zint& ldc) {
    if (m <= 0 || n <= 0) return;
    if constexpr (kLevel == CpuLevel::Default) {
        if (choice.family_10h) {
            dgemm_family10h(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        } else {
            dgemm_default_fixed(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        }
    } else if constexpr (kLevel == CpuLevel::Sse3) {
        dgemm_sse3_fixed(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    } else {
        GemmBlockingParams<double> params;
        load_record(params, choice);
        DirectPath<double>* direct = nullptr;
        SmallPath<double>* small = &dgemm_small;
        if constexpr (kLevel == CpuLevel::Avx) {
            if ((choice.extensions & kExtensionAvx512f) && !choice.packed_only) direct = &dgemm_direct_avx512;
            small = (choice.extensions & (kExtensionFma | kExtensionAvx512f)) ? &dgemm_small_fused
                                                                              : &dgemm_small_unfused;
        }
        gemm_table_driven<double>(params, small, &scale_c, direct, transa, transb, m, n, k, alpha, a, lda, b,
                                  ldb, beta, c, ldc);
    }
}

void dgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
           const double& alpha, const double* a, const zint& lda, const double* b, const zint& ldb,
           const double& beta, double* c, const zint& ldc) {
    dgemm_with(processor_choice(), transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace zor::ZOR_LEVEL_NS
