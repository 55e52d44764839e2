// lalsd: the minimum-norm least-squares solution with a bidiagonal matrix, through its SVD by
// divide and conquer in the compact form.

#include <algorithm>
#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/condensed/bidiagonal_support.hpp"
#include "lapack/lapack.hpp"

namespace zor {

zint lalsd_levels(zint n, zint smlsiz) {
    if (n <= 0) return 0;
    const zint levels = static_cast<zint>(std::log(static_cast<double>(n) / static_cast<double>(smlsiz + 1)) /
                                          std::log(2.0)) +
                        1;
    return std::max<zint>(0, levels);
}

namespace {

// The carving of lalsd's work areas, shared by the size functions and the solver.
struct LalsdLayout {
    // offsets into work
    zint u, vt, difl, difr, z, c, s, poles, givnum, bx, rest, work_size;
    // offsets into iwork
    zint sizes, k, givptr, perm, givcol, iwk, iwork_size;

    LalsdLayout(zint n, zint nrhs, zint smlsiz) {
        const zint levels = lalsd_levels(n, smlsiz), smlszp = smlsiz + 1;
        u = 0;
        vt = u + smlsiz * n;
        difl = vt + smlszp * n;
        difr = difl + levels * n;
        z = difr + 2 * levels * n;
        c = z + levels * n;
        s = c + n;
        poles = s + n;
        givnum = poles + 2 * levels * n;
        bx = givnum + 2 * levels * n;
        rest = bx + n * nrhs;
        // lasda's 6n + (smlsiz + 1)² covers lasdq's and lalsa's needs too.
        work_size = rest + 6 * n + smlszp * smlszp;
        // iwork: the subproblems' starts (n) and sizes (n), then lasda's arrays and its own 7n.
        sizes = n;
        k = sizes + n;
        givptr = k + n;
        perm = givptr + n;
        givcol = perm + levels * n;
        iwk = givcol + 2 * levels * n;
        iwork_size = iwk + 7 * n;
    }
};

}  // namespace

zint lalsd_work_size(zint n, zint nrhs, zint smlsiz) {
    return std::max<zint>(1, LalsdLayout(n, nrhs, smlsiz).work_size);
}

zint lalsd_iwork_size(zint n, zint smlsiz) {
    return std::max<zint>(1, LalsdLayout(n, 1, smlsiz).iwork_size);
}

void lalsd(char uplo, zint smlsiz, zint n, zint nrhs, double* d, double* e, double* b, zint ldb, double rcond,
           zint& rank, double* work, zint* iwork, zint& info) {
    // No right-hand side is allowed (the published routine wants one): gelsd then still gets the
    // singular values and the rank.
    info = check_arguments("DLALSD", {{n < 0, 3}, {nrhs < 0, 4}, {ldb < 1 || ldb < n, 8}});
    if (info != 0) return;
    const double eps = dlamch("E");
    const double rcnd = (rcond <= 0.0 || rcond >= 1.0) ? eps : rcond;
    rank = 0;
    if (n == 0) return;
    // NaN or infinity: nothing can converge; reported as a failure on the whole matrix.
    if (bidiagonal::has_nonfinite(n, d, e)) {
        info = (n + 1) + n;
        return;
    }
    zint ignored = 0;
    if (n == 1) {
        if (d[0] == 0.0) {
            laset<double>('A', 1, nrhs, 0.0, 0.0, b, ldb);
        } else {
            rank = 1;
            lascl<double>('G', 0, 0, d[0], 1.0, 1, nrhs, b, ldb, ignored);
            d[0] = std::fabs(d[0]);
        }
        return;
    }

    // A lower bidiagonal matrix is made upper by rotations from the left, applied to B.
    if (lsame(uplo, 'L')) {
        bidiagonal::chase(n - 1, d, e, [&](zint i, double cs, double sn) {
            if (nrhs == 1) {
                drot(1, b + i, 1, b + i + 1, 1, cs, sn);
            } else {
                work[2 * i] = cs;
                work[2 * i + 1] = sn;
            }
        });
        if (nrhs > 1) {
            for (zint j = 0; j < nrhs; ++j) {
                for (zint i = 0; i + 1 < n; ++i)
                    drot(1, b + i + j * ldb, 1, b + i + 1 + j * ldb, 1, work[2 * i], work[2 * i + 1]);
            }
        }
    }

    // Scale to norm one.
    const zint nm1 = n - 1;
    const double scale = lanst('M', n, d, e);
    if (scale == 0.0) {
        laset<double>('A', n, nrhs, 0.0, 0.0, b, ldb);
        return;
    }
    lascl<double>('G', 0, 0, scale, 1.0, n, 1, d, n, ignored);
    lascl<double>('G', 0, 0, scale, 1.0, nm1, 1, e, nm1, ignored);

    // Small matrices: the explicit SVD by QR, then X = V S⁺ Uᵀ B.
    if (n <= smlsiz) {
        double* vt = work;
        double* rest = work + n * n;
        laset<double>('A', n, n, 0.0, 1.0, vt, n);
        lasdq('U', 0, n, n, 0, nrhs, d, e, vt, n, vt, n, b, ldb, rest, info);
        if (info != 0) return;
        const double tol = rcnd * std::fabs(d[idamax(n, d, 1) - 1]);
        for (zint i = 0; i < n; ++i) {
            if (d[i] <= tol) {
                laset<double>('A', 1, nrhs, 0.0, 0.0, b + i, ldb);
            } else {
                lascl<double>('G', 0, 0, d[i], 1.0, 1, nrhs, b + i, ldb, ignored);
                ++rank;
            }
        }
        dgemm('T', 'N', n, nrhs, n, 1.0, vt, n, b, ldb, 0.0, rest, n);
        lacpy<double>('A', n, nrhs, rest, n, b, ldb);
        lascl<double>('G', 0, 0, 1.0, scale, n, 1, d, n, ignored);
        lasrt('D', n, d, ignored);
        lascl<double>('G', 0, 0, scale, 1.0, n, nrhs, b, ldb, ignored);
        return;
    }

    const LalsdLayout at(n, nrhs, smlsiz);
    double* vt = work + at.vt;
    double* bx = work + at.bx;
    double* rest = work + at.rest;
    zint* starts = iwork;
    zint* sizes = iwork + at.sizes;
    zint* iwk = iwork + at.iwk;
    // The compact form of the piece starting at row `first`, in lasda's layout (leading
    // dimension n): computed by lasda, applied by lalsa.
    const auto factor = [&](zint first, zint size) {
        const auto w = [&](zint offset) { return work + offset + first; };
        const auto iw = [&](zint offset) { return iwork + offset + first; };
        lasda(1, smlsiz, size, 0, d + first, e + first, w(at.u), n, w(at.vt), iw(at.k), w(at.difl),
              w(at.difr), w(at.z), w(at.poles), iw(at.givptr), iw(at.givcol), n, iw(at.perm), w(at.givnum),
              w(at.c), w(at.s), rest, iwk, info);
    };
    const auto apply = [&](zint icompq, zint first, zint size, double* from, zint ldfrom, double* to,
                           zint ldto) {
        if (nrhs == 0) return;  // nothing to carry through the tree
        const auto w = [&](zint offset) { return work + offset + first; };
        const auto iw = [&](zint offset) { return iwork + offset + first; };
        lalsa(icompq, smlsiz, size, nrhs, from, ldfrom, to, ldto, w(at.u), n, w(at.vt), iw(at.k), w(at.difl),
              w(at.difr), w(at.z), w(at.poles), iw(at.givptr), iw(at.givcol), n, iw(at.perm), w(at.givnum),
              w(at.c), w(at.s), rest, iwk, info);
    };

    // Values below eps are raised to it (they would otherwise make the merges' deflation and
    // divisions degenerate); the rank decision comes later from rcond.
    for (zint i = 0; i < n; ++i) {
        if (std::fabs(d[i]) < eps) d[i] = std::copysign(eps, d[i]);
    }

    // Split at negligible off-diagonals; each piece is solved by the means its size calls for and
    // leaves Uᵀ B in BX (a 1 by 1 piece is left as it is: its value keeps its sign).
    zint pieces = 0, start = 0;
    for (zint i = 0; i < nm1; ++i) {
        if (!(std::fabs(e[i]) < eps) && i != nm1 - 1) continue;
        zint size;
        starts[pieces] = start;
        if (i < nm1 - 1 || std::fabs(e[i]) >= eps) {
            size = (i < nm1 - 1 ? i : n - 1) - start + 1;
            sizes[pieces++] = size;
        } else {
            // The last off-diagonal is negligible: the last row is a piece of its own.
            size = i - start + 1;
            sizes[pieces++] = size;
            starts[pieces] = n - 1;
            sizes[pieces++] = 1;
            dcopy(nrhs, b + n - 1, ldb, bx + n - 1, n);
        }
        if (size == 1) {
            dcopy(nrhs, b + start, ldb, bx + start, n);
        } else if (size <= smlsiz) {
            laset<double>('A', size, size, 0.0, 1.0, vt + start, n);
            lasdq('U', 0, size, size, 0, nrhs, d + start, e + start, vt + start, n, rest, n, b + start, ldb,
                  rest, info);
            if (info != 0) {
                info = (start + 1) * (n + 1) + start + size;
                return;
            }
            lacpy<double>('A', size, nrhs, b + start, ldb, bx + start, n);
        } else {
            factor(start, size);
            if (info == 0) apply(0, start, size, b + start, ldb, bx + start, n);
            if (info != 0) {
                info = (start + 1) * (n + 1) + start + size;
                return;
            }
        }
        start = i + 1;
    }

    // S⁺ with the rank decision: values at most rcond · σ_max count as zero.
    const double tol = rcnd * std::fabs(d[idamax(n, d, 1) - 1]);
    for (zint i = 0; i < n; ++i) {
        if (std::fabs(d[i]) <= tol) {
            laset<double>('A', 1, nrhs, 0.0, 0.0, bx + i, n);
        } else {
            ++rank;
            lascl<double>('G', 0, 0, d[i], 1.0, 1, nrhs, bx + i, n, ignored);
        }
        d[i] = std::fabs(d[i]);
    }

    // X = V BX, piece by piece.
    for (zint p = 0; p < pieces; ++p) {
        const zint first = starts[p], size = sizes[p];
        if (size == 1) {
            dcopy(nrhs, bx + first, n, b + first, ldb);
        } else if (size <= smlsiz) {
            dgemm('T', 'N', size, nrhs, size, 1.0, vt + first, n, bx + first, n, 0.0, b + first, ldb);
        } else {
            apply(1, first, size, bx + first, n, b + first, ldb);
            if (info != 0) {
                info = (first + 1) * (n + 1) + first + size;
                return;
            }
        }
    }

    lascl<double>('G', 0, 0, 1.0, scale, n, 1, d, n, ignored);
    lasrt('D', n, d, ignored);
    lascl<double>('G', 0, 0, scale, 1.0, n, nrhs, b, ldb, ignored);
}

}  // namespace zor
