#include "support/harness.hpp"

#include <dlfcn.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

extern char** environ;

namespace bench {

namespace {

const char* const kOpenBlas = "/usr/lib/x86_64-linux-gnu/openblas-serial/libopenblas.so.0";
const char* const kBlis = "/usr/lib/x86_64-linux-gnu/blis-serial/libblis.so.4";
const char* const kReferenceLapack = "/usr/lib/x86_64-linux-gnu/lapack/liblapack.so.3";

}  // namespace

std::vector<Peer> standard_peers() {
    std::vector<Peer> peers = {
        {"zor", {ZOR_BENCH_LIBZOR}, {"ZOR_DEBUG_CPU_TYPE=AVX"}},
        {"zor-default", {ZOR_BENCH_LIBZOR}, {"ZOR_DEBUG_CPU_TYPE=0"}},
        {"openblas", {kOpenBlas}, {}},
        {"openblas-avx512", {kOpenBlas}, {"OPENBLAS_CORETYPE=SkylakeX"}},
        {"blis", {kBlis}, {}},
        // BLIS chooses its sub-configuration by processor model; "0" is its id of "skx".
        {"blis-avx512", {kBlis}, {"BLIS_ARCH_TYPE=0"}},
        // Reference LAPACK first, so that its LAPACK symbols are found before OpenBLAS's own; its
        // BLAS calls go to OpenBLAS (Debian's libblas.so.3), forced to the AVX-512 kernels.
        {"reference-lapack", {kReferenceLapack, kOpenBlas}, {"OPENBLAS_CORETYPE=SkylakeX"}},
    };
    // Another build of zor to compare with (an earlier commit's), named by ZOR_BENCH_BASELINE.
    if (const char* baseline = std::getenv("ZOR_BENCH_BASELINE"); baseline != nullptr && *baseline != '\0')
        peers.push_back({"zor-baseline", {baseline}, {"ZOR_DEBUG_CPU_TYPE=AVX"}});
    return peers;
}

Library::Library(const Peer& peer) : name_(peer.name) {
    for (const std::string& path : peer.paths) {
        void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
        if (handle == nullptr) {
            std::fprintf(stderr, "%s: %s\n", peer.name.c_str(), dlerror());
            std::exit(3);
        }
        handles_.push_back(handle);
    }
}

void* Library::symbol(const char* name) const {
    for (void* handle : handles_) {
        if (void* s = dlsym(handle, name)) return s;
    }
    return nullptr;
}

std::string describe(const Library& library) {
    if (auto* core = library.function<char*()>("openblas_get_corename")) {
        const bool reference = library.name() == "reference-lapack";
        return std::string(reference ? "reference LAPACK on OpenBLAS core " : "OpenBLAS core ") + core();
    }
    auto* arch_id = library.function<int()>("bli_arch_query_id");
    auto* arch_name = library.function<const char*(int)>("bli_arch_string");
    if (arch_id && arch_name) return std::string("BLIS sub-configuration ") + arch_name(arch_id());
    if (library.symbol("ZOR_malloc")) {
        const char* level = std::getenv("ZOR_DEBUG_CPU_TYPE");
        return std::string("zor, ZOR_DEBUG_CPU_TYPE=") + (level ? level : "(unset)");
    }
    return library.name();
}

double seconds_per_call(const std::function<void()>& call, double min_seconds, int repeats) {
    using clock = std::chrono::steady_clock;
    call();  // warm caches and first-call decisions
    double best = 1e300;
    for (int r = 0; r < repeats; ++r) {
        long calls = 0;
        const auto start = clock::now();
        double elapsed = 0;
        do {
            call();
            ++calls;
            elapsed = std::chrono::duration<double>(clock::now() - start).count();
        } while (elapsed < min_seconds);
        best = std::min(best, elapsed / calls);
    }
    return best;
}

namespace {

struct Options {
    int rounds = 5;
    std::vector<std::string> peers;
    std::string cases = ".*";
    std::string csv;
    std::string worker;
    bool list = false;
};

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream(text);
    std::string part;
    while (std::getline(stream, part, separator)) {
        if (!part.empty()) parts.push_back(part);
    }
    return parts;
}

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        auto value = [&]() -> std::string {
            if (i + 1 >= argc) {
                std::fprintf(stderr, "%s needs a value\n", arg.c_str());
                std::exit(2);
            }
            return argv[++i];
        };
        if (arg == "--rounds") {
            options.rounds = std::atoi(value().c_str());
        } else if (arg == "--peers") {
            options.peers = split(value(), ',');
        } else if (arg == "--cases") {
            options.cases = value();
        } else if (arg == "--csv") {
            options.csv = value();
        } else if (arg == "--worker") {
            options.worker = value();
        } else if (arg == "--list") {
            options.list = true;
        } else {
            std::fprintf(stderr,
                         "usage: %s [--rounds N] [--peers a,b] [--cases REGEX] [--csv FILE] [--list]\n",
                         argv[0]);
            std::exit(2);
        }
    }
    return options;
}

const Peer* find_peer(const std::vector<Peer>& peers, const std::string& name) {
    for (const Peer& peer : peers) {
        if (peer.name == name) return &peer;
    }
    return nullptr;
}

// The worker: one peer, every selected case, one line per case: "<case>\t<seconds>".
int run_worker(const Options& options, const Benchmark& benchmark) {
    const std::vector<Peer> peers = standard_peers();
    const Peer* peer = find_peer(peers, options.worker);
    if (peer == nullptr) return 2;
    const Library library(*peer);
    std::printf("#\t%s\n", describe(library).c_str());
    const std::regex selected(options.cases);
    for (const Case& c : benchmark.cases) {
        if (!std::regex_search(c.name, selected)) continue;
        std::printf("%s\t%.9g\n", c.name.c_str(), benchmark.measure(library, c));
        std::fflush(stdout);
    }
    return 0;
}

// Runs this program as the worker of `peer` with the peer's environment; its output, or "" when
// it failed.
std::string spawn_worker(const char* program, const Peer& peer, const Options& options, bool* ok) {
    std::vector<std::string> env;
    for (char** e = environ; *e != nullptr; ++e) {
        const std::string entry = *e;
        if (entry.rfind("OPENBLAS_", 0) == 0 || entry.rfind("BLIS_", 0) == 0 ||
            entry.rfind("ZOR_DEBUG_CPU", 0) == 0 || entry.rfind("OMP_", 0) == 0 ||
            entry.rfind("GOTO_", 0) == 0)
            continue;
        env.push_back(entry);
    }
    for (const std::string& e : peer.env) env.push_back(e);
    std::vector<char*> envp;
    for (std::string& e : env) envp.push_back(e.data());
    envp.push_back(nullptr);

    std::vector<std::string> args = {program, "--worker", peer.name, "--cases", options.cases};
    std::vector<char*> argvp;
    for (std::string& a : args) argvp.push_back(a.data());
    argvp.push_back(nullptr);

    int pipe_fds[2];
    if (pipe(pipe_fds) != 0) std::exit(4);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe_fds[1], 1);
    posix_spawn_file_actions_addclose(&actions, pipe_fds[0]);
    pid_t pid;
    const int spawned = posix_spawn(&pid, program, &actions, nullptr, argvp.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(pipe_fds[1]);
    std::string output;
    char buffer[4096];
    ssize_t got;
    while ((got = read(pipe_fds[0], buffer, sizeof buffer)) > 0)
        output.append(buffer, static_cast<size_t>(got));
    close(pipe_fds[0]);
    int status = 0;
    if (spawned == 0) waitpid(pid, &status, 0);
    *ok = spawned == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return output;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : 0.5 * (values[n / 2 - 1] + values[n / 2]);
}

double rate(Metric metric, const Case& c, double seconds) {
    return metric == Metric::GflopsPerSecond ? c.work / seconds * 1e-9 : seconds * 1e9 / c.work;
}

}  // namespace

int run(int argc, char** argv, const Benchmark& benchmark) {
    Options options = parse(argc, argv);
    if (!options.worker.empty()) return run_worker(options, benchmark);

    const std::vector<Peer> all = standard_peers();
    if (options.list) {
        for (const Peer& peer : all) std::printf("peer %s\n", peer.name.c_str());
        for (const Case& c : benchmark.cases) std::printf("case %s\n", c.name.c_str());
        return 0;
    }
    std::vector<Peer> peers;
    if (options.peers.empty()) {
        peers = all;
    } else {
        for (const std::string& name : options.peers) {
            const Peer* peer = find_peer(all, name);
            if (peer == nullptr) {
                std::fprintf(stderr, "unknown peer %s\n", name.c_str());
                return 2;
            }
            peers.push_back(*peer);
        }
    }

    // seconds[peer][case] over the rounds; peers in the same order every round.
    std::map<std::string, std::map<std::string, std::vector<double>>> seconds;
    std::map<std::string, std::string> descriptions;
    std::map<std::string, bool> failed;
    std::vector<std::string> case_order;
    char program[4096];
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
    if (length <= 0) return 4;
    program[length] = '\0';
    std::printf("%s: %d rounds, libraries interleaved in each round\n", benchmark.title.c_str(),
                options.rounds);
    for (int round = 0; round < options.rounds; ++round) {
        for (const Peer& peer : peers) {
            if (failed[peer.name]) continue;
            bool ok = false;
            const std::string output = spawn_worker(program, peer, options, &ok);
            if (!ok) {
                failed[peer.name] = true;
                std::fprintf(stderr, "%s did not run; left out\n", peer.name.c_str());
                continue;
            }
            for (const std::string& line : split(output, '\n')) {
                const std::vector<std::string> fields = split(line, '\t');
                if (fields.size() != 2) continue;
                if (fields[0] == "#") {
                    descriptions[peer.name] = fields[1];
                    continue;
                }
                if (round == 0 && peer.name == peers.front().name) case_order.push_back(fields[0]);
                seconds[peer.name][fields[0]].push_back(std::atof(fields[1].c_str()));
            }
        }
        std::fprintf(stderr, "round %d of %d done\n", round + 1, options.rounds);
    }
    if (case_order.empty()) {
        for (const Case& c : benchmark.cases) {
            if (std::regex_search(c.name, std::regex(options.cases))) case_order.push_back(c.name);
        }
    }

    for (const Peer& peer : peers) {
        if (!failed[peer.name])
            std::printf("  %-16s %s\n", peer.name.c_str(), descriptions[peer.name].c_str());
    }
    const char* unit = benchmark.metric == Metric::GflopsPerSecond ? "GFLOP/s" : "ns/element";
    std::printf("\nmedian %s (ratio: zor's rate over the peer's; above 1 means zor is faster)\n%-28s", unit,
                "case");
    for (const Peer& peer : peers) {
        if (!failed[peer.name]) std::printf(" %16s", peer.name.c_str());
    }
    std::printf("\n");
    std::ofstream csv;
    if (!options.csv.empty()) {
        csv.open(options.csv);
        csv << "case,work";
        for (const Peer& peer : peers) {
            if (!failed[peer.name]) csv << "," << peer.name;
        }
        csv << "\n";
    }
    for (const std::string& name : case_order) {
        const Case* c = nullptr;
        for (const Case& candidate : benchmark.cases) {
            if (candidate.name == name) c = &candidate;
        }
        if (c == nullptr) continue;
        std::printf("%-28s", name.c_str());
        if (csv.is_open()) csv << name << "," << c->work;
        const auto& zor_times = seconds["zor"][name];
        const double zor_seconds = zor_times.empty() ? 0 : median(zor_times);
        for (const Peer& peer : peers) {
            if (failed[peer.name]) continue;
            const auto& times = seconds[peer.name][name];
            if (times.empty() || median(times) < 0) {
                std::printf(" %16s", "-");
                if (csv.is_open()) csv << ",";
                continue;
            }
            const double s = median(times);
            const double value = rate(benchmark.metric, *c, s);
            char cell[64];
            if (peer.name == "zor" || zor_seconds <= 0) {
                std::snprintf(cell, sizeof cell, "%.3g", value);
            } else {
                std::snprintf(cell, sizeof cell, "%.3g (%.2f)", value, s / zor_seconds);
            }
            std::printf(" %16s", cell);
            if (csv.is_open()) csv << "," << value;
        }
        std::printf("\n");
        if (csv.is_open()) csv << "\n";
    }
    return 0;
}

}  // namespace bench
