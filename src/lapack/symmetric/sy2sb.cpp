// sy2sb: the first stage of the two-stage tridiagonal reduction, A to a band of kd off-diagonals
// on the level-3 engine. Panel by panel, the QR factorization of the kd columns below the band
// gives Q = I - V T Vᴴ, and the rest of the triangle becomes Qᴴ A22 Q = A22 - V Wᴴ - W Vᴴ with
// X = A22 V T and W = X - ½ V (Tᴴ Vᴴ X): a Hermitian product, a her2k and small products per panel.
//
// The upper triangle is the lower triangle of B = Aᵀ (= conj(A), the same eigenvalues) read across:
// B(i, j) = A(j, i). The panels are copied out of A and their triangles written back across; the
// products with B22 = conj(A22) are taken on the stored upper triangle of A22 with conj(V), conj(T)
// and conj(W), which conjugates every product (for real data nothing changes). The band returned is
// B's.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

namespace {

// The Hermitian product X = A V is taken by blocks of this many columns of A, every product on gemm.
constexpr zint kProductBlock = 128;

// The parts of the workspace: the panel and its V (n by kd), X and then W (n by kd), T and S
// (kd by kd each), tau (kd), geqr2's scratch (kd) and a diagonal block of A (kProductBlock²).
struct BandWork {
    zint v, x, t, s, tau, scratch, block, size;
};

BandWork band_work(zint n, zint kd) {
    BandWork w{};
    w.v = 0;
    w.x = n * kd;
    w.t = 2 * n * kd;
    w.s = w.t + kd * kd;
    w.tau = w.s + kd * kd;
    w.scratch = w.tau + kd;
    w.block = w.scratch + kd;
    w.size = w.block + min_of(n, kProductBlock) * min_of(n, kProductBlock);
    return w;
}

// X := A V for the n by n Hermitian A of the stored triangle uplo and V n by k, all on gemm. Block
// column J of the triangle: its diagonal block D is copied out as the stored triangle with half the
// diagonal and zeros across, so that D V_J + Dᴴ V_J is its product (halving is exact, and the copy
// runs along the columns); the blocks beside it (below for "L", above for "U") multiply V_J into
// the rows they face, and their adjoints multiply those rows of V into X_J.
template <class T>
void hermitian_product(bool upper, zint n, zint k, const T* a, zint lda, const T* v, zint ldv, T* x, zint ldx,
                       T* block) {
    const T one = zor::one<T>(), zero = zor::zero<T>();
    for (zint j = 0; j < n; j += kProductBlock) {
        const zint b = min_of(kProductBlock, n - j);
        const T* diagonal = a + j + j * lda;
        for (zint c = 0; c < b; ++c) {
            for (zint r = 0; r < b; ++r) {
                const bool stored = upper ? r < c : r > c;
                block[r + c * b] = stored ? diagonal[r + c * lda] : zero;
            }
            block[c + c * b] = from_real<T>(0.5 * real(diagonal[c + c * lda]));
        }
        Blas<T>::gemm('N', 'N', b, k, b, one, block, b, v + j, ldv, zero, x + j, ldx);
        Blas<T>::gemm(kAdjoint<T>, 'N', b, k, b, one, block, b, v + j, ldv, one, x + j, ldx);
    }
    for (zint j = 0; j < n; j += kProductBlock) {
        const zint b = min_of(kProductBlock, n - j);
        // The rows beside block column J: after it for "L", before it for "U".
        const zint first = upper ? 0 : j + b, count = upper ? j : n - j - b;
        if (count == 0) continue;
        const T* side = a + first + j * lda;
        Blas<T>::gemm('N', 'N', count, k, b, one, side, lda, v + j, ldv, one, x + first, ldx);
        Blas<T>::gemm(kAdjoint<T>, 'N', b, k, count, one, side, lda, v + first, ldv, one, x + j, ldx);
    }
}

}  // namespace

zint sy2sb_work_size(zint n, zint kd) {
    return band_work(n, max_of(kd, 1)).size;
}

template <class T>
void sy2sb(char uplo, zint n, zint kd, T* a, zint lda, T* ab, zint ldab, T* work, zint lwork, zint& info) {
    const bool upper = lsame(uplo, 'U');
    const BandWork layout = band_work(n, max_of(kd, 1));
    info = check_arguments(routine_name<T>("DSYTRD_SY2SB", "ZHETRD_HE2HB"), {{!upper && !lsame(uplo, 'L'), 1},
                                                                             {n < 0, 2},
                                                                             {kd < 0, 3},
                                                                             {lda < max_of(1, n), 5},
                                                                             {ldab < max_of(1, kd + 1), 7},
                                                                             {lwork < layout.size, 10}});
    if (info != 0 || n == 0) return;
    // B(i, j) of the matrix reduced: A's element for "L", the one across the diagonal for "U".
    const auto B = [&](zint i, zint j) -> T& { return upper ? a[j + i * lda] : a[i + j * lda]; };
    T* v = work + layout.v;
    T* x = work + layout.x;
    T* t = work + layout.t;
    T* s = work + layout.s;
    T* tau = work + layout.tau;
    const T one = zor::one<T>(), zero = zor::zero<T>();
    const char adjoint = kAdjoint<T>;
    zint sub_info = 0;
    for (zint i = 0; kd > 0 && i + kd < n; i += kd) {
        // The panel: rows i + kd .. n - 1 of columns i .. i + kd - 1 of B, with pk reflectors (the
        // last panel may have fewer rows than columns: R is then a trapezoid, all in the band).
        const zint rows = n - i - kd, pk = min_of(rows, kd);
        for (zint c = 0; c < kd; ++c) {
            for (zint r = 0; r < rows; ++r) v[r + c * rows] = B(i + kd + r, i + c);
        }
        geqr2(rows, kd, v, rows, tau, work + layout.scratch, sub_info);
        // R joins the band; V gets its unit diagonal and zeros above it.
        for (zint c = 0; c < kd; ++c) {
            for (zint r = 0; r <= min_of(c, rows - 1); ++r) {
                B(i + kd + r, i + c) = v[r + c * rows];
                v[r + c * rows] = r == c ? one : zero;
            }
        }
        larft('F', 'C', rows, pk, v, rows, tau, t, kd);
        if (upper) {
            lacgv(rows * pk, v, 1);
            for (zint c = 0; c < pk; ++c) lacgv(c + 1, t + c * kd, 1);
        }
        // X = A22 V T, S = Vᴴ X, S := Tᴴ S, W = X - ½ V S, A22 := A22 - V Wᴴ - W Vᴴ.
        T* a22 = a + (i + kd) + (i + kd) * lda;
        hermitian_product(upper, rows, pk, a22, lda, v, rows, x, rows, work + layout.block);
        Blas<T>::trmm('R', 'U', 'N', 'N', rows, pk, one, t, kd, x, rows);
        Blas<T>::gemm(adjoint, 'N', pk, pk, rows, one, v, rows, x, rows, zero, s, kd);
        Blas<T>::trmm('L', 'U', adjoint, 'N', pk, pk, one, t, kd, s, kd);
        Blas<T>::gemm('N', 'N', rows, pk, pk, from_real<T>(-0.5), v, rows, s, kd, one, x, rows);
        Blas<T>::her2k(uplo, 'N', rows, pk, from_real<T>(-1.0), v, rows, x, rows, 1.0, a22, lda);
    }
    // The band of B in lower band storage, the Hermitian diagonal real.
    for (zint j = 0; j < n; ++j) {
        for (zint r = 0; r <= kd && j + r < n; ++r) ab[r + j * ldab] = B(j + r, j);
        ab[j * ldab] = real_part(ab[j * ldab]);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(sy2sb)
