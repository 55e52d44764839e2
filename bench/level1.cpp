// Level-1 BLAS through the CBLAS interface: zor against the other libraries on the machine, in ns
// per element, single-threaded. Each case is one kernel at one length; vectors are 64-byte
// aligned, unit stride, with data that stays finite and normal however often a call repeats.

#include <cstdlib>
#include <functional>
#include <map>
#include <string>

#include "support/buffer.hpp"
#include "support/harness.hpp"

namespace {

using Index = std::size_t;

// Runs `call` `batch` times per timed call, so that the timing overhead stays out of short cases.
double time_batched(const std::function<void()>& call, long n) {
    const int batch = n <= 1000 ? 64 : 1;
    return bench::seconds_per_call([&] {
               for (int b = 0; b < batch; ++b) call();
           }) /
           batch;
}

volatile double g_sink;

// One kernel: how to call it with n elements of x and y (y unused by some).
using Runner = std::function<double(const bench::Library&, long n, double* x, double* y)>;

template <class F>
F* lookup(const bench::Library& library, const char* name) {
    return library.function<F>(name);
}

const std::map<std::string, Runner>& kernels() {
    static const std::map<std::string, Runner> table = {
        {"ddot",
         [](const bench::Library& lib, long n, double* x, double* y) {
             auto* f = lookup<double(int, const double*, int, const double*, int)>(lib, "cblas_ddot");
             if (!f) return -1.0;
             return time_batched([&] { g_sink = f(n, x, 1, y, 1); }, n);
         }},
        {"daxpy",
         [](const bench::Library& lib, long n, double* x, double* y) {
             auto* f = lookup<void(int, double, const double*, int, double*, int)>(lib, "cblas_daxpy");
             if (!f) return -1.0;
             return time_batched([&] { f(n, 1e-9, x, 1, y, 1); }, n);
         }},
        {"dscal",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<void(int, double, double*, int)>(lib, "cblas_dscal");
             if (!f) return -1.0;
             return time_batched([&] { f(n, -1.0, x, 1); }, n);
         }},
        {"dcopy",
         [](const bench::Library& lib, long n, double* x, double* y) {
             auto* f = lookup<void(int, const double*, int, double*, int)>(lib, "cblas_dcopy");
             if (!f) return -1.0;
             return time_batched([&] { f(n, x, 1, y, 1); }, n);
         }},
        {"dswap",
         [](const bench::Library& lib, long n, double* x, double* y) {
             auto* f = lookup<void(int, double*, int, double*, int)>(lib, "cblas_dswap");
             if (!f) return -1.0;
             return time_batched([&] { f(n, x, 1, y, 1); }, n);
         }},
        {"dasum",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<double(int, const double*, int)>(lib, "cblas_dasum");
             if (!f) return -1.0;
             return time_batched([&] { g_sink = f(n, x, 1); }, n);
         }},
        {"dnrm2",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<double(int, const double*, int)>(lib, "cblas_dnrm2");
             if (!f) return -1.0;
             return time_batched([&] { g_sink = f(n, x, 1); }, n);
         }},
        {"idamax",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<Index(int, const double*, int)>(lib, "cblas_idamax");
             if (!f) return -1.0;
             return time_batched([&] { g_sink = static_cast<double>(f(n, x, 1)); }, n);
         }},
        {"drot",
         [](const bench::Library& lib, long n, double* x, double* y) {
             auto* f = lookup<void(int, double*, int, double*, int, double, double)>(lib, "cblas_drot");
             if (!f) return -1.0;
             return time_batched([&] { f(n, x, 1, y, 1, 0.6, 0.8); }, n);
         }},
        {"zdotc",
         [](const bench::Library& lib, long n, double* x, double* y) {
             auto* f = lookup<void(int, const void*, int, const void*, int, void*)>(lib, "cblas_zdotc_sub");
             if (!f) return -1.0;
             double dot[2];
             return time_batched([&] { f(n, x, 1, y, 1, dot); }, n);
         }},
        {"zaxpy",
         [](const bench::Library& lib, long n, double* x, double* y) {
             auto* f = lookup<void(int, const void*, const void*, int, void*, int)>(lib, "cblas_zaxpy");
             if (!f) return -1.0;
             const double alpha[2] = {1e-9, -1e-9};
             return time_batched([&] { f(n, alpha, x, 1, y, 1); }, n);
         }},
        {"zscal",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<void(int, const void*, void*, int)>(lib, "cblas_zscal");
             if (!f) return -1.0;
             const double alpha[2] = {0.6, 0.8};  // of modulus 1
             return time_batched([&] { f(n, alpha, x, 1); }, n);
         }},
        {"dzasum",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<double(int, const void*, int)>(lib, "cblas_dzasum");
             if (!f) return -1.0;
             return time_batched([&] { g_sink = f(n, x, 1); }, n);
         }},
        {"dznrm2",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<double(int, const void*, int)>(lib, "cblas_dznrm2");
             if (!f) return -1.0;
             return time_batched([&] { g_sink = f(n, x, 1); }, n);
         }},
        {"izamax",
         [](const bench::Library& lib, long n, double* x, double*) {
             auto* f = lookup<Index(int, const void*, int)>(lib, "cblas_izamax");
             if (!f) return -1.0;
             return time_batched([&] { g_sink = static_cast<double>(f(n, x, 1)); }, n);
         }},
    };
    return table;
}

// Case names are "<kernel> n=<length>"; complex kernels count complex elements.
const char* const kOrder[] = {"ddot", "daxpy", "dscal", "dcopy", "dswap",  "dasum",  "dnrm2", "idamax",
                              "drot", "zdotc", "zaxpy", "zscal", "dzasum", "dznrm2", "izamax"};

}  // namespace

int main(int argc, char** argv) {
    bench::Benchmark benchmark;
    benchmark.title = "Level-1 BLAS, unit stride, ns per element";
    benchmark.metric = bench::Metric::NanosecondsPerElement;
    for (const char* kernel : kOrder) {
        for (const long n : {100L, 1000L, 10000L, 1000000L}) {
            benchmark.cases.push_back(
                {std::string(kernel) + " n=" + std::to_string(n), static_cast<double>(n)});
        }
    }
    benchmark.measure = [](const bench::Library& library, const bench::Case& c) {
        const std::string name = c.name.substr(0, c.name.find(' '));
        const long n = std::atol(c.name.c_str() + c.name.find('=') + 1);
        const bool complex = name.find('z') != std::string::npos;
        const std::size_t count = static_cast<std::size_t>(n) * (complex ? 2 : 1);
        bench::Buffer x(count), y(count);
        return kernels().at(name)(library, n, x.get(), y.get());
    };
    return bench::run(argc, argv, benchmark);
}
