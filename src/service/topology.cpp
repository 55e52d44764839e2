#include "service/topology.hpp"

#include <atomic>
#include <cstring>

#include "service/cpu.hpp"
#include "service/memory.hpp"
#include "service/platform.hpp"
#include "service/spin_lock.hpp"

namespace zor {

const char* const kDomainKeywords[kDomainCount] = {"ZOR_ALL", "ZOR_BLAS", "ZOR_LAPACK"};

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// The digits at `p` as a count (saturated), advancing `p` past them.
std::int32_t read_digits(const char*& p) {
    std::int64_t value = 0;
    for (; is_digit(*p); ++p) {
        value = value * 10 + (*p - '0');
        if (value > INT32_MAX) value = INT32_MAX;
    }
    return static_cast<std::int32_t>(value);
}

char upper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}

// The domain whose keyword starts at `p` (any case), advancing `p` past it; -1 for none.
int read_domain(const char*& p) {
    for (int domain = 0; domain < kDomainCount; ++domain) {
        const char* keyword = kDomainKeywords[domain];
        const std::size_t length = std::strlen(keyword);
        std::size_t i = 0;
        while (i < length && upper(p[i]) == keyword[i]) ++i;
        if (i == length && !(upper(p[i]) >= 'A' && upper(p[i]) <= 'Z') && p[i] != '_') {
            p += length;
            return domain;
        }
    }
    return -1;
}

}  // namespace

std::int32_t parse_thread_count(EnvText value) {
    if (value.length == 0) return -1;
    const char* p = value.text;
    const std::int32_t count = read_digits(p);
    if (*p != '\0') return 1;
    return count > 0 ? count : -1;
}

bool parse_domain_threads(EnvText value, std::int32_t counts[kDomainCount]) {
    if (value.length == 0) return true;
    const char* p = value.text;
    for (;;) {
        while (is_blank(*p) || *p == ',' || *p == ';') ++p;
        if (*p == '\0') return true;
        const int domain = read_domain(p);
        if (domain < 0) return false;
        const char* after_keyword = p;
        while (is_blank(*p)) ++p;
        if (*p == '=') ++p;
        while (is_blank(*p)) ++p;
        if (p == after_keyword || !is_digit(*p)) return false;
        const std::int32_t count = read_digits(p);
        if (*p != '\0' && !is_blank(*p) && *p != ',' && *p != ';') return false;
        if (count > 0) counts[domain] = count;
    }
}

std::int32_t parse_dynamic(EnvText value) {
    if (value.length == 0) return 1;
    const char* p = value.text;
    while (is_blank(*p) || *p == '"' || *p == '\'') ++p;
    return (std::strncmp(p, "FALSE", 5) == 0 || std::strncmp(p, "false", 5) == 0) ? 0 : 1;
}

ThreadSettings decide_thread_settings(EnvText num_threads, EnvText domain_num_threads, EnvText dynamic,
                                      EnvText omp_num_threads) {
    ThreadSettings settings;
    settings.requested_threads = parse_thread_count(num_threads);
    parse_domain_threads(domain_num_threads, settings.domain_threads);
    if (settings.requested_threads == -1) settings.requested_threads = settings.domain_threads[kDomainAll];
    settings.dynamic = parse_dynamic(dynamic);
    settings.omp_threads = parse_thread_count(omp_num_threads);
    if (settings.requested_threads == -1) settings.requested_threads = settings.omp_threads;
    return settings;
}

PackageLayout decide_package_layout(bool designated_vendor, std::uint32_t max_leaf, std::uint32_t leaf1_ebx,
                                    std::uint32_t leaf1_edx, std::uint32_t leaf4_eax) {
    constexpr std::uint32_t kEdxHyperThreading = 1u << 28;
    PackageLayout layout{1, 1};
    if (!designated_vendor || !(leaf1_edx & kEdxHyperThreading)) return layout;
    layout.logical_per_package = static_cast<std::int32_t>((leaf1_ebx >> 16) & 0xFF);
    if (max_leaf >= 4) layout.cores_per_package = static_cast<std::int32_t>((leaf4_eax >> 26) & 0x3F) + 1;
    return layout;
}

int mask_width(std::int32_t count) {
    const auto value = static_cast<std::uint16_t>(count - 1);
    int width = 0;
    while (width < 16 && (value >> width) != 0) ++width;
    return width;
}

bool count_topology(const std::uint8_t* apic_ids, int count, PackageLayout layout, Topology* topology) {
    if (count < 1) return false;
    const std::int32_t threads_per_core =
        layout.cores_per_package > 0 ? layout.logical_per_package / layout.cores_per_package : 0;
    const int smt_width = mask_width(threads_per_core);
    const int core_width = mask_width(layout.cores_per_package);
    const int package_width = mask_width(layout.logical_per_package);
    const std::uint64_t core_mask = ((std::uint64_t{1} << core_width) - 1) << smt_width;
    const std::uint64_t package_mask = ~((std::uint64_t{1} << package_width) - 1);

    // Identifiers are parts of 8-bit APIC identifiers: sets of 256 bits count the distinct ones.
    std::uint64_t cores_seen[4] = {};
    std::uint64_t packages_seen[4] = {};
    int cores = 0;
    int packages = 0;
    for (int i = 0; i < count; ++i) {
        const auto core = static_cast<std::uint8_t>(apic_ids[i] & core_mask);
        const auto package = static_cast<std::uint8_t>(apic_ids[i] & package_mask);
        const std::uint8_t key = package | core;
        if (!(cores_seen[key >> 6] & (std::uint64_t{1} << (key & 63)))) {
            cores_seen[key >> 6] |= std::uint64_t{1} << (key & 63);
            ++cores;
        }
        if (!(packages_seen[package >> 6] & (std::uint64_t{1} << (package & 63)))) {
            packages_seen[package >> 6] |= std::uint64_t{1} << (package & 63);
            ++packages;
        }
    }
    topology->logical = count;
    topology->cores = cores;
    topology->packages = packages >= 1 ? packages : cores;
    topology->cores_per_package = topology->cores / topology->packages;
    topology->shared_cores = cores != count ? 1 : 0;
    return true;
}

bool measure_topology(const TopologyProbe& probe, PackageLayout layout, Topology* topology) {
    std::uint64_t process_mask = 0;
    std::uint64_t system_mask = 0;
    if (!probe.affinity_masks(&process_mask, &system_mask) || process_mask != system_mask) return false;
    int width = 0;
    while (width < 64 && (system_mask >> width) != 0) ++width;
    WorkArea<std::uint8_t> apic_ids(static_cast<std::size_t>(width));
    if (!apic_ids) return false;

    int seen = 0;
    for (int i = 0; i < 64; ++i) {
        const std::uint64_t processor = std::uint64_t{1} << i;
        if (processor > system_mask) break;
        if (!(system_mask & processor) || !probe.pin_current_thread(processor)) continue;
        // Let the scheduler move the thread before CPUID is asked where it runs.
        probe.yield_thread();
        apic_ids[seen++] = static_cast<std::uint8_t>(probe.initial_apic_id());
    }
    probe.pin_current_thread(process_mask);
    probe.yield_thread();
    return count_topology(apic_ids.get(), seen, layout, topology);
}

namespace {

std::atomic<std::int32_t> g_settings_pending{1};
std::atomic<std::int32_t> g_topology_done{0};
ThreadSettings g_settings;  // written under g_service_lock before g_settings_pending clears
std::atomic<std::int32_t> g_logical{1};
std::atomic<std::int32_t> g_cores{-1};
std::atomic<std::int32_t> g_packages{-1};
std::atomic<std::int32_t> g_cores_per_package{-1};
std::atomic<std::int32_t> g_shared_cores{-1};

std::uint32_t initial_apic_id() {
    return cpuid(1).ebx >> 24;
}

PackageLayout this_package_layout() {
    const ProcessorFacts facts = read_processor_facts();
    const bool designated = std::strncmp(facts.vendor, kDesignatedVendor, 12) == 0;
    const CpuidResult leaf1 = cpuid(1);
    const std::uint32_t leaf4_eax = facts.max_leaf >= 4 ? cpuid(4, 0).eax : 0;
    return decide_package_layout(designated, facts.max_leaf, leaf1.ebx, leaf1.edx, leaf4_eax);
}

void parse_settings() {
    char values[4][256];
    const char* names[4] = {"ZOR_NUM_THREADS", "ZOR_DOMAIN_NUM_THREADS", "ZOR_DYNAMIC", "OMP_NUM_THREADS"};
    EnvText texts[4];
    for (int i = 0; i < 4; ++i)
        texts[i] = {values[i], platform::get_env(names[i], values[i], sizeof values[i])};
    g_settings = decide_thread_settings(texts[0], texts[1], texts[2], texts[3]);
}

}  // namespace

std::int32_t topology_cores_per_package() {
    if (g_settings_pending.load(std::memory_order_acquire) == 1) {
        {
            SpinLockGuard guard(g_service_lock);
            if (g_settings_pending.load(std::memory_order_relaxed) == 1) {
                parse_settings();
                g_settings_pending.store(0, std::memory_order_release);
            }
        }
        if (g_topology_done.load(std::memory_order_acquire) == 0) {
            static constexpr TopologyProbe kProbe{&platform::affinity_masks, &platform::pin_current_thread,
                                                  &platform::yield_thread, &initial_apic_id};
            Topology topology;
            if (measure_topology(kProbe, this_package_layout(), &topology)) {
                SpinLockGuard guard(g_service_lock);
                if (g_topology_done.load(std::memory_order_relaxed) == 0) {
                    g_logical.store(topology.logical, std::memory_order_relaxed);
                    g_cores.store(topology.cores, std::memory_order_relaxed);
                    g_packages.store(topology.packages, std::memory_order_relaxed);
                    g_cores_per_package.store(topology.cores_per_package, std::memory_order_relaxed);
                    g_shared_cores.store(topology.shared_cores, std::memory_order_relaxed);
                    g_topology_done.store(1, std::memory_order_release);
                }
            }
        }
    }
    return g_cores_per_package.load(std::memory_order_acquire);
}

ThreadSettings thread_settings() {
    SpinLockGuard guard(g_service_lock);
    return g_settings;
}

Topology measured_topology() {
    Topology topology;
    topology.logical = g_logical.load(std::memory_order_acquire);
    topology.cores = g_cores.load(std::memory_order_acquire);
    topology.packages = g_packages.load(std::memory_order_acquire);
    topology.cores_per_package = g_cores_per_package.load(std::memory_order_acquire);
    topology.shared_cores = g_shared_cores.load(std::memory_order_acquire);
    return topology;
}

}  // namespace zor
