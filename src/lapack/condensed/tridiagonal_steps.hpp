#pragma once
// Steps the tridiagonal eigensolvers share: the 2 by 2 eigenvalues behind lae2 and laev2, the walk
// of QL/QR over the unreduced blocks of T with their scaling into the safe range and the failure
// count, and the ascending sort that carries the eigenvectors along.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

struct Symmetric2x2 {
    double larger;  // the eigenvalue of larger magnitude
    double root;    // sqrt((a - c)² + 4 b²)
    double sum;     // a + c
};

// The eigenvalues of [a b; b c]: the larger returned, the other in `smaller`.
inline Symmetric2x2 symmetric_2x2_values(double a, double b, double c, double& smaller) {
    const double sum = a + c;
    const double difference = std::fabs(a - c);
    const double twice_b = std::fabs(b + b);
    // sqrt(difference² + twice_b²) without squaring the larger of the two.
    double root;
    if (difference > twice_b) {
        const double ratio = twice_b / difference;
        root = difference * std::sqrt(1.0 + ratio * ratio);
    } else if (difference < twice_b) {
        const double ratio = difference / twice_b;
        root = twice_b * std::sqrt(1.0 + ratio * ratio);
    } else {
        root = twice_b * std::sqrt(2.0);
    }
    if (sum == 0.0) {
        smaller = -0.5 * root;
        return {0.5 * root, root, sum};
    }
    // The larger value takes the sign of the trace and so suffers no cancellation; the smaller is the
    // determinant divided by it, in this order of operations to keep its relative accuracy.
    const double larger = sum < 0.0 ? 0.5 * (sum - root) : 0.5 * (sum + root);
    const double big = std::fabs(a) > std::fabs(c) ? a : c;
    const double other = std::fabs(a) > std::fabs(c) ? c : a;
    smaller = (big / larger) * other - (b / larger) * b;
    return {larger, root, sum};
}

// The last row (zero-based) of the unreduced block that starts at row `first`: the first
// off-diagonal from there on that is negligible beside its two diagonal neighbours ends it and is set
// to zero; n - 1 when none is.
inline zint unreduced_block_end(zint first, zint n, const double* d, double* e, double eps) {
    for (zint m = first; m + 1 < n; ++m) {
        const double t = std::fabs(e[m]);
        if (t == 0.0) return m;
        if (t <= std::sqrt(std::fabs(d[m])) * std::sqrt(std::fabs(d[m + 1])) * eps) {
            e[m] = 0.0;
            return m;
        }
    }
    return n - 1;
}

// How an unreduced block was scaled before QL/QR: by target / norm, or not at all (target 0).
struct BlockScaling {
    double norm = 0.0;
    double target = 0.0;
};

// QL/QR keep every square of the block representable when its largest entry lies within
// [sqrt(safe minimum) / eps², sqrt(1 / safe minimum) / 3]; a block outside is scaled to the bound
// it crossed. The block's d has `size` entries and its e one fewer.
inline BlockScaling scale_into_safe_range(double norm, zint size, double* d, double* e) {
    const double safe_min = dlamch("S");
    const double eps = dlamch("E");
    const double upper = std::sqrt(1.0 / safe_min) / 3.0;
    const double lower = std::sqrt(safe_min) / (eps * eps);
    BlockScaling scaling;
    if (norm > upper) scaling = {norm, upper};
    if (norm < lower) scaling = {norm, lower};
    if (scaling.target != 0.0) {
        zint info = 0;
        lascl('G', 0, 0, norm, scaling.target, size, 1, d, size, info);
        lascl('G', 0, 0, norm, scaling.target, size - 1, 1, e, size - 1, info);
    }
    return scaling;
}

// Undoes scale_into_safe_range on the block's d and, when given, e.
inline void undo_scaling(const BlockScaling& scaling, zint size, double* d, double* e) {
    if (scaling.target == 0.0) return;
    zint info = 0;
    lascl('G', 0, 0, scaling.target, scaling.norm, size, 1, d, size, info);
    if (e != nullptr && size > 1)
        lascl('G', 0, 0, scaling.target, scaling.norm, size - 1, 1, e, size - 1, info);
}

// The failure count of QL/QR: the off-diagonal elements not yet zero (NaN counts).
inline zint nonzero_off_diagonals(zint n, const double* e) {
    zint count = 0;
    for (zint i = 0; i + 1 < n; ++i) count += e[i] != 0.0 ? 1 : 0;
    return count;
}

// QL/QR over T block by block. `iterate(l, lend)` runs the iteration of one unreduced block, scaled
// into the safe range around the call, from row l towards row lend: from the end whose diagonal
// element is smaller in magnitude (l < lend is QL, l > lend QR), since the iteration deflates at the
// end it starts from. It answers false when the budget of sweeps it keeps ran out. The scaling is
// undone on d, and on e too when `restore_e`. Returns info: 0, or the number of nonzero off-diagonal
// elements after a block failed.
template <class Iterate>
zint iterate_by_blocks(zint n, double* d, double* e, bool restore_e, Iterate&& iterate) {
    const double eps = dlamch("E");
    const double overflow = dlamch("O");
    for (zint first = 0; first < n;) {
        const zint last = unreduced_block_end(first, n, d, e, eps);
        const zint block = first, size = last - first + 1;
        first = last + 1;
        if (size == 1) continue;
        const double norm = lanst('M', size, d + block, e + block);
        if (norm == 0.0) continue;
        // An infinite or NaN entry can never converge: the block fails now, as it would at the limit.
        if (!(norm <= overflow)) return nonzero_off_diagonals(n, e);
        const BlockScaling scaling = scale_into_safe_range(norm, size, d + block, e + block);
        const bool ql = !(std::fabs(d[last]) < std::fabs(d[block]));
        const bool converged = ql ? iterate(block, last) : iterate(last, block);
        undo_scaling(scaling, size, d + block, restore_e ? e + block : nullptr);
        if (!converged) return nonzero_off_diagonals(n, e);
    }
    return 0;
}

// Sorts d ascending and the columns of Z with it, by selection so that each vector moves at most once.
inline void sort_with_vectors(zint n, double* d, double* z, zint ldz) {
    for (zint i = 0; i + 1 < n; ++i) {
        zint k = i;
        double p = d[i];
        for (zint j = i + 1; j < n; ++j) {
            if (d[j] < p) {
                k = j;
                p = d[j];
            }
        }
        if (k != i) {
            d[k] = d[i];
            d[i] = p;
            dswap(n, z + i * ldz, 1, z + k * ldz, 1);
        }
    }
}

}  // namespace zor
