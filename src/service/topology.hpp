#pragma once
// The thread-count settings and the processor topology. The library computes with one thread,
// but it reads the usual settings and measures the cores per package once, for the tuning
// function. Parsing and counting are pure functions; topology_cores_per_package does the real
// work once per process.

#include <cstdint>

namespace zor {

// An environment value as the platform's lookup gave it: the text and the lookup's result (0:
// unset or empty; a result that does not fit the buffer leaves the text empty).
struct EnvText {
    const char* text;
    std::uint32_t length;
};

// The domains of "ZOR_DOMAIN_NUM_THREADS", in the order of kDomainKeywords.
enum ThreadDomain : int { kDomainAll = 0, kDomainBlas = 1, kDomainLapack = 2, kDomainCount = 3 };
extern const char* const kDomainKeywords[kDomainCount];  // "ZOR_ALL", "ZOR_BLAS", "ZOR_LAPACK"

struct ThreadSettings {
    std::int32_t requested_threads = -1;  // ZOR_NUM_THREADS, else ZOR_ALL, else OMP_NUM_THREADS
    std::int32_t dynamic = -1;            // 1 unless ZOR_DYNAMIC says FALSE
    std::int32_t omp_threads = -1;        // OMP_NUM_THREADS
    std::int32_t domain_threads[kDomainCount] = {-1, -1, -1};
};

// A thread count in the digit-only manner: all digits -> its value when above 0 (saturated at
// 2^31 - 1), otherwise nothing; any other character -> 1. -1 means nothing to keep.
std::int32_t parse_thread_count(EnvText value);
// "ZOR_DOMAIN_NUM_THREADS" into `counts` (entries not named stay as they are). Returns false at
// the first malformed pair, keeping the pairs before it.
bool parse_domain_threads(EnvText value, std::int32_t counts[kDomainCount]);
// "ZOR_DYNAMIC": 0 when the text, after leading blanks and quotes, begins with FALSE or false.
std::int32_t parse_dynamic(EnvText value);
ThreadSettings decide_thread_settings(EnvText num_threads, EnvText domain_num_threads, EnvText dynamic,
                                      EnvText omp_num_threads);

// Logical processors and cores of one package, from CPUID.
struct PackageLayout {
    std::int32_t logical_per_package;
    std::int32_t cores_per_package;
};
// The counts of leaf 1 (EBX bits 16-23, with EDX bit 28) and leaf 4 (EAX bits 26-31, plus 1) for
// the designated vendor; 1 and 1 for any other.
PackageLayout decide_package_layout(bool designated_vendor, std::uint32_t max_leaf, std::uint32_t leaf1_ebx,
                                    std::uint32_t leaf1_edx, std::uint32_t leaf4_eax);
// Bits needed for `count` identifiers: 0 for 1, else the highest set bit of count - 1 (as a 16-bit
// value) plus one.
int mask_width(std::int32_t count);

struct Topology {
    std::int32_t logical = 1;
    std::int32_t cores = -1;
    std::int32_t packages = -1;
    std::int32_t cores_per_package = -1;
    std::int32_t shared_cores = -1;
};

// Counts cores and packages over the initial APIC identifiers of the processors seen. False when
// there were none.
bool count_topology(const std::uint8_t* apic_ids, int count, PackageLayout layout, Topology* topology);

// What the measurement needs of the system; tests pass fakes.
struct TopologyProbe {
    bool (*affinity_masks)(std::uint64_t* process_mask, std::uint64_t* system_mask);
    bool (*pin_current_thread)(std::uint64_t mask);
    void (*yield_thread)();
    std::uint32_t (*initial_apic_id)();
};
// Pins the calling thread to each processor of the system mask in turn, reads its APIC identifier
// and restores the process mask. Gives up (false, nothing measured) when the process mask differs
// from the system mask.
bool measure_topology(const TopologyProbe& probe, PackageLayout layout, Topology* topology);

// The cores per package, -1 when the topology could not be measured. The first call parses the
// settings and measures the topology; later calls return the stored value.
std::int32_t topology_cores_per_package();
// What the first call stored (the settings and the topology as far as measured).
ThreadSettings thread_settings();
Topology measured_topology();

}  // namespace zor
