// zor-dispatch-check: run under an emulated processor, checks that the library detects the
// expected level and that the dispatched variant, and every variant below it, executes there.
//
//   zor-dispatch-check <expected level>   exit 0 when the level matches and every variant ran
//   zor-dispatch-check --run <level>      run that level's variants only (to show that a level
//                                         above the processor's faults)

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "blas/dispatch.hpp"
#include "service/cpu.hpp"

namespace {

bool run_variant(zor::CpuLevel level) {
    double x[13];
    for (int i = 0; i < 13; ++i) x[i] = i + 1;
    const zor::zint n = 13;
    const zor::ProbeResult result = zor::variant_probe.variant(level)(n, x);
    const bool ok = result.sum == 91.0 && result.level == static_cast<int>(level);
    std::printf("variant %-7s ran: %s\n", zor::cpu_level_name(level), ok ? "ok" : "WRONG RESULT");
    return ok;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--run") == 0) {
        return run_variant(static_cast<zor::CpuLevel>(std::atoi(argv[2]))) ? 0 : 1;
    }
    if (argc != 2) {
        std::fprintf(stderr, "usage: zor-dispatch-check <expected level> | --run <level>\n");
        return 2;
    }
    const int expected = std::atoi(argv[1]);
    const zor::ProcessorFacts facts = zor::read_processor_facts();
    const zor::CpuLevel level = zor::detect_cpu_level();
    std::printf("vendor %s, designated %s: level %d (%s), expected %d\n", facts.vendor,
                zor::kDesignatedVendor, static_cast<int>(level), zor::cpu_level_name(level), expected);
    bool ok = static_cast<int>(level) == expected;

    double x[5] = {1, 2, 3, 4, 5};
    const zor::zint n = 5;
    const zor::ProbeResult dispatched = zor::variant_probe(n, x);
    std::printf("dispatched variant: %s\n",
                zor::cpu_level_name(static_cast<zor::CpuLevel>(dispatched.level)));
    ok = ok && dispatched.level == static_cast<int>(level) && dispatched.sum == 15.0;
    for (int l = 0; l <= static_cast<int>(level); ++l) ok = run_variant(static_cast<zor::CpuLevel>(l)) && ok;
    std::printf("%s\n", ok ? "PASS" : "FAIL");
    return ok ? 0 : 1;
}
