#include "interface/lapack_frame.hpp"

#include <cstring>

#include "lapack/tuning/tuning.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"
#include "service/messages.hpp"

namespace zor::fortran {

LapackCall::~LapackCall() {
    for (int i = 0; i < count_; ++i) zor_deallocate(copies_[i].wide);
}

zint* LapackCall::array(zor_int* caller, zint entries, Transfer transfer, zint count) {
    if (checked_ != 0) return nullptr;
    if (count_ == kMaxArrays) {
        failed_ = true;
        return nullptr;
    }
    if (entries < 1) entries = 1;
    if (count > entries) count = entries;
    if (count < 0 || transfer == Transfer::None) count = 0;
    if (transfer == Transfer::FirstOut) count = 1;
    auto* wide = static_cast<zint*>(
        static_cast<std::uint64_t>(entries) > UINT64_MAX / sizeof(zint)
            ? nullptr
            : zor_allocate(static_cast<std::uint64_t>(entries) * sizeof(zint), kWorkAlignment));
    if (wide == nullptr) {
        failed_ = true;
        return nullptr;
    }
    copies_[count_++] = {caller, wide, transfer, count};
    if (transfer == Transfer::In || transfer == Transfer::InOut) {
        for (zint i = 0; i < count; ++i) wide[i] = caller[i];
    } else if (transfer == Transfer::Pivots) {
        for (zint i = 0; i < count; ++i) wide[i] = 0;
    }
    return wide;
}

bool LapackCall::start() {
    if (failed_) {
        const std::int32_t code = 1089;
        xerbla(name_, &code, static_cast<int>(std::strlen(name_)));
        *info_ = -1023;
        return false;
    }
    register_default_handlers();
    return true;
}

void LapackCall::finish(zint info) {
    if (info >= 0) {
        for (int i = 0; i < count_; ++i) {
            const Copy& copy = copies_[i];
            if (copy.transfer == Transfer::Out || copy.transfer == Transfer::InOut ||
                copy.transfer == Transfer::FirstOut) {
                for (zint j = 0; j < copy.count; ++j) copy.caller[j] = narrow(copy.wide[j]);
            } else if (copy.transfer == Transfer::Pivots) {
                for (zint j = 0; j < copy.count; ++j) {
                    if (copy.wide[j] != 0) copy.caller[j] = narrow(copy.wide[j]);
                }
            }
        }
    }
    *info_ = narrow(info);
}

zint dgelsd_iwork_entries(const zint& m, const zint& n) {
    const zint smallest = ilaenv(9, "DGELSD", " ", 0, 0, 0, 0) + 1;
    const double ratio = static_cast<double>(n) / static_cast<double>(smallest);
    zint levels = 1;
    if (ratio > 2.0) {
        levels = 2;
        for (double power = 4.0; power < ratio; power *= 2.0) ++levels;
    }
    const zint min_mn = m < n ? m : n;
    const __int128 entries = static_cast<__int128>(3 * levels + 14) * min_mn;
    if (entries < 1) return 1;
    return entries > INT64_MAX ? INT64_MAX : static_cast<zint>(entries);
}

}  // namespace zor::fortran
