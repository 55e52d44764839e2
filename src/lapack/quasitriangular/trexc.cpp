// trexc: a diagonal block of a Schur form moved to another position by swaps with its neighbours.
// Real data moves whole blocks with laexc, following a 2 by 2 block that splits into two 1 by 1
// blocks on the way (each then swapped on its own); complex data swaps diagonal entries with one
// rotation each.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

// Real data: the block at `here` (one-based; nbf = 1 or 2, or 3 for a 2 by 2 block that has split)
// moved down to ilst or up to it.
struct BlockMover {
    bool wantq;
    zint n;
    double* t;
    zint ldt;
    double* q;
    zint ldq;

    double sub(zint i, zint j) const { return t[(i - 1) + (j - 1) * ldt]; }
    bool swap(zint j1, zint n1, zint n2) {
        zint info = 0;
        laexc(wantq, n, t, ldt, q, ldq, j1, n1, n2, info);
        return info == 0;
    }
    // The order of the block starting at row j (1 or 2).
    zint block_below(zint j) const { return j + 1 <= n && sub(j + 1, j) != 0.0 ? 2 : 1; }
    zint block_above(zint j) const { return j >= 3 && sub(j - 1, j - 2) != 0.0 ? 2 : 1; }

    // Returns false (here at the block's last position) when a swap failed.
    bool down(zint& here, zint nbf, zint ilst) {
        while (here < ilst) {
            if (nbf == 1 || nbf == 2) {
                const zint nbnext = here + nbf + 1 <= n ? block_below(here + nbf) : 1;
                if (!swap(here, nbf, nbnext)) return false;
                here += nbnext;
                if (nbf == 2 && sub(here + 1, here) == 0.0) nbf = 3;
            } else {
                // Two 1 by 1 blocks, each swapped on its own.
                zint nbnext = here + 3 <= n ? block_below(here + 2) : 1;
                if (!swap(here + 1, 1, nbnext)) return false;
                if (nbnext == 1) {
                    swap(here, 1, nbnext);
                    ++here;
                } else {
                    if (sub(here + 2, here + 1) == 0.0) nbnext = 1;  // the 2 by 2 block split
                    if (nbnext == 2) {
                        if (!swap(here, 1, nbnext)) return false;
                        here += 2;
                    } else {
                        swap(here, 1, 1);
                        swap(here + 1, 1, 1);
                        here += 2;
                    }
                }
            }
        }
        return true;
    }

    bool up(zint& here, zint nbf, zint ilst) {
        while (here > ilst) {
            if (nbf == 1 || nbf == 2) {
                const zint nbnext = block_above(here);
                if (!swap(here - nbnext, nbnext, nbf)) return false;
                here -= nbnext;
                if (nbf == 2 && sub(here + 1, here) == 0.0) nbf = 3;
            } else {
                zint nbnext = block_above(here);
                if (!swap(here - nbnext, nbnext, 1)) return false;
                if (nbnext == 1) {
                    swap(here, nbnext, 1);
                    --here;
                } else {
                    if (sub(here, here - 1) == 0.0) nbnext = 1;
                    if (nbnext == 2) {
                        if (!swap(here - 1, 2, 1)) return false;
                        here -= 2;
                    } else {
                        swap(here, 1, 1);
                        swap(here - 1, 1, 1);
                        here -= 2;
                    }
                }
            }
        }
        return true;
    }
};

void real_trexc(bool wantq, zint n, double* t, zint ldt, double* q, zint ldq, zint& ifst, zint& ilst,
                zint& info) {
    BlockMover mover{wantq, n, t, ldt, q, ldq};
    // The first rows of the block to move and of the block at the destination, and their orders.
    if (ifst > 1 && mover.sub(ifst, ifst - 1) != 0.0) --ifst;
    const zint nbf = ifst < n ? mover.block_below(ifst) : 1;
    if (ilst > 1 && mover.sub(ilst, ilst - 1) != 0.0) --ilst;
    const zint nbl = ilst < n ? mover.block_below(ilst) : 1;
    if (ifst == ilst) return;
    zint here = ifst;
    bool done;
    if (ifst < ilst) {
        if (nbf == 2 && nbl == 1) --ilst;
        if (nbf == 1 && nbl == 2) ++ilst;
        done = mover.down(here, nbf, ilst);
    } else {
        done = mover.up(here, nbf, ilst);
    }
    if (!done) info = 1;
    ilst = here;
}

// x := c x + s y, y := c y - conj(s) x over `count` entries.
void rotate(zint count, zcomplex* x, zint incx, zcomplex* y, zint incy, double c, zcomplex s) {
    for (zint i = 0; i < count; ++i) {
        const zcomplex tx = c * x[i * incx] + s * y[i * incy];
        y[i * incy] = c * y[i * incy] - conj(s) * x[i * incx];
        x[i * incx] = tx;
    }
}

void complex_trexc(bool wantq, zint n, zcomplex* t, zint ldt, zcomplex* q, zint ldq, zint ifst, zint ilst) {
    const auto T = [&](zint i, zint j) -> zcomplex& { return t[(i - 1) + (j - 1) * ldt]; };
    const auto Q = [&](zint i, zint j) { return q + (i - 1) + (j - 1) * ldq; };
    // Swap entries k and k + 1 for k from ifst towards ilst.
    const zint step = ifst < ilst ? 1 : -1;
    const zint first = ifst < ilst ? ifst : ifst - 1, last = ifst < ilst ? ilst - 1 : ilst;
    for (zint k = first; step > 0 ? k <= last : k >= last; k += step) {
        const zcomplex t11 = T(k, k), t22 = T(k + 1, k + 1);
        double cs;
        zcomplex sn, r;
        lartg(T(k, k + 1), t22 - t11, cs, sn, r);
        if (k + 2 <= n) rotate(n - k - 1, &T(k, k + 2), ldt, &T(k + 1, k + 2), ldt, cs, sn);
        rotate(k - 1, &T(1, k), 1, &T(1, k + 1), 1, cs, conj(sn));
        T(k, k) = t22;
        T(k + 1, k + 1) = t11;
        if (wantq) rotate(n, Q(1, k), 1, Q(1, k + 1), 1, cs, conj(sn));
    }
}

}  // namespace

template <class T>
zint check_trexc(char compq, zint n, zint ldt, zint ldq, zint ifst, zint ilst) {
    const bool wantq = lsame(compq, 'V');
    return check_arguments(routine_name<T>("DTREXC", "ZTREXC"),
                           {{!wantq && !lsame(compq, 'N'), 1},
                            {n < 0, 2},
                            {ldt < max_of(1, n), 4},
                            {ldq < 1 || (wantq && ldq < max_of(1, n)), 6},
                            {(ifst < 1 || ifst > n) && n > 0, 7},
                            {(ilst < 1 || ilst > n) && n > 0, 8}});
}

template <class T>
void trexc(char compq, zint n, T* t, zint ldt, T* q, zint ldq, zint& ifst, zint& ilst, T*, zint& info) {
    info = check_trexc<T>(compq, n, ldt, ldq, ifst, ilst);
    if (info != 0 || n <= 1) return;
    const bool wantq = lsame(compq, 'V');
    if constexpr (kIsComplex<T>) {
        if (ifst != ilst) complex_trexc(wantq, n, t, ldt, q, ldq, ifst, ilst);
    } else {
        real_trexc(wantq, n, t, ldt, q, ldq, ifst, ilst, info);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(trexc)
ZOR_INSTANTIATE(check_trexc)
