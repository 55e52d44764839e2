// Level-2 BLAS through the CBLAS interface: dgemv (both forms), dsymv, dtrsv and zgemv on square
// column-major matrices, in GFLOP/s, single-threaded. Matrices are 64-byte aligned with a leading
// dimension equal to n; values stay finite and normal however often a call repeats.

#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "support/buffer.hpp"
#include "support/harness.hpp"

namespace {

constexpr int kColMajor = 102, kNoTrans = 111, kTrans = 112, kConjTrans = 113, kUpper = 121, kNonUnit = 131;

using Gemv = void(int, int, int, int, double, const double*, int, const double*, int, double, double*, int);
using Zgemv = void(int, int, int, int, const void*, const void*, int, const void*, int, const void*, void*,
                   int);
using Symv = void(int, int, int, double, const double*, int, const double*, int, double, double*, int);
using Trsv = void(int, int, int, int, int, const double*, int, double*, int);

double measure(const bench::Library& library, const std::string& kernel, int n) {
    const std::size_t nn = static_cast<std::size_t>(n) * n;
    if (kernel == "dgemv-n" || kernel == "dgemv-t") {
        auto* f = library.function<Gemv>("cblas_dgemv");
        if (!f) return -1;
        bench::Buffer a(nn), x(n), y(n);
        const int trans = kernel == "dgemv-n" ? kNoTrans : kTrans;
        return bench::seconds_per_call(
            [&] { f(kColMajor, trans, n, n, 1e-6, a.get(), n, x.get(), 1, 1.0, y.get(), 1); });
    }
    if (kernel == "zgemv-n" || kernel == "zgemv-c") {
        auto* f = library.function<Zgemv>("cblas_zgemv");
        if (!f) return -1;
        bench::Buffer a(2 * nn), x(2 * n), y(2 * n);
        const double alpha[2] = {1e-6, 0.0}, beta[2] = {1.0, 0.0};
        const int trans = kernel == "zgemv-n" ? kNoTrans : kConjTrans;
        return bench::seconds_per_call(
            [&] { f(kColMajor, trans, n, n, alpha, a.get(), n, x.get(), 1, beta, y.get(), 1); });
    }
    if (kernel == "dsymv") {
        auto* f = library.function<Symv>("cblas_dsymv");
        if (!f) return -1;
        bench::Buffer a(nn), x(n), y(n);
        return bench::seconds_per_call(
            [&] { f(kColMajor, kUpper, n, 1e-6, a.get(), n, x.get(), 1, 1.0, y.get(), 1); });
    }
    if (kernel == "dtrsv") {
        auto* f = library.function<Trsv>("cblas_dtrsv");
        if (!f) return -1;
        bench::Buffer a(nn), b(n), x(n);
        // A unit diagonal and small off-diagonal elements keep the solution bounded; the
        // right-hand side is restored before every solve.
        for (int j = 0; j < n; ++j) {
            for (int i = 0; i < n; ++i) a.get()[i + static_cast<std::size_t>(j) * n] *= 1.0 / n;
            a.get()[j + static_cast<std::size_t>(j) * n] = 1.0;
        }
        return bench::seconds_per_call([&] {
            std::memcpy(x.get(), b.get(), sizeof(double) * n);
            f(kColMajor, kUpper, kNoTrans, kNonUnit, n, a.get(), n, x.get(), 1);
        });
    }
    return -1;
}

// Floating-point operations per call.
double flops(const std::string& kernel, int n) {
    const double nn = static_cast<double>(n) * n;
    if (kernel[0] == 'z') return 8 * nn;
    return kernel == "dtrsv" ? nn : 2 * nn;
}

const char* const kKernels[] = {"dgemv-n", "dgemv-t", "dsymv", "dtrsv", "zgemv-n", "zgemv-c"};

}  // namespace

int main(int argc, char** argv) {
    bench::Benchmark benchmark;
    benchmark.title = "Level-2 BLAS, column-major, unit strides, GFLOP/s";
    benchmark.metric = bench::Metric::GflopsPerSecond;
    for (const char* kernel : kKernels) {
        for (const int n : {100, 1000, 4000}) {
            benchmark.cases.push_back({std::string(kernel) + " n=" + std::to_string(n), flops(kernel, n)});
        }
    }
    benchmark.measure = [](const bench::Library& library, const bench::Case& c) {
        const std::string kernel = c.name.substr(0, c.name.find(' '));
        return measure(library, kernel, std::atoi(c.name.c_str() + c.name.find('=') + 1));
    };
    return bench::run(argc, argv, benchmark);
}
