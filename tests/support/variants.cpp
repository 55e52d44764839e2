#include "support/variants.hpp"

namespace zor::test {

CpuLevel runnable_level() {
    const ProcessorFacts facts = read_processor_facts();
    return decide_hardware_level(facts, facts.vendor);
}

}  // namespace zor::test
