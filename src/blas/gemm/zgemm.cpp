// The complex GEMM engine, five variants. Avx, Sse42 and Ssse3 run the table-driven driver with the
// complex record of their level; Default and Sse3 the fixed design of zgemm_default (beta applied
// with the first depth block, depth blocks of 64 with the remainder first); Default on an AMD
// family 10h the alternate driver.

#include "blas/gemm/avx_paths.hpp"
#include "blas/gemm/blocking.hpp"
#include "blas/gemm/driver.hpp"
#include "blas/gemm/gemm.hpp"
#include "blas/gemm/pack.hpp"
#include "blas/gemm/pack_avx.hpp"
#include "blas/gemm/tiles.hpp"
#include "blas/kernel.hpp"
#include "blas/simd.hpp"
#include "service/cpu.hpp"

namespace zor::ZOR_LEVEL_NS {

namespace {

using Macro = GemmOperations<zcomplex>::MacroKernel;
using Pack = GemmOperations<zcomplex>::Pack;

template <class V, int MR, int NR, int RV, int NJ>
void macro_columns(const zint& mb, const zint& nb, const zint& kb, const zcomplex* packed_a,
                   const zcomplex* packed_b, const zcomplex* beta, zcomplex* c, const zint& ldc) {
    alignas(16) double beta_vector[4];
    make_beta_vector(*beta, beta_vector);
    zgemm_macro_columns<V, MR, NR, RV, NJ>(mb, nb, kb, packed_a, packed_b, beta_vector, c, ldc,
                                           gemm_a_group_bytes());
}

// ---- table-driven design ----------------------------------------------------------------------------

Macro* table_macro_kernel(const GemmChoice& choice) {
    if constexpr (kLevel == CpuLevel::Avx) {
        if (choice.extensions & kExtensionAvx512f) return &zgemm_macro_avx512;
        if (choice.extensions & kExtensionFma) return &zgemm_macro_fma;
#ifdef __AVX__
        return &macro_columns<Vec4, 2, 4, 2, 2>;
#endif
    }
    (void)choice;
    return &macro_columns<Vec2, 2, 4, 2, 2>;
}

void load_record(GemmBlockingParams<zcomplex>& params, const GemmChoice& choice) {
    const GemmRecord record = complex_gemm_record(kLevel, choice.sublevel);
    load_record_numbers(params, record);
    params.operations = {.choose_blocks = &choose_blocks<zcomplex>,
                         .buffer_sizes = &buffer_sizes<zcomplex>,
                         .get_buffers = &get_buffers<zcomplex>,
                         .pack_a_n = &pack_a_n<2>,
                         .pack_a_t = &pack_a_t<2>,
                         .pack_a_c = &pack_a_c<2>,
                         .pack_b_n = &pack_b_n<4, zcomplex>,
                         .pack_b_t = &pack_b_t<4, zcomplex>,
                         .pack_b_c = &pack_b_c<4>,
                         .spare = {nullptr, nullptr},
                         .macro_kernel = table_macro_kernel(choice)};
#ifdef __AVX__
    params.operations.pack_a_n = &zpack_a_n_avx;
    params.operations.pack_a_t = &zpack_a_rows_avx<false>;
    params.operations.pack_a_c = &zpack_a_rows_avx<true>;
    params.operations.pack_b_n = &zpack_b_n_avx;
    params.operations.pack_b_t = &zpack_b_rows_avx<false>;
    params.operations.pack_b_c = &zpack_b_rows_avx<true>;
#endif
}

// ---- fixed design -----------------------------------------------------------------------------------

// Panels of 2 complex rows of A and 2 complex columns of B; tiles of 2 rows by 2 columns.
void zgemm_fixed(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                 const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b,
                 const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc) {
    if (is_zero(alpha)) {
        if (!is_one(beta)) zscale_c(m, n, beta, c, ldc);
        return;
    }
    if (m < 4 || k < 8 || n < 8) {
        zgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        return;
    }
    const zint nc = zgemm_default_nc(n);
    void* block = zor_allocate(static_cast<std::uint64_t>(zgemm_default_bytes(nc)), kWorkAlignment);
    if (check_allocation(block, "xgemm") != 0) {
        zgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        return;
    }
    // The B area holds nc columns of depth 64; a last panel of one column spills its zero half into
    // the slack of at least a page that the carving leaves behind the area.
    const FixedGemmAreas areas = carve_zgemm_default(reinterpret_cast<std::uintptr_t>(block));
    const GemmLoop<zcomplex> loop{
        .mc = kZgemmDefaultRows,
        .nc = nc,
        .kc = kZgemmDefaultDepth,
        .mr = 2,
        .nr = 2,
        .kr = 4,
        .remainder_first = true,
        .a_area = reinterpret_cast<zcomplex*>(areas.a),
        .b_area = reinterpret_cast<zcomplex*>(areas.b),
        .pack_a = pick_pack<Pack>(transa, &pack_a_n<2>, &pack_a_t<2>, &pack_a_c<2>),
        .pack_b = pick_pack<Pack>(transb, &pack_b_n<2, zcomplex>, &pack_b_t<2, zcomplex>, &pack_b_c<2>),
        .kernel = &macro_columns<Vec2, 2, 2, 2, 2>};
    gemm_loop(loop, transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    zor_deallocate(block);
}

// ---- the alternate driver for AMD family 10h ---------------------------------------------------------

// A in panels of single complex rows, B in panels of 4 complex columns, tiles of 2 rows by 2
// columns; blocks of 128 rows by 128 deep stay in its 512 KiB level-2 cache.
void zgemm_family10h(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
                     const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b,
                     const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc) {
    if (is_zero(alpha)) {
        if (!is_one(beta)) zscale_c(m, n, beta, c, ldc);
        return;
    }
    if (m >= 2 && n >= 4 && k >= 4) {
        const GemmLoop<zcomplex> loop{
            .mc = 128,
            .nc = 1024,
            .kc = 128,
            .mr = 1,
            .nr = 4,
            .kr = 4,
            .pack_a = pick_pack<Pack>(transa, &pack_a_n<1>, &pack_a_t<1>, &pack_a_c<1>),
            .pack_b = pick_pack<Pack>(transb, &pack_b_n<4, zcomplex>, &pack_b_t<4, zcomplex>, &pack_b_c<4>),
            .kernel = &macro_columns<Vec2, 1, 4, 2, 2>};
        if (gemm_blocked_with_beta(loop, "xgemm", transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c,
                                   ldc))
            return;
    }
    zgemm_small(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace

void zgemm_with(const GemmChoice& choice, const char& transa, const char& transb, const zint& m,
                const zint& n, const zint& k, const zcomplex& alpha, const zcomplex* a, const zint& lda,
                const zcomplex* b, const zint& ldb, const zcomplex& beta, zcomplex* c, const zint& ldc) {
    if (m <= 0 || n <= 0) return;
    if constexpr (kLevel == CpuLevel::Default || kLevel == CpuLevel::Sse3) {
        if (kLevel == CpuLevel::Default && choice.family_10h) {
            zgemm_family10h(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        } else {
            zgemm_fixed(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
        }
    } else {
        GemmBlockingParams<zcomplex> params;
        load_record(params, choice);
        gemm_table_driven<zcomplex>(params, &zgemm_small, &zscale_c, nullptr, transa, transb, m, n, k, alpha,
                                    a, lda, b, ldb, beta, c, ldc);
    }
}

void zgemm(const char& transa, const char& transb, const zint& m, const zint& n, const zint& k,
           const zcomplex& alpha, const zcomplex* a, const zint& lda, const zcomplex* b, const zint& ldb,
           const zcomplex& beta, zcomplex* c, const zint& ldc) {
    zgemm_with(processor_choice(), transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

}  // namespace zor::ZOR_LEVEL_NS
