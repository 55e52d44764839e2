// zor-info: what the library decides about this machine and how it would run here.

#include <cstdio>
#include <cstring>

#include "blas/dispatch.hpp"
#include "service/cpu.hpp"
#include "service/memory.hpp"
#include "service/messages.hpp"
#include "service/platform.hpp"
#include "service/topology.hpp"

namespace {

void print_row(const char* label, const char* value) {
    std::printf("  %-28s %s\n", label, value);
}

// A thread count as the settings keep it: -1 is "not set".
const char* count_text(std::int32_t count, char* buffer, std::size_t size) {
    if (count < 0) return "not set";
    std::snprintf(buffer, size, "%d", count);
    return buffer;
}

void print_memory_manager() {
    char line[256];
    if (zor::memory_cache_disabled()) {
        print_row("memory manager", "plain (cache disabled by ZOR_DISABLE_FAST_MM or ZOR_MM_DISABLE)");
        return;
    }
    // One block through the cache registers this thread.
    void* block = zor::zor_allocate(4096, zor::kWorkAlignment);
    const zor::MemoryManagerState state = zor::memory_manager_state();
    zor::zor_deallocate(block);
    std::snprintf(line, sizeof line, "per-thread cache of %d blocks, %d of %d threads registered",
                  zor::kCacheSlots, state.registered_threads, zor::kMaxRegisteredThreads);
    print_row("memory manager", line);
}

void print_settings_and_topology() {
    char line[256];
    char a[16], b[16], c[16], d[16];
    const std::int32_t cores_per_package = zor::topology_cores_per_package();
    const zor::ThreadSettings settings = zor::thread_settings();
    std::snprintf(line, sizeof line, "%s (computing with 1 thread)",
                  count_text(settings.requested_threads, a, 16));
    print_row("requested threads", line);
    std::snprintf(line, sizeof line, "ZOR_ALL %s, ZOR_BLAS %s, ZOR_LAPACK %s",
                  count_text(settings.domain_threads[zor::kDomainAll], a, 16),
                  count_text(settings.domain_threads[zor::kDomainBlas], b, 16),
                  count_text(settings.domain_threads[zor::kDomainLapack], c, 16));
    print_row("domain threads", line);
    std::snprintf(line, sizeof line, "dynamic %s, OMP_NUM_THREADS %s", settings.dynamic ? "on" : "off",
                  count_text(settings.omp_threads, d, 16));
    print_row("other settings", line);

    if (cores_per_package < 0) {
        std::uint64_t process = 0, system = 0;
        const bool known = zor::platform::affinity_masks(&process, &system);
        std::snprintf(line, sizeof line, "not measured: %s (process %#llx, system %#llx)",
                      known ? "the process affinity mask differs from the system mask" : "no affinity masks",
                      static_cast<unsigned long long>(process), static_cast<unsigned long long>(system));
        print_row("cores per package", line);
        return;
    }
    const zor::Topology t = zor::measured_topology();
    std::snprintf(line, sizeof line, "%d (%d logical processors, %d cores, %d packages%s)", cores_per_package,
                  t.logical, t.cores, t.packages, t.shared_cores == 1 ? ", cores shared by threads" : "");
    print_row("cores per package", line);
}

}  // namespace

int main() {
    using namespace zor;
    std::printf("zor %s, %s build\n\n", ZOR_VERSION, ZOR_TARGET_NAME);

    const ProcessorFacts facts = read_processor_facts();
    char line[256];
    const bool designated = std::strncmp(facts.vendor, kDesignatedVendor, 12) == 0;
    std::snprintf(line, sizeof line, "%s (%s the designated vendor %s)", facts.vendor,
                  designated ? "is" : "is not", kDesignatedVendor);
    print_row("processor vendor", line);
    const CpuLevel hardware = decide_hardware_level(facts, kDesignatedVendor);
    std::snprintf(line, sizeof line, "%d (%s)%s", static_cast<int>(hardware), cpu_level_name(hardware),
                  designated ? "" : ": other vendors get the SSE2 level");
    print_row("hardware level", line);

    char override_text[32];
    const std::uint32_t override_length =
        platform::get_env("ZOR_DEBUG_CPU_TYPE", override_text, sizeof override_text);
    if (override_length == 0) {
        print_row("ZOR_DEBUG_CPU_TYPE", "not set");
    } else {
        const int parsed = parse_cpu_type_override(override_text, override_length);
        std::snprintf(line, sizeof line, "\"%s\" -> %s", override_text,
                      parsed < 0 ? "ignored" : cpu_level_name(static_cast<CpuLevel>(parsed)));
        print_row("ZOR_DEBUG_CPU_TYPE", line);
    }
    const CpuLevel level = detect_cpu_level();
    std::snprintf(line, sizeof line, "%d (%s)", static_cast<int>(level), cpu_level_name(level));
    print_row("processor level in force", line);
    std::snprintf(line, sizeof line, "%d", detect_cpu_sublevel());
    print_row("sub-level", line);
    print_row("AMD family 10h", is_amd_family_10h() ? "yes" : "no");

    const std::int64_t llc = cache_size(0);
    if (llc > 0) {
        std::snprintf(line, sizeof line, "%lld bytes (%.1f MiB)", static_cast<long long>(llc),
                      llc / 1048576.0);
    } else {
        std::snprintf(line, sizeof line, "not reported by CPUID");
    }
    print_row("last-level cache", line);

    const bool catalog = message_catalog_in_use();
    std::snprintf(line, sizeof line, "%s (%s %lu/%s)", catalog ? "message catalog" : "built-in table",
                  catalog ? "loaded from" : "no catalog at",
                  static_cast<unsigned long>(platform::thread_locale()), platform::kCatalogFileName);
    print_row("message texts", line);

    print_memory_manager();
    print_settings_and_topology();

    double values[37];
    for (int i = 0; i < 37; ++i) values[i] = i + 1;
    const zint n = 37;
    const ProbeResult probe = zor::variant_probe(n, values);
    std::snprintf(line, sizeof line, "%s variant ran (sum %.0f, crc32c %08x)",
                  cpu_level_name(static_cast<CpuLevel>(probe.level)), probe.sum, probe.crc);
    print_row("dispatched probe", line);
    return probe.sum == 703.0 ? 0 : 1;
}
