// The level-3 BLAS beside GEMM through the CBLAS interface, zor against the other libraries on the
// machine, in GFLOP/s, single-threaded: every routine on square column-major problems at n = 256,
// 1024 and 2048, and dtrsm and ztrsm with m = 2048 and n = 128 from either side. dgemm and zgemm
// run on the same shapes as the yardstick: a triangular solve is measured against the product with
// the same m and n and a depth of the triangle's order.
//
// Options: side "L" (the 2048 x 128 cases name theirs), uplo "U", no transposition, non-unit
// diagonal, alpha = beta = 1. A triangle has a unit diagonal and off-diagonal elements below 1e-6/n,
// so that repeated solves and products keep B finite and normal without restoring it.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/buffer.hpp"
#include "support/harness.hpp"

namespace {

constexpr int kColMajor = 102, kNoTrans = 111, kUpper = 121, kNonUnit = 131, kLeft = 141, kRight = 142;

using Dgemm = void(int, int, int, int, int, int, double, const double*, int, const double*, int, double,
                   double*, int);
using Zgemm = void(int, int, int, int, int, int, const void*, const void*, int, const void*, int, const void*,
                   void*, int);
using Dsymm = void(int, int, int, int, int, double, const double*, int, const double*, int, double, double*,
                   int);
using Zsymm = void(int, int, int, int, int, const void*, const void*, int, const void*, int, const void*,
                   void*, int);
using Dsyrk = void(int, int, int, int, int, double, const double*, int, double, double*, int);
using Zsyrk = void(int, int, int, int, int, const void*, const void*, int, const void*, void*, int);
using Zherk = void(int, int, int, int, int, double, const void*, int, double, void*, int);
using Dsyr2k = void(int, int, int, int, int, double, const double*, int, const double*, int, double, double*,
                    int);
using Zsyr2k = void(int, int, int, int, int, const void*, const void*, int, const void*, int, const void*,
                    void*, int);
using Zher2k = void(int, int, int, int, int, const void*, const void*, int, const void*, int, double, void*,
                    int);
using Dtrsm = void(int, int, int, int, int, int, int, double, const double*, int, double*, int);
using Ztrsm = void(int, int, int, int, int, int, int, const void*, const void*, int, void*, int);

// A case: "dtrsm n=1024" (square), "dtrsm-right 2048x128" (m x n), "dgemm 2048x128 k=128".
struct Problem {
    std::string routine;
    bool complex;
    int side;
    int m, n, k;
};

Problem parse(const std::string& name) {
    Problem p{name.substr(0, name.find_first_of(" -")), name[0] == 'z', kLeft, 0, 0, 0};
    if (name.find("-right") != std::string::npos) p.side = kRight;
    const std::size_t equals = name.find('=');
    if (name.find(" n=") != std::string::npos) {
        p.m = p.n = p.k = std::atoi(name.c_str() + equals + 1);
    } else {
        std::sscanf(name.c_str() + name.find(' ') + 1, "%dx%d", &p.m, &p.n);
        p.k = equals != std::string::npos ? std::atoi(name.c_str() + equals + 1)
                                          : (p.side == kLeft ? p.m : p.n);
    }
    return p;
}

// Floating-point operations of a call: 2 per real multiply-add, 8 per complex one.
double work(const Problem& p) {
    const double scale = p.complex ? 4.0 : 1.0, m = p.m, n = p.n, k = p.k;
    const std::string& r = p.routine;
    double flops = 0;
    if (r == "dgemm" || r == "zgemm") flops = 2 * m * n * k;
    if (r == "dsymm" || r == "zsymm" || r == "zhemm") flops = 2 * m * m * n;
    if (r == "dsyrk" || r == "zsyrk" || r == "zherk") flops = n * (n + 1) * k;
    if (r == "dsyr2k" || r == "zsyr2k" || r == "zher2k") flops = 2 * n * (n + 1) * k;
    if (r == "dtrmm" || r == "dtrsm" || r == "ztrmm" || r == "ztrsm")
        flops = p.side == kLeft ? m * m * n : m * n * n;
    return scale * flops;
}

// An order x order triangle (of complex values when `complex`) that keeps solves and products bounded.
void make_triangle(double* a, int order, bool complex) {
    const int step = complex ? 2 : 1;
    for (int j = 0; j < order; ++j) {
        for (int i = 0; i < order; ++i) {
            double* x = a + step * (i + static_cast<std::size_t>(j) * order);
            for (int part = 0; part < step; ++part)
                x[part] = i == j ? (part == 0 ? 1.0 : 0.0) : x[part] * 1e-6 / order;
        }
    }
}

double measure(const bench::Library& library, const bench::Case& c) {
    const Problem p = parse(c.name);
    const std::size_t step = p.complex ? 2 : 1;
    const int order = p.side == kLeft ? p.m : p.n;
    bench::Buffer a(step * std::max<std::size_t>(static_cast<std::size_t>(p.m) * p.k,
                                                 static_cast<std::size_t>(order) * order));
    bench::Buffer b(step * static_cast<std::size_t>(p.k) * p.n),
        cc(step * static_cast<std::size_t>(p.m) * p.n);
    const double one[2] = {1.0, 0.0};
    // Calls of a second or more are timed once after the warming call.
    const int repeats = c.work > 3e10 ? 1 : 3;
    auto time = [&](auto call) { return bench::seconds_per_call(call, 0.05, repeats); };
    const std::string& r = p.routine;
    void* f = library.symbol(("cblas_" + r).c_str());
    if (f == nullptr) return -1;
    const int m = p.m, n = p.n, k = p.k;
    if (r == "dgemm") {
        return time([&] {
            reinterpret_cast<Dgemm*>(f)(kColMajor, kNoTrans, kNoTrans, m, n, k, 1.0, a.get(), m, b.get(), k,
                                        1.0, cc.get(), m);
        });
    }
    if (r == "zgemm") {
        return time([&] {
            reinterpret_cast<Zgemm*>(f)(kColMajor, kNoTrans, kNoTrans, m, n, k, one, a.get(), m, b.get(), k,
                                        one, cc.get(), m);
        });
    }
    if (r == "dsymm") {
        return time([&] {
            reinterpret_cast<Dsymm*>(f)(kColMajor, kLeft, kUpper, m, n, 1.0, a.get(), m, b.get(), m, 1.0,
                                        cc.get(), m);
        });
    }
    if (r == "zsymm" || r == "zhemm") {
        return time([&] {
            reinterpret_cast<Zsymm*>(f)(kColMajor, kLeft, kUpper, m, n, one, a.get(), m, b.get(), m, one,
                                        cc.get(), m);
        });
    }
    if (r == "dsyrk") {
        return time([&] {
            reinterpret_cast<Dsyrk*>(f)(kColMajor, kUpper, kNoTrans, n, k, 1.0, a.get(), n, 1.0, cc.get(), n);
        });
    }
    if (r == "zsyrk") {
        return time([&] {
            reinterpret_cast<Zsyrk*>(f)(kColMajor, kUpper, kNoTrans, n, k, one, a.get(), n, one, cc.get(), n);
        });
    }
    if (r == "zherk") {
        return time([&] {
            reinterpret_cast<Zherk*>(f)(kColMajor, kUpper, kNoTrans, n, k, 1.0, a.get(), n, 1.0, cc.get(), n);
        });
    }
    if (r == "dsyr2k") {
        return time([&] {
            reinterpret_cast<Dsyr2k*>(f)(kColMajor, kUpper, kNoTrans, n, k, 1.0, a.get(), n, b.get(), n, 1.0,
                                         cc.get(), n);
        });
    }
    if (r == "zsyr2k") {
        return time([&] {
            reinterpret_cast<Zsyr2k*>(f)(kColMajor, kUpper, kNoTrans, n, k, one, a.get(), n, b.get(), n, one,
                                         cc.get(), n);
        });
    }
    if (r == "zher2k") {
        return time([&] {
            reinterpret_cast<Zher2k*>(f)(kColMajor, kUpper, kNoTrans, n, k, one, a.get(), n, b.get(), n, 1.0,
                                         cc.get(), n);
        });
    }
    make_triangle(a.get(), order, p.complex);
    if (p.complex) {
        return time([&] {
            reinterpret_cast<Ztrsm*>(f)(kColMajor, p.side, kUpper, kNoTrans, kNonUnit, m, n, one, a.get(),
                                        order, cc.get(), m);
        });
    }
    return time([&] {
        reinterpret_cast<Dtrsm*>(f)(kColMajor, p.side, kUpper, kNoTrans, kNonUnit, m, n, 1.0, a.get(), order,
                                    cc.get(), m);
    });
}

}  // namespace

int main(int argc, char** argv) {
    bench::Benchmark benchmark;
    benchmark.title = "Level 3, column-major, alpha = beta = 1, GFLOP/s";
    benchmark.metric = bench::Metric::GflopsPerSecond;
    std::vector<std::string> names;
    for (const char* routine : {"dgemm", "dsymm", "dsyrk", "dsyr2k", "dtrmm", "dtrsm", "zgemm", "zsymm",
                                "zhemm", "zsyrk", "zherk", "zsyr2k", "zher2k", "ztrmm", "ztrsm"}) {
        for (const int n : {256, 1024, 2048})
            names.push_back(std::string(routine) + " n=" + std::to_string(n));
    }
    for (const char* t : {"d", "z"}) {
        names.push_back(std::string(t) + "trsm-left 2048x128");
        names.push_back(std::string(t) + "gemm 2048x128 k=2048");
        names.push_back(std::string(t) + "trsm-right 2048x128");
        names.push_back(std::string(t) + "gemm 2048x128 k=128");
    }
    for (const std::string& name : names) benchmark.cases.push_back({name, work(parse(name))});
    benchmark.measure = &measure;
    return bench::run(argc, argv, benchmark);
}
