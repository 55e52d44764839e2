/* Fits a quadratic c0 + c1 t + c2 t^2 to seven points in the least-squares sense with zor's dgelsd
 * (the minimum-norm solution through the singular value decomposition), and reports the rank it
 * found. Build: cc least_squares.c $(pkg-config --cflags --libs zor) -lm */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include <zor/zor.h>

enum { m = 7, n = 3 };

int main(void) {
    /* The points lie off 1 + 0.5 t - 0.25 t^2 by 0.01 (t^3 - 7t) / 6, which is orthogonal to 1, t
     * and t^2 over t = -3 .. 3: the best fit is that quadratic exactly. */
    const double t[m] = {-3, -2, -1, 0, 1, 2, 3};
    double a[m * n], b[m];
    for (int i = 0; i < m; ++i) {
        a[i] = 1.0;
        a[i + m] = t[i];
        a[i + 2 * m] = t[i] * t[i];
        b[i] = 1.0 + 0.5 * t[i] - 0.25 * t[i] * t[i] + 0.01 * (t[i] * t[i] * t[i] - 7.0 * t[i]) / 6.0;
    }

    const zor_int rows = m, cols = n, nrhs = 1, lda = m, ldb = m;
    const double rcond = -1.0; /* singular values below machine precision times the largest count as zero */
    double s[n], work_size = 0.0;
    zor_int rank = 0, info = 0, lwork = -1, iwork_size = 0;
    /* The workspace query: the real work size in work_size, the integer one in iwork_size. */
    dgelsd(&rows, &cols, &nrhs, a, &lda, b, &ldb, s, &rcond, &rank, &work_size, &lwork, &iwork_size, &info);
    if (info != 0) {
        printf("dgelsd workspace query failed: info = %d\n", info);
        return 1;
    }
    lwork = (zor_int)work_size;
    double* work = malloc(sizeof(double) * (size_t)lwork);
    zor_int* iwork = malloc(sizeof(zor_int) * (size_t)(iwork_size > 0 ? iwork_size : 1));
    if (work == NULL || iwork == NULL) {
        printf("out of memory\n");
        return 1;
    }
    dgelsd(&rows, &cols, &nrhs, a, &lda, b, &ldb, s, &rcond, &rank, work, &lwork, iwork, &info);
    free(work);
    free(iwork);
    if (info != 0) {
        printf("dgelsd failed: info = %d\n", info);
        return 1;
    }

    /* b's first n entries hold the coefficients now. */
    printf("fit: c0 = %.9f, c1 = %.9f, c2 = %.9f (rank %d, singular values %.4f %.4f %.4f)\n", b[0], b[1],
           b[2], rank, s[0], s[1], s[2]);
    const double error = fmax(fabs(b[0] - 1.0), fmax(fabs(b[1] - 0.5), fabs(b[2] + 0.25)));
    return rank == n && error < 1e-12 ? 0 : 1;
}
