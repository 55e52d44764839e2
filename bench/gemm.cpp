// GEMM through the CBLAS interface: zor against the other libraries on the machine, in GFLOP/s,
// single-threaded. Square problems from n = 64 to 4096 and skinny ones (m = n = 4096 with k = 32 to
// 256; 64 or 128 columns or rows with the other two dimensions 4096), for dgemm and zgemm,
// column-major, no transposition, alpha = 1, beta = 1.
//
// Options besides the harness's: --plot FILE draws GFLOP/s against n with gnuplot (PNG or SVG, by
// the file's extension); --peak measures this core's FMA throughput first, the ceiling the table is
// to be read against.

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/buffer.hpp"
#include "support/harness.hpp"

namespace {

constexpr int kColMajor = 102, kNoTrans = 111;

using Dgemm = void(int, int, int, int, int, int, double, const double*, int, const double*, int, double,
                   double*, int);
using Zgemm = void(int, int, int, int, int, int, const void*, const void*, int, const void*, int, const void*,
                   void*, int);

struct Problem {
    bool complex;
    int m, n, k;
};

// Case names: "dgemm n=256" (square), "dgemm 4096x4096 k=64" (m x n with depth k).
Problem parse(const std::string& name) {
    Problem p{name[0] == 'z', 0, 0, 0};
    const int value = std::atoi(name.c_str() + name.find('=') + 1);
    if (name.find(" n=") != std::string::npos) {
        p.m = p.n = p.k = value;
    } else {
        const std::size_t space = name.find(' '), times = name.find('x', space);
        p.m = std::atoi(name.c_str() + space + 1);
        p.n = std::atoi(name.c_str() + times + 1);
        p.k = value;
    }
    return p;
}

double measure(const bench::Library& library, const bench::Case& c) {
    const Problem p = parse(c.name);
    const std::size_t scale = p.complex ? 2 : 1;
    bench::Buffer a(scale * p.m * p.k), b(scale * p.k * p.n), cc(scale * p.m * p.n);
    // Large cases take seconds a call: time them once after the warming call.
    const int repeats = static_cast<double>(p.m) * p.n * p.k * scale * scale > 4e9 ? 1 : 3;
    if (p.complex) {
        auto* zgemm = library.function<Zgemm>("cblas_zgemm");
        if (zgemm == nullptr) return -1;
        const double one[2] = {1.0, 0.0};
        return bench::seconds_per_call(
            [&] {
                zgemm(kColMajor, kNoTrans, kNoTrans, p.m, p.n, p.k, one, a.get(), p.m, b.get(), p.k, one,
                      cc.get(), p.m);
            },
            0.05, repeats);
    }
    auto* dgemm = library.function<Dgemm>("cblas_dgemm");
    if (dgemm == nullptr) return -1;
    return bench::seconds_per_call(
        [&] {
            dgemm(kColMajor, kNoTrans, kNoTrans, p.m, p.n, p.k, 1.0, a.get(), p.m, b.get(), p.k, 1.0,
                  cc.get(), p.m);
        },
        0.05, repeats);
}

// ---- the FMA ceiling --------------------------------------------------------------------------------

// Independent chains of 512-bit (or 256-bit) fused multiply-adds, enough to cover the latency of
// two FMA units: the rate no GEMM on this core can exceed.
#define ZOR_FMA512(r) "vfmadd231pd %%zmm30, %%zmm31, %%zmm" #r "\n\t"
#define ZOR_FMA256(r) "vfmadd231pd %%ymm14, %%ymm15, %%ymm" #r "\n\t"

__attribute__((target("avx512f"))) void fma512_chains(long iterations) {
    __asm__ volatile(
        "vxorpd %%xmm30, %%xmm30, %%xmm30\n\tvxorpd %%xmm31, %%xmm31, %%xmm31\n\t"
        "1:\n\t" ZOR_FMA512(0) ZOR_FMA512(1) ZOR_FMA512(2) ZOR_FMA512(3) ZOR_FMA512(4) ZOR_FMA512(5)
            ZOR_FMA512(6) ZOR_FMA512(7) ZOR_FMA512(8) ZOR_FMA512(9) ZOR_FMA512(10) ZOR_FMA512(11)
                ZOR_FMA512(12) ZOR_FMA512(13) ZOR_FMA512(14) ZOR_FMA512(15) ZOR_FMA512(16) ZOR_FMA512(17)
                    ZOR_FMA512(18) ZOR_FMA512(19) ZOR_FMA512(20) ZOR_FMA512(21) ZOR_FMA512(22)
                        ZOR_FMA512(23) "dec %0\n\tjnz 1b\n\tvzeroupper"
        : "+r"(iterations)
        :
        : "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10",
          "xmm11", "xmm12", "xmm13", "xmm14", "xmm15", "xmm16", "xmm17", "xmm18", "xmm19", "xmm20", "xmm21",
          "xmm22", "xmm23", "xmm30", "xmm31");
}

__attribute__((target("avx2,fma"))) void fma256_chains(long iterations) {
    __asm__ volatile(
        "vxorpd %%xmm14, %%xmm14, %%xmm14\n\tvxorpd %%xmm15, %%xmm15, %%xmm15\n\t"
        "1:\n\t" ZOR_FMA256(0) ZOR_FMA256(1) ZOR_FMA256(2) ZOR_FMA256(3) ZOR_FMA256(4) ZOR_FMA256(5)
            ZOR_FMA256(6) ZOR_FMA256(7) ZOR_FMA256(8) ZOR_FMA256(9) ZOR_FMA256(10)
                ZOR_FMA256(11) "dec %0\n\tjnz 1b\n\tvzeroupper"
        : "+r"(iterations)
        :
        : "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10",
          "xmm11", "xmm14", "xmm15");
}

// GFLOP/s of `chains` FMAs of `lanes` doubles per iteration: the best of several timings.
double fma_rate(void (*run)(long), int chains, int lanes) {
    constexpr long kIterations = 20'000'000;
    double best = 0;
    for (int attempt = 0; attempt < 5; ++attempt) {
        const auto start = std::chrono::steady_clock::now();
        run(kIterations);
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        best = std::max(best, 2.0 * lanes * chains * kIterations / seconds * 1e-9);
    }
    return best;
}

// The 512-bit rate when the processor has AVX-512, else the 256-bit one; 0 without FMA.
double measure_peak() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f")) {
        const double peak = fma_rate(&fma512_chains, 24, 8);
        std::printf("FMA peak of this core: %.1f GFLOP/s with 512-bit vectors, %.1f with 256-bit\n", peak,
                    fma_rate(&fma256_chains, 12, 4));
        return peak;
    }
    if (__builtin_cpu_supports("fma")) {
        const double peak = fma_rate(&fma256_chains, 12, 4);
        std::printf("FMA peak of this core: %.1f GFLOP/s with 256-bit vectors\n", peak);
        return peak;
    }
    std::printf("this processor has no FMA: no peak measured\n");
    return 0;
}

// ---- the plot ---------------------------------------------------------------------------------------

std::vector<std::string> split(const std::string& line) {
    std::vector<std::string> fields;
    std::stringstream stream(line);
    std::string field;
    while (std::getline(stream, field, ',')) fields.push_back(field);
    return fields;
}

// From the medians the harness wrote: one data file per routine (n, then each peer's GFLOP/s) and
// a gnuplot script with a panel for each.
bool draw(const std::string& csv, const std::string& image, double peak) {
    std::ifstream in(csv);
    std::string line;
    if (!std::getline(in, line)) return false;
    const std::vector<std::string> header = split(line);
    const std::vector<std::string> peers(header.begin() + 2, header.end());
    std::map<std::string, std::string> data;  // routine -> rows
    while (std::getline(in, line)) {
        const std::vector<std::string> fields = split(line);
        if (fields.empty() || fields[0].find(" n=") == std::string::npos) continue;
        std::string row = fields[0].substr(fields[0].find('=') + 1);
        for (std::size_t i = 2; i < header.size(); ++i)
            row += " " + (i < fields.size() && !fields[i].empty() ? fields[i] : "NaN");
        data[fields[0].substr(0, 5)] += row + "\n";
    }
    if (data.empty()) return false;
    const bool svg = image.size() > 4 && image.compare(image.size() - 4, 4, ".svg") == 0;
    const std::string script_path = image + ".gp";
    std::ofstream script(script_path);
    script << (svg ? "set terminal svg size 1200,500 dynamic\n" : "set terminal pngcairo size 1200,500\n");
    script << "set output '" << image << "'\nset multiplot layout 1," << data.size() << "\n";
    script << "set logscale x 2\nset xlabel 'n (square, column-major)'\nset ylabel 'GFLOP/s, one core'\n";
    script << "set key below\nset grid\nset yrange [0:*]\n";
    for (const auto& [routine, rows] : data) {
        const std::string data_path = image + "." + routine + ".dat";
        std::ofstream(data_path) << rows;
        script << "set title '" << routine << "'\nplot ";
        for (std::size_t i = 0; i < peers.size(); ++i) {
            script << (i ? ", " : "") << "'" << data_path << "' using 1:" << i + 2
                   << " with linespoints title '" << peers[i] << "'";
        }
        if (peak > 0) script << ", " << peak << " with lines dashtype 2 title 'FMA peak'";
        script << "\n";
    }
    script << "unset multiplot\n";
    script.close();
    const std::string command = "gnuplot '" + script_path + "'";
    return std::system(command.c_str()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    bench::Benchmark benchmark;
    benchmark.title = "GEMM, column-major, alpha = beta = 1, GFLOP/s";
    benchmark.metric = bench::Metric::GflopsPerSecond;
    for (const char* routine : {"dgemm", "zgemm"}) {
        const double flops_per_term = routine[0] == 'z' ? 8.0 : 2.0;
        for (const int n : {64, 96, 128, 192, 256, 384, 512, 768, 1024, 1536, 2048, 3072, 4096}) {
            benchmark.cases.push_back(
                {std::string(routine) + " n=" + std::to_string(n), flops_per_term * n * n * n});
        }
        // Skinny shapes: a shallow depth, or few columns or few rows.
        const int skinny[][3] = {{4096, 4096, 32}, {4096, 4096, 64},  {4096, 4096, 128}, {4096, 4096, 256},
                                 {4096, 64, 4096}, {4096, 128, 4096}, {64, 4096, 4096},  {128, 4096, 4096}};
        for (const auto& [m, n, k] : skinny) {
            benchmark.cases.push_back({std::string(routine) + " " + std::to_string(m) + "x" +
                                           std::to_string(n) + " k=" + std::to_string(k),
                                       flops_per_term * m * n * static_cast<double>(k)});
        }
    }
    benchmark.measure = &measure;

    // Take out the options of this program; the rest go to the harness.
    std::string plot, csv;
    bool peak_wanted = false, worker = false;
    std::vector<char*> args = {argv[0]};
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--plot" && i + 1 < argc) {
            plot = argv[++i];
        } else if (arg == "--peak") {
            peak_wanted = true;
        } else {
            if (arg == "--csv" && i + 1 < argc) csv = argv[i + 1];
            if (arg == "--worker") worker = true;
            args.push_back(argv[i]);
        }
    }
    std::string csv_option = "--csv", temporary_csv;
    if (!plot.empty() && csv.empty() && !worker) {
        temporary_csv = plot + ".csv";
        csv = temporary_csv;
        args.push_back(csv_option.data());
        args.push_back(temporary_csv.data());
    }
    const double peak = peak_wanted && !worker ? measure_peak() : 0;
    const int status = bench::run(static_cast<int>(args.size()), args.data(), benchmark);
    if (status != 0 || worker || plot.empty()) return status;
    if (draw(csv, plot, peak)) {
        std::printf("\nplot written to %s\n", plot.c_str());
    } else {
        std::printf("\nno plot drawn (is gnuplot installed?)\n");
    }
    return 0;
}
