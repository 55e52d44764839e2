// larfb: a block reflector applied from either side, in the three products of level-3 BLAS:
// W := C V (or Cᴴ V), W := W op(T), C := C - W Vᴴ (or V Wᴴ). The unit triangle of V (its first k
// entries per vector for "F", its last k for "B") goes through trmm with a unit diagonal, so the
// storage there is never read; the rest of V through gemm.

#include "lapack/householder/householder.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

// W(j, i) := conj(C(i, j)) for the rows (left) that become W's columns, or W := C (right).
template <class T>
void load_work(bool adjoint, zint rows, zint cols, const T* c, zint ldc, T* w, zint ldw) {
    if (adjoint) {
        for (zint i = 0; i < rows; ++i) {
            for (zint j = 0; j < cols; ++j) w[j + i * ldw] = conj(c[i + j * ldc]);
        }
    } else {
        for (zint j = 0; j < cols; ++j) {
            for (zint i = 0; i < rows; ++i) w[i + j * ldw] = c[i + j * ldc];
        }
    }
}

// C := C - Wᴴ (left: W is cols by rows) or C := C - W (right).
template <class T>
void subtract_work(bool adjoint, zint rows, zint cols, T* c, zint ldc, const T* w, zint ldw) {
    for (zint j = 0; j < cols; ++j) {
        for (zint i = 0; i < rows; ++i) {
            c[i + j * ldc] -= adjoint ? conj(w[j + i * ldw]) : w[i + j * ldw];
        }
    }
}

}  // namespace

template <class T>
void larfb(char side, char trans, char direct, char storev, zint m, zint n, zint k, const T* v, zint ldv,
           const T* t, zint ldt, T* c, zint ldc, T* work, zint ldwork) {
    if (m <= 0 || n <= 0 || k <= 0) return;
    const bool left = lsame(side, 'L');
    const bool forward = lsame(direct, 'F');
    const bool columnwise = lsame(storev, 'C');
    const char adjoint = kAdjoint<T>;
    // op(T) for the right side; the left side works on Cᴴ and needs op(T)ᴴ.
    const char op_t = lsame(trans, 'N') ? 'N' : adjoint;
    const char op_t_left = lsame(trans, 'N') ? adjoint : 'N';
    const T one = zor::one<T>(), minus_one = from_real<T>(-1.0);
    const char t_triangle = forward ? 'U' : 'L';

    // The order of the reflector (m left, n right), the k entries of the unit triangle of V and
    // the rest of V (rows of the columns, or columns of the rows).
    const zint order = left ? m : n;
    const zint rest = order - k;
    const zint unit_start = forward ? 0 : rest;
    const zint rest_start = forward ? k : 0;
    const T* v_unit = columnwise ? v + unit_start : v + unit_start * ldv;
    const T* v_rest = columnwise ? v + rest_start : v + rest_start * ldv;
    // As a k by k matrix, columnwise V's unit triangle is lower for "F" and upper for "B";
    // rowwise V's is upper for "F" and lower for "B".
    const char v_triangle = (columnwise == forward) ? 'L' : 'U';
    // W := (the part of C facing the unit triangle)ᴴ or that part, times the triangle; then the
    // rest. Columnwise: Cᴴ V (left) or C V (right); rowwise: Cᴴ Vᴴ or C Vᴴ.
    const char v_op = columnwise ? 'N' : adjoint;    // V (or Vᴴ) as the right factor of W
    const char v_back = columnwise ? adjoint : 'N';  // Vᴴ (or V) as the right factor of C's update
    if (left) {
        T* c_unit = c + unit_start;
        T* c_rest = c + rest_start;
        load_work(true, k, n, c_unit, ldc, work, ldwork);
        Blas<T>::trmm('R', v_triangle, v_op, 'U', n, k, one, v_unit, ldv, work, ldwork);
        if (rest > 0)
            Blas<T>::gemm(adjoint, v_op, n, k, rest, one, c_rest, ldc, v_rest, ldv, one, work, ldwork);
        Blas<T>::trmm('R', t_triangle, op_t_left, 'N', n, k, one, t, ldt, work, ldwork);
        // C_rest := C_rest - V_rest Wᴴ (columnwise) or V_restᴴ Wᴴ (rowwise).
        if (rest > 0)
            Blas<T>::gemm(columnwise ? 'N' : adjoint, adjoint, rest, n, k, minus_one, v_rest, ldv, work,
                          ldwork, one, c_rest, ldc);
        Blas<T>::trmm('R', v_triangle, v_back, 'U', n, k, one, v_unit, ldv, work, ldwork);
        subtract_work(true, k, n, c_unit, ldc, work, ldwork);
    } else {
        T* c_unit = c + unit_start * ldc;
        T* c_rest = c + rest_start * ldc;
        load_work(false, m, k, c_unit, ldc, work, ldwork);
        Blas<T>::trmm('R', v_triangle, v_op, 'U', m, k, one, v_unit, ldv, work, ldwork);
        if (rest > 0) Blas<T>::gemm('N', v_op, m, k, rest, one, c_rest, ldc, v_rest, ldv, one, work, ldwork);
        Blas<T>::trmm('R', t_triangle, op_t, 'N', m, k, one, t, ldt, work, ldwork);
        if (rest > 0)
            Blas<T>::gemm('N', v_back, m, rest, k, minus_one, work, ldwork, v_rest, ldv, one, c_rest, ldc);
        Blas<T>::trmm('R', v_triangle, v_back, 'U', m, k, one, v_unit, ldv, work, ldwork);
        subtract_work(false, m, k, c_unit, ldc, work, ldwork);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(larfb)
