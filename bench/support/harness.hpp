#pragma once
// The benchmark harness: runs the same cases against zor and the other BLAS/LAPACK libraries on
// the machine, each library in a process of its own (so that each reads its own environment
// settings, such as OPENBLAS_CORETYPE, as it loads), interleaved in rounds, and reports the
// median of each library and its ratio to zor's, measured in the same run.

#include <functional>
#include <string>
#include <vector>

namespace bench {

// One library in one configuration.
struct Peer {
    std::string name;                // as shown in the tables, e.g. "openblas-avx512"
    std::vector<std::string> paths;  // loaded in this order with RTLD_GLOBAL; symbols come from any
    std::vector<std::string> env;    // "NAME=value" set for this peer's process
};

// zor at the Avx and Default levels, OpenBLAS and BLIS as shipped and forced to their AVX-512
// kernels, and reference LAPACK on OpenBLAS's AVX-512 BLAS, each single-threaded. Every OPENBLAS_* and BLIS_*
// variable of the caller is cleared. With ZOR_BENCH_BASELINE naming another build of libzor.so.1, also that
// build at Avx ("zor-baseline").
std::vector<Peer> standard_peers();

// A loaded peer: its symbols, looked up by name (null when it has none).
class Library {
  public:
    explicit Library(const Peer& peer);
    void* symbol(const char* name) const;
    template <class F>
    F* function(const char* name) const {
        return reinterpret_cast<F*>(symbol(name));
    }
    const std::string& name() const { return name_; }

  private:
    std::string name_;
    std::vector<void*> handles_;
};

// What a peer says about the kernels it picked (OpenBLAS core name, BLIS sub-configuration, zor
// level), for the report.
std::string describe(const Library& library);

enum class Metric { GflopsPerSecond, NanosecondsPerElement };

struct Case {
    std::string name;
    double work;  // floating-point operations, or elements, per call
};

struct Benchmark {
    std::string title;
    Metric metric;
    std::vector<Case> cases;
    // Prepares and times one case with the library's functions: seconds per call. Return a
    // negative value when the library lacks the routine.
    std::function<double(const Library&, const Case&)> measure;
};

// Seconds per call of `call`: the best of `repeats` timings, each running the call for at least
// `min_seconds`.
double seconds_per_call(const std::function<void()>& call, double min_seconds = 0.05, int repeats = 3);

// The driver. Options: --rounds N (default 5), --peers a,b,c (names of standard_peers), --cases
// REGEX, --csv FILE (medians of every peer and case), --list. Returns the process status.
int run(int argc, char** argv, const Benchmark& benchmark);

}  // namespace bench
