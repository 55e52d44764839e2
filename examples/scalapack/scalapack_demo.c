/* A distributed solve with ScaLAPACK on a grid of MPI processes: pdgesv (LU) on a general matrix and
 * pdpotrf/pdpotrs (Cholesky) on a symmetric positive definite one, each timed and checked by its
 * residual. The node BLAS and LAPACK are whatever the processes load: run it with zor's drop-in
 * library ahead of the system ones (LD_PRELOAD) to have zor compute every local block.
 *
 *   mpirun -np 2 scalapack_demo N [ROWS COLS]     (a ROWS x COLS process grid, 2 x 1 by default)
 *
 * Build: mpicc scalapack_demo.c -lscalapack-openmpi -o scalapack_demo
 * Exit status 0 when both residuals are small. */
#include <math.h>
#include <mpi.h>
#include <stdio.h>
#include <stdlib.h>

void Cblacs_pinfo(int* rank, int* processes);
void Cblacs_get(int context, int what, int* value);
void Cblacs_gridinit(int* context, const char* order, int rows, int cols);
void Cblacs_gridinfo(int context, int* rows, int* cols, int* row, int* col);
void Cblacs_gridexit(int context);
int numroc_(const int* n, const int* nb, const int* iproc, const int* isrcproc, const int* nprocs);
void descinit_(int* desc, const int* m, const int* n, const int* mb, const int* nb, const int* irsrc,
               const int* icsrc, const int* context, const int* lld, int* info);
void pdgesv_(const int* n, const int* nrhs, double* a, const int* ia, const int* ja, const int* desca, int* ipiv,
             double* b, const int* ib, const int* jb, const int* descb, int* info);
void pdpotrf_(const char* uplo, const int* n, double* a, const int* ia, const int* ja, const int* desca, int* info);
void pdpotrs_(const char* uplo, const int* n, const int* nrhs, const double* a, const int* ia, const int* ja,
              const int* desca, double* b, const int* ib, const int* jb, const int* descb, int* info);
void pdgemv_(const char* trans, const int* m, const int* n, const double* alpha, const double* a, const int* ia,
             const int* ja, const int* desca, const double* x, const int* ix, const int* jx, const int* descx,
             const int* incx, const double* beta, double* y, const int* iy, const int* jy, const int* descy,
             const int* incy);
double pdlange_(const char* norm, const int* m, const int* n, const double* a, const int* ia, const int* ja,
                const int* desca, double* work);

/* The global matrices, element by element, the same on every process: a general matrix with a
 * strong diagonal, a symmetric positive definite one, and a right-hand side. */
static double general(int i, int j, int n) {
    const double v = sin(0.37 * (i + 1) + 0.11 * (j + 1) * (i % 7 + 1));
    return i == j ? v + n : v;
}
static double spd(int i, int j, int n) {
    const double v = cos(0.21 * (i + j + 2)) / (1.0 + abs(i - j));
    return i == j ? v + n : v;
}
static double rhs(int i) {
    return 1.0 + 0.5 * sin(0.3 * (i + 1));
}

typedef double (*Element)(int, int, int);

/* This process's part of the global n x cols matrix (block-cyclic, nb by nb blocks). */
static void fill(double* local, int lld, int n, int cols, int nb, int row, int col, int rows, int columns,
                 Element element) {
    const int zero = 0;
    const int local_rows = numroc_(&n, &nb, &row, &zero, &rows);
    const int local_cols = numroc_(&cols, &nb, &col, &zero, &columns);
    for (int lj = 0; lj < local_cols; ++lj) {
        const int j = (lj / nb * columns + col) * nb + lj % nb;
        for (int li = 0; li < local_rows; ++li) {
            const int i = (li / nb * rows + row) * nb + li % nb;
            local[li + (size_t)lj * lld] = element ? element(i, j, n) : rhs(i);
        }
    }
}

/* ||A x - b||_inf / (||A||_inf ||x||_inf n eps), from the original A and b. */
static double residual(const double* a, const int* desca, const double* x, const double* b, const int* descb,
                       int n, int local_rows, double* r, double* work) {
    const int one = 1;
    const double plus = 1.0, minus = -1.0;
    for (int k = 0; k < local_rows; ++k) r[k] = b[k];
    pdgemv_("N", &n, &n, &plus, a, &one, &one, desca, x, &one, &one, descb, &one, &minus, r, &one, &one, descb, &one);
    const double rn = pdlange_("I", &n, &one, r, &one, &one, descb, work);
    const double an = pdlange_("I", &n, &n, a, &one, &one, desca, work);
    const double xn = pdlange_("I", &n, &one, x, &one, &one, descb, work);
    return rn / (an * xn * n * 2.220446049250313e-16);
}

int main(int argc, char** argv) {
    MPI_Init(&argc, &argv);
    const int n = argc > 1 ? atoi(argv[1]) : 1000;
    int rows = argc > 2 ? atoi(argv[2]) : 2, columns = argc > 3 ? atoi(argv[3]) : 1;
    const int nb = 64, zero = 0, one = 1;
    int rank, processes, context, row, col, info;
    Cblacs_pinfo(&rank, &processes);
    if (rows * columns != processes) {
        if (rank == 0) printf("the grid %d x %d does not match %d processes\n", rows, columns, processes);
        MPI_Finalize();
        return 2;
    }
    Cblacs_get(-1, 0, &context);
    Cblacs_gridinit(&context, "Row-major", rows, columns);
    Cblacs_gridinfo(context, &rows, &columns, &row, &col);
    const int local_rows = numroc_(&n, &nb, &row, &zero, &rows);
    const int local_cols = numroc_(&n, &nb, &col, &zero, &columns);
    const int lld = local_rows > 1 ? local_rows : 1;
    int desca[9], descb[9];
    descinit_(desca, &n, &n, &nb, &nb, &zero, &zero, &context, &lld, &info);
    descinit_(descb, &n, &one, &nb, &nb, &zero, &zero, &context, &lld, &info);
    const size_t a_size = (size_t)lld * (local_cols > 0 ? local_cols : 1);
    double* a = malloc(sizeof(double) * a_size);
    double* a0 = malloc(sizeof(double) * a_size);
    double* b = malloc(sizeof(double) * lld);
    double* b0 = malloc(sizeof(double) * lld);
    double* r = malloc(sizeof(double) * lld);
    double* work = malloc(sizeof(double) * (size_t)(lld + local_cols + nb + 1));
    int* ipiv = malloc(sizeof(int) * (size_t)(lld + nb));
    int status = 0;

    const char* names[2] = {"pdgesv (LU)", "pdpotrf + pdpotrs (Cholesky)"};
    for (int solver = 0; solver < 2; ++solver) {
        const Element element = solver == 0 ? general : spd;
        fill(a0, lld, n, n, nb, row, col, rows, columns, element);
        fill(b0, lld, n, 1, nb, row, col, rows, columns, NULL);
        for (size_t k = 0; k < a_size; ++k) a[k] = a0[k];
        for (int k = 0; k < lld; ++k) b[k] = b0[k];
        MPI_Barrier(MPI_COMM_WORLD);
        const double start = MPI_Wtime();
        if (solver == 0) {
            pdgesv_(&n, &one, a, &one, &one, desca, ipiv, b, &one, &one, descb, &info);
        } else {
            pdpotrf_("L", &n, a, &one, &one, desca, &info);
            if (info == 0) pdpotrs_("L", &n, &one, a, &one, &one, desca, b, &one, &one, descb, &info);
        }
        MPI_Barrier(MPI_COMM_WORLD);
        const double seconds = MPI_Wtime() - start;
        const double flops = solver == 0 ? 2.0 / 3.0 * n * (double)n * n : 1.0 / 3.0 * n * (double)n * n;
        const double check = info == 0 ? residual(a0, desca, b, b0, descb, n, local_rows, r, work) : INFINITY;
        if (rank == 0) {
            printf("%-30s n = %d on %d x %d: %.3f s, %.2f GFLOP/s, residual %.2g (info %d)\n", names[solver], n,
                   rows, columns, seconds, flops / seconds * 1e-9, check, info);
        }
        if (!(check < 30.0)) status = 1;
    }
    free(a);
    free(a0);
    free(b);
    free(b0);
    free(r);
    free(work);
    free(ipiv);
    Cblacs_gridexit(context);
    MPI_Finalize();
    return status;
}
