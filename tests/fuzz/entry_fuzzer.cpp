// The fuzzer of the entry layer: every CBLAS and Fortran-style LAPACK export of the shared library,
// called with argument lists built from the fuzz input and checked against the published check
// orders (fuzz.hpp; the exports' models in cblas_exports.cpp and lapack_exports.cpp).
//
// With ZOR_FUZZ_EXPORTS naming the build's export list (src/exports/exports.list), it first
// checks that every export but the memory functions has a row in the fuzzer's tables.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

#include "fuzz.hpp"

using namespace zor::fuzz;

namespace {

std::size_t export_count() {
    return cblas_exports().size() + lapack_exports().size();
}

const Export& export_at(std::size_t i) {
    return i < cblas_exports().size() ? cblas_exports()[i] : lapack_exports()[i - cblas_exports().size()];
}

void check_tables_cover(const char* list) {
    std::set<std::string> covered;
    for (std::size_t i = 0; i < export_count(); ++i) covered.insert(export_at(i).name);
    std::ifstream in(list);
    if (!in) {
        std::fprintf(stderr, "zor-fuzz: cannot read the export list %s\n", list);
        std::exit(1);
    }
    std::string kind, name;
    int missing = 0, listed = 0;
    while (in >> kind >> name) {
        if (name.rfind("ZOR_", 0) == 0) continue;  // the memory functions take no argument lists to check
        ++listed;
        if (covered.erase(name) == 0) {
            std::fprintf(stderr, "zor-fuzz: the export %s has no row in the fuzzer's tables\n", name.c_str());
            ++missing;
        }
    }
    for (const std::string& name : covered) {
        std::fprintf(stderr, "zor-fuzz: the fuzzer's tables name %s, which is not exported\n", name.c_str());
        ++missing;
    }
    if (missing != 0) std::exit(1);
    std::fprintf(stderr, "zor-fuzz: the tables cover all %d exports of %s\n", listed, list);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    if (const char* list = std::getenv("ZOR_FUZZ_EXPORTS")) check_tables_cover(list);
    prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t which = (input.byte() << 8 | input.byte()) % export_count();
    const Export& chosen = export_at(which);
    Call call(input, chosen.name);
    chosen.fuzz(call);
    return 0;
}
