// trsyl: the Sylvester equation op(A) X + isgn X op(B) = scale C for Schur forms A and B, solved
// block by block: each block of X depends on those already found through one block row of op(A)
// and one block column of op(B), and the small equation left (1 by 1, or with real 2 by 2 blocks
// laln2 or lasy2) is solved with scaling against overflow; a scaling shrinks all of C and the
// scale factor.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

struct Block {
    zint first, last;  // one-based
};

// The diagonal blocks of the order-n Schur form S walked forwards or backwards; complex data has
// only 1 by 1 blocks. A 2 by 2 block is recognised from the side the walk comes from, as published.
template <class T>
struct BlockWalk {
    const T* s;
    zint lds, n;
    bool forward;
    zint next;

    bool done() const { return forward ? next > n : next < 1; }
    Block take() {
        const zint k = next;
        if constexpr (!kIsComplex<T>) {
            if (forward && k < n && s[k + (k - 1) * lds] != 0.0) {
                next = k + 2;
                return {k, k + 1};
            }
            if (!forward && k > 1 && s[(k - 1) + (k - 2) * lds] != 0.0) {
                next = k - 2;
                return {k - 1, k};
            }
        }
        next = forward ? k + 1 : k - 1;
        return {k, k};
    }
};

}  // namespace

template <class T>
zint check_trsyl(char trana, char tranb, zint isgn, zint m, zint n, zint lda, zint ldb, zint ldc) {
    // Real data takes "T" and "C" alike; complex data only "C" for the conjugate transpose.
    const auto valid = [](char c) {
        return lsame(c, 'N') || lsame(c, 'C') || (!kIsComplex<T> && lsame(c, 'T'));
    };
    return check_arguments(routine_name<T>("DTRSYL", "ZTRSYL"), {{!valid(trana), 1},
                                                                 {!valid(tranb), 2},
                                                                 {isgn != 1 && isgn != -1, 3},
                                                                 {m < 0, 4},
                                                                 {n < 0, 5},
                                                                 {lda < max_of(1, m), 7},
                                                                 {ldb < max_of(1, n), 9},
                                                                 {ldc < max_of(1, m), 11}});
}

template <class T>
void trsyl(char trana, char tranb, zint isgn, zint m, zint n, const T* a, zint lda, const T* b, zint ldb,
           T* c, zint ldc, double& scale, zint& info) {
    info = check_trsyl<T>(trana, tranb, isgn, m, n, lda, ldb, ldc);
    if (info != 0) return;
    scale = 1.0;
    if (m == 0 || n == 0) return;
    const bool notrna = lsame(trana, 'N'), notrnb = lsame(tranb, 'N');
    const auto A = [&](zint i, zint j) -> const T& { return a[(i - 1) + (j - 1) * lda]; };
    const auto B = [&](zint i, zint j) -> const T& { return b[(i - 1) + (j - 1) * ldb]; };
    const auto C = [&](zint i, zint j) -> T& { return c[(i - 1) + (j - 1) * ldc]; };
    // op(A)(i, j) and op(B)(i, j).
    const auto opA = [&](zint i, zint j) { return notrna ? A(i, j) : conj(A(j, i)); };
    const auto opB = [&](zint i, zint j) { return notrnb ? B(i, j) : conj(B(j, i)); };

    const double eps = dlamch("P");
    const double smlnum = dlamch("S") * static_cast<double>(m * n) / eps, bignum = 1.0 / smlnum;
    const double smin = std::fmax(
        smlnum, std::fmax(eps * lange('M', m, m, a, lda, nullptr), eps * lange('M', n, n, b, ldb, nullptr)));
    const double sgn = static_cast<double>(isgn);

    // The right-hand side of entry (i, j) of the current block: C(i, j) less the contributions of the
    // blocks of X already found, (op(A) X)(i, j) over rows outside [k1, k2] and (X op(B))(i, j)
    // over columns outside [l1, l2].
    const auto residual = [&](zint i, zint j, const Block& kb, const Block& lb) {
        T suml{}, sumr{};
        if (notrna) {
            for (zint p = kb.last + 1; p <= m; ++p) suml += opA(i, p) * C(p, j);
        } else {
            for (zint p = 1; p < kb.first; ++p) suml += opA(i, p) * C(p, j);
        }
        if (notrnb) {
            for (zint q = 1; q < lb.first; ++q) sumr += C(i, q) * opB(q, j);
        } else {
            for (zint q = lb.last + 1; q <= n; ++q) sumr += C(i, q) * opB(q, j);
        }
        return C(i, j) - (suml + sgn * sumr);
    };
    const auto rescale = [&](double scaloc) {
        if (scaloc == 1.0) return;
        for (zint j = 1; j <= n; ++j) Blas<T>::scal_real(m, scaloc, &C(1, j), 1);
        scale *= scaloc;
    };

    for (BlockWalk<T> lw{b, ldb, n, notrnb, notrnb ? 1 : n}; !lw.done();) {
        const Block lb = lw.take();
        for (BlockWalk<T> kw{a, lda, m, !notrna, notrna ? m : 1}; !kw.done();) {
            const Block kb = kw.take();
            if (kb.first == kb.last && lb.first == lb.last) {
                const zint k = kb.first, l = lb.first;
                const T rhs = residual(k, l, kb, lb);
                T a11 = opA(k, k) + sgn * opB(l, l);
                double da11 = abs1(a11);
                if (da11 <= smin) {
                    a11 = from_real<T>(smin);
                    da11 = smin;
                    info = 1;
                }
                const double db = abs1(rhs);
                double scaloc = 1.0;
                if (da11 < 1.0 && db > 1.0 && db > bignum * da11) scaloc = 1.0 / db;
                const T x = (rhs * scaloc) / a11;
                rescale(scaloc);
                C(k, l) = x;
                continue;
            }
            if constexpr (!kIsComplex<T>) {
                double vec[4], x[4], scaloc = 1.0, xnorm;
                zint ierr = 0;
                const zint k1 = kb.first, k2 = kb.last, l1 = lb.first, l2 = lb.last;
                if (lb.first == lb.last) {
                    vec[0] = residual(k1, l1, kb, lb);
                    vec[1] = residual(k2, l1, kb, lb);
                    laln2(!notrna, 2, 1, smin, 1.0, &A(k1, k1), lda, 1.0, 1.0, vec, 2, -sgn * B(l1, l1), 0.0,
                          x, 2, scaloc, xnorm, ierr);
                    rescale(scaloc);
                    C(k1, l1) = x[0];
                    C(k2, l1) = x[1];
                } else if (kb.first == kb.last) {
                    vec[0] = sgn * residual(k1, l1, kb, lb);
                    vec[1] = sgn * residual(k1, l2, kb, lb);
                    laln2(notrnb, 2, 1, smin, 1.0, &B(l1, l1), ldb, 1.0, 1.0, vec, 2, -sgn * A(k1, k1), 0.0,
                          x, 2, scaloc, xnorm, ierr);
                    rescale(scaloc);
                    C(k1, l1) = x[0];
                    C(k1, l2) = x[1];
                } else {
                    vec[0] = residual(k1, l1, kb, lb);
                    vec[1] = residual(k2, l1, kb, lb);
                    vec[2] = residual(k1, l2, kb, lb);
                    vec[3] = residual(k2, l2, kb, lb);
                    lasy2(!notrna, !notrnb, isgn, 2, 2, &A(k1, k1), lda, &B(l1, l1), ldb, vec, 2, scaloc, x,
                          2, xnorm, ierr);
                    rescale(scaloc);
                    C(k1, l1) = x[0];
                    C(k2, l1) = x[1];
                    C(k1, l2) = x[2];
                    C(k2, l2) = x[3];
                }
                if (ierr != 0) info = 1;
            }
        }
    }
}

}  // namespace zor

ZOR_INSTANTIATE(trsyl)
ZOR_INSTANTIATE(check_trsyl)
