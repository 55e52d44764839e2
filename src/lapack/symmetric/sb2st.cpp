// sb2st: the second stage of the two-stage tridiagonal reduction, a Hermitian band of kd
// off-diagonals to a real tridiagonal matrix by bulge chasing (for eigenvalues only: the reflectors
// are applied and dropped). Sweep s annihilates column s below its subdiagonal with one reflector,
// applied from both sides to the diagonal block it spans; applied from the right it fills the block
// below with a bulge, whose first column the next reflector annihilates; that reflector is applied
// from the left to the rest of the block and from both sides to the next diagonal block, and so on
// down the band. The rest of each bulge stays for the later sweeps, which is why the storage holds
// 2 kd off-diagonals.
//
// The band is read through a dense view: with ld = ldab - 1, element (i, j) of the matrix (i >= j,
// i - j < ldab) is ab[i + j·ld], so every block of the chase is an ordinary column-major block.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"
#include "lapack/symmetric/symmetric.hpp"

namespace zor {

namespace {

// The reflector (v, tau) that annihilates the count - 1 elements below `head` in its column
// (stride 1); they are moved into v(1 .. count - 1) and zeroed, head becomes the real beta.
template <class T>
void take_reflector(zint count, T* head, T* v, T& tau) {
    v[0] = one<T>();
    for (zint i = 1; i < count; ++i) {
        v[i] = head[i];
        head[i] = zero<T>();
    }
    larfg(count, *head, v + 1, 1, tau);
}

}  // namespace

template <class T>
void sb2st(zint n, zint kd, T* ab, zint ldab, double* d, double* e, T* work, zint& info) {
    info = check_arguments(routine_name<T>("DSYTRD_SB2ST", "ZHETRD_HB2ST"),
                           {{n < 0, 1}, {kd < 0, 2}, {ldab < max_of(1, 2 * kd + 1), 4}});
    if (info != 0 || n == 0) return;
    const zint ld = ldab - 1;
    const auto A = [&](zint i, zint j) { return ab + i + j * ld; };
    // The rows beyond the band hold the bulges: they start at zero.
    for (zint j = 0; j < n; ++j) {
        for (zint r = kd + 1; r < ldab; ++r) ab[r + j * ldab] = zero<T>();
    }
    T* v = work;
    T* next = work + kd;
    T* scratch = work + 2 * kd;
    if (kd > 0) {
        for (zint s = 0; s + 1 < n; ++s) {
            // The reflector of column s spans rows first .. last.
            zint first = s + 1, last = min_of(s + kd, n - 1);
            T tau;
            take_reflector(last - first + 1, A(first, s), v, tau);
            Blas<T>::sb2st_left(last - first + 1, 0, A(first, first), A(first, first), ld, v, tau, scratch);
            // Down the band: the block below the last diagonal block, rows below .. bottom.
            for (zint below = last + 1; below < n; below = last + 1) {
                const zint bottom = min_of(last + kd, n - 1);
                const zint rows = bottom - below + 1, cols = last - first + 1;
                T* block = A(below, first);
                Blas<T>::sb2st_right(rows, cols, block, ld, v, tau, scratch);
                T next_tau;
                take_reflector(rows, block, next, next_tau);
                Blas<T>::sb2st_left(rows, cols - 1, block + ld, A(below, below), ld, next, next_tau, scratch);
                first = below;
                last = bottom;
                tau = next_tau;
                T* swap = v;
                v = next;
                next = swap;
            }
        }
    }
    for (zint i = 0; i < n; ++i) {
        d[i] = real(*A(i, i));
        if (i + 1 < n) e[i] = real(*A(i + 1, i));
    }
}

}  // namespace zor

ZOR_INSTANTIATE(sb2st)
