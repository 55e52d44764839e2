/* Solves a linear system A x = b with zor's dgesv (LU factorization with partial pivoting) and
 * checks the answer against A and b kept aside.
 * Build: cc linear_system.c $(pkg-config --cflags --libs zor) -lm */
#include <math.h>
#include <stdio.h>
#include <string.h>

#include <zor/zor.h>

enum { n = 4 };

int main(void) {
    /* A is stored column by column (column-major), as every Fortran-style routine expects. Its first
     * column's largest entry is not on the diagonal, so the factorization has to swap rows. */
    const double a_in[n * n] = {
        1.0,  4.0,  -2.0, 0.5,  /* column 1 */
        2.0,  1.0,  3.0,  -1.0, /* column 2 */
        -1.0, 0.0,  5.0,  2.0,  /* column 3 */
        3.0,  -2.0, 1.0,  6.0,  /* column 4 */
    };
    /* b = A (1, -2, 3, -4), so the solution is known. */
    const double x_true[n] = {1.0, -2.0, 3.0, -4.0};
    double a[n * n], b[n];
    memcpy(a, a_in, sizeof a);
    for (int i = 0; i < n; ++i) {
        b[i] = 0.0;
        for (int j = 0; j < n; ++j) b[i] += a_in[i + n * j] * x_true[j];
    }

    /* dgesv overwrites a with the factors L and U and b with the solution x. */
    const zor_int order = n, nrhs = 1, lda = n, ldb = n;
    zor_int ipiv[n], info = 0;
    dgesv(&order, &nrhs, a, &lda, ipiv, b, &ldb, &info);
    if (info != 0) {
        printf("dgesv failed: info = %d\n", info);
        return 1;
    }

    double error = 0.0;
    for (int i = 0; i < n; ++i) error = fmax(error, fabs(b[i] - x_true[i]));
    printf("x = (%.6f, %.6f, %.6f, %.6f), pivot rows %d %d %d %d, largest error %.1e\n", b[0], b[1], b[2],
           b[3], ipiv[0], ipiv[1], ipiv[2], ipiv[3], error);
    return error < 1e-12 ? 0 : 1;
}
