// The eigenvalues and eigenvectors of a symmetric matrix with zor's dsyevd (divide and conquer): the
// second-difference matrix tridiag(-1, 2, -1) of order n, whose eigenvalues are known,
// 2 - 2 cos(k pi / (n + 1)) for k = 1 .. n. Checks them and A v = lambda v for every vector.
// Build: c++ symmetric_eigen.cpp $(pkg-config --cflags --libs zor)
#include <zor/zor.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

int main() {
    const zor_int n = 12;
    std::vector<double> matrix(n * n, 0.0);  // column-major
    for (zor_int i = 0; i < n; ++i) {
        matrix[i + i * n] = 2.0;
        if (i + 1 < n) matrix[i + 1 + i * n] = matrix[i + (i + 1) * n] = -1.0;
    }
    std::vector<double> a = matrix;  // dsyevd overwrites it with the eigenvectors
    std::vector<double> w(n);

    // Ask for the work sizes first (lwork = liwork = -1), then run with what was asked for. The
    // trailing 1, 1 are the lengths of the two option strings, as Fortran passes them.
    double work_size = 0.0;
    zor_int iwork_size = 0, lwork = -1, liwork = -1, info = 0;
    dsyevd("V", "L", &n, a.data(), &n, w.data(), &work_size, &lwork, &iwork_size, &liwork, &info, 1, 1);
    if (info != 0) {
        std::printf("dsyevd workspace query failed: info = %d\n", info);
        return 1;
    }
    lwork = static_cast<zor_int>(work_size);
    liwork = iwork_size;
    std::vector<double> work(lwork);
    std::vector<zor_int> iwork(liwork);
    dsyevd("V", "L", &n, a.data(), &n, w.data(), work.data(), &lwork, iwork.data(), &liwork, &info, 1, 1);
    if (info != 0) {
        std::printf("dsyevd failed: info = %d\n", info);
        return 1;
    }

    const double pi = std::acos(-1.0);
    double value_error = 0.0, vector_residual = 0.0;
    for (zor_int k = 0; k < n; ++k) {
        const double exact = 2.0 - 2.0 * std::cos((k + 1) * pi / (n + 1));
        value_error = std::max(value_error, std::fabs(w[k] - exact));
        const double* v = &a[k * n];
        for (zor_int i = 0; i < n; ++i) {
            double av = 0.0;
            for (zor_int j = 0; j < n; ++j) av += matrix[i + j * n] * v[j];
            vector_residual = std::max(vector_residual, std::fabs(av - w[k] * v[i]));
        }
    }
    std::printf("eigenvalues %.6f .. %.6f; largest error %.1e; largest |A v - lambda v| %.1e\n", w[0],
                w[n - 1], value_error, vector_residual);
    return value_error < 1e-13 && vector_residual < 1e-13 ? 0 : 1;
}
