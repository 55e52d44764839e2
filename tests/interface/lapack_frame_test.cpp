// The LAPACK entry frame: 64-bit copies of the caller's arrays in each direction, the 32-bit
// info, the allocation failure path (message 1089, info -1023) with an allocator that fails on
// demand, the handler registration (first registration wins), and the dgelsd workspace size.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "interface/lapack_frame.hpp"
#include "service/handlers.hpp"
#include "service/memory.hpp"
#include "service/messages.hpp"
#include "support/counting_allocator.hpp"
#include "support/process.hpp"
#include "zor/zor_lapack.h"

namespace zor {
namespace {

using namespace fortran;
using test::AllocatorScope;

constexpr zor_int kUntouched = 0x7EADBEEF;

// A test export: one array of n entries with the given transfer. Its internal routine sees the
// 64-bit copy: it records what it was given, and writes value(i) into every entry.
struct FakeRoutine {
    std::vector<zint> seen;
    bool ran = false;
    zint info = 0;
    // What it writes: high bits that the caller's 32-bit copy must drop.
    zint (*value)(zint i) = [](zint i) { return (zint{7} << 32) + 1000 * i - 1; };
};

void fake_export(FakeRoutine& routine, const zor_int* n, zor_int* array, Transfer transfer, zor_int* info) {
    LapackCall call("DFAKE", info, 0);
    const zint n_ = widen(n);
    zint* wide = call.array(array, n_, transfer, n_);
    call.run([&](zint& info_) {
        routine.ran = true;
        if (wide != nullptr) {
            routine.seen.assign(wide, wide + (n_ > 0 ? n_ : 0));
            for (zint i = 0; i < (n_ > 0 ? n_ : 1); ++i) wide[i] = routine.value(i);
        }
        info_ = routine.info;
    });
}

// The caller's array: n entries and two more that must never change.
std::vector<zor_int> caller_array(int n) {
    std::vector<zor_int> a(n + 2, kUntouched);
    for (int i = 0; i < n; ++i) a[i] = -3 - i;
    return a;
}

TEST(LapackFrame, EachTransferTouchesOnlyWhatItSays) {
    const struct {
        Transfer transfer;
        std::vector<zor_int> after;
    } cases[] = {
        {Transfer::None, {-3, INT32_MIN, -5, kUntouched, kUntouched}},
        {Transfer::In, {-3, INT32_MIN, -5, kUntouched, kUntouched}},
        {Transfer::Out, {-1, 999, 1999, kUntouched, kUntouched}},
        {Transfer::InOut, {-1, 999, 1999, kUntouched, kUntouched}},
        {Transfer::FirstOut, {-1, INT32_MIN, -5, kUntouched, kUntouched}},
        {Transfer::Pivots, {-1, 999, 1999, kUntouched, kUntouched}},
    };
    for (const auto& c : cases) {
        FakeRoutine routine;
        std::vector<zor_int> a = caller_array(3);
        a[1] = INT32_MIN;
        const zor_int n = 3;
        zor_int info = 99;
        fake_export(routine, &n, a.data(), c.transfer, &info);
        if (c.transfer == Transfer::In || c.transfer == Transfer::InOut) {
            EXPECT_EQ(routine.seen, (std::vector<zint>{-3, INT32_MIN, -5}));  // widened with their sign
        }
        if (c.transfer == Transfer::Pivots) {
            EXPECT_EQ(routine.seen, (std::vector<zint>{0, 0, 0}));  // nothing of the caller read
        }
        EXPECT_EQ(a, c.after) << static_cast<int>(c.transfer);
        EXPECT_EQ(info, 0);
    }
}

// Pivots a routine did not write (stopped by the progress handler) keep the caller's values.
TEST(LapackFrame, PivotsNotWrittenKeepTheCallersValues) {
    FakeRoutine routine;
    routine.value = [](zint i) { return i == 1 ? zint{0} : i + 1; };
    std::vector<zor_int> a = caller_array(3);
    const zor_int n = 3;
    zor_int info = 99;
    fake_export(routine, &n, a.data(), Transfer::Pivots, &info);
    EXPECT_EQ(a, (std::vector<zor_int>{1, -4, 3, kUntouched, kUntouched}));
}

// A failed argument check ends the call before any copy: the caller's array is neither read nor
// written, nothing is allocated, the routine does not run, and info is the check's.
TEST(LapackFrame, AFailedCheckCopiesNothingAndRunsNothing) {
    zor_int info = 99;
    LapackCall call("DFAKE", &info, -4);
    EXPECT_EQ(call.array(nullptr, INT64_MAX, Transfer::In, INT64_MAX), nullptr);
    bool ran = false;
    call.run([&](zint&) { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_EQ(info, -4);
}

// The info keeps its low 32 bits; an argument error (an internal info below 0) leaves the caller's
// arrays alone.
TEST(LapackFrame, InfoKeepsItsLow32BitsAndAnErrorCopiesNothingBack) {
    const struct {
        zint internal;
        zor_int stored;
    } cases[] = {{(zint{1} << 32) + 3, 3}, {-(zint{1} << 32) - 1, -1}, {zint{1} << 31, INT32_MIN}, {-2, -2}};
    for (const auto& c : cases) {
        FakeRoutine routine;
        routine.info = c.internal;
        std::vector<zor_int> a = caller_array(3);
        const zor_int n = 3;
        zor_int info = 99;
        fake_export(routine, &n, a.data(), Transfer::InOut, &info);
        EXPECT_EQ(info, c.stored) << c.internal;
        EXPECT_TRUE(c.internal >= 0 || a == caller_array(3)) << "copied back after an error";
    }
}

TEST(LapackFrame, EmptyAndNegativeSizesStillGetOneEntry) {
    for (zor_int n : {0, -7}) {
        FakeRoutine routine;
        zor_int dummy = kUntouched;
        zor_int info = 99;
        fake_export(routine, &n, &dummy, Transfer::InOut, &info);
        EXPECT_TRUE(routine.ran);
        EXPECT_TRUE(routine.seen.empty());
        EXPECT_EQ(dummy, kUntouched);  // nothing transferred either way
    }
}

TEST(LapackFrame, CopiesGoBackToTheCache) {
    free_all_buffers();
    for (int round = 0; round < 3; ++round) {
        FakeRoutine routine;
        std::vector<zor_int> a = caller_array(100);
        const zor_int n = 100;
        zor_int info = 99;
        fake_export(routine, &n, a.data(), Transfer::Out, &info);
        EXPECT_EQ(memory_manager_state().blocks_in_use, 0);
    }
    free_all_buffers();
}

// Allocation failures and handler slots are per process: each case runs in a child.

TEST(LapackFrameFailure, NoMemoryForACopyReports1089AndStoresMinus1023) {
    const std::string out = test::child_output(test::fresh_directory("frame-no-memory"), [] {
        AllocatorScope allocator;
        AllocatorScope::fail_next(2);  // the thread's record, then the plain path
        FakeRoutine routine;
        std::vector<zor_int> a = caller_array(3);
        const zor_int n = 3;
        zor_int info = 99;
        fake_export(routine, &n, a.data(), Transfer::InOut, &info);
        if (routine.ran || info != -1023 || a != caller_array(3)) std::exit(1);
        // The failure is reported before the handlers are registered.
        if (error_handler() != nullptr || progress_handler() != nullptr) std::exit(2);
        std::exit(0);
    });
    EXPECT_EQ(out, "\nZOR INTERNAL ERROR: Not enough work memory in function DFAKE\n");
}

TEST(LapackFrameFailure, ACopyTooLargeToAddressFailsTheSameWay) {
    const std::string out = test::child_output(test::fresh_directory("frame-too-large"), [] {
        zor_int info = 99;
        LapackCall call("ZGESDD", &info, 0);
        zor_int dummy = 0;
        if (call.array(&dummy, INT64_MAX, Transfer::None, 0) != nullptr) std::exit(1);
        call.run([](zint&) { std::exit(2); });
        std::exit(info == -1023 ? 0 : 3);
    });
    EXPECT_EQ(out, "\nZOR INTERNAL ERROR: Not enough work memory in function ZGESDD\n");
}

TEST(LapackFrameFailure, AFailedSecondCopyReleasesTheFirst) {
    test::child_output(test::fresh_directory("frame-second"), [] {
        free_all_buffers();
        {
            zor_int info = 0;
            LapackCall call("DGGSVD", &info, 0);
            zor_int first[4] = {};
            zor_int second[4] = {};
            if (call.array(first, 4, Transfer::In, 4) == nullptr) std::exit(1);
            if (call.array(second, INT64_MAX / 2, Transfer::Out, 4) != nullptr) std::exit(2);
            call.run([](zint&) { std::exit(3); });
        }
        std::exit(memory_manager_state().blocks_in_use);
    });
}

std::string g_reported;

void callers_handler(const char* name, const void* info, int name_length) {
    std::int32_t code;
    std::memcpy(&code, info, sizeof code);
    g_reported = std::string(name, name_length) + ":" + std::to_string(code);
}

int callers_progress(const std::int32_t*, const std::int32_t*, const char*, int) {
    return 1;
}

TEST(LapackFrameHandlers, ACallersHandlerRegisteredBeforeTheFirstCallStays) {
    EXPECT_EXIT(
        {
            register_error_handler(&callers_handler);
            register_progress_handler(&callers_progress);
            const double x = 3.0;
            const double y = 4.0;
            if (::dlapy2(&x, &y) != 5.0) std::exit(1);
            FakeRoutine routine;
            const zor_int n = 1;
            zor_int a = 0;
            zor_int info = 0;
            fake_export(routine, &n, &a, Transfer::Out, &info);
            if (error_handler() != &callers_handler) std::exit(2);
            if (progress_handler() != &callers_progress) std::exit(3);
            report_error("DGETRF", -4, 6);
            std::exit(g_reported == "DGETRF:-4" ? 0 : 4);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(LapackFrameHandlers, TheFirstCallRegistersTheDefaults) {
    EXPECT_EXIT(
        {
            if (error_handler() != nullptr) std::exit(1);
            FakeRoutine routine;
            const zor_int n = 1;
            zor_int a = 0;
            zor_int info = 0;
            fake_export(routine, &n, &a, Transfer::Out, &info);
            if (error_handler() != &xerbla || progress_handler() != &default_progress_handler) std::exit(2);
            // A later registration does not replace them.
            if (register_error_handler(&callers_handler)) std::exit(3);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            const double x = 1.0;
            const double y = 1.0;
            ::dlapy2(&x, &y);
            std::exit(error_handler() == &xerbla && progress_handler() == &default_progress_handler ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(DgelsdWorkspace, LevelsOfTheTreeOverTheColumns) {
    // 26 columns per leaf (query 9 answers 25): nlvl is 1 up to 52 columns, then the smallest k with
    // 2^k >= n / 26; the entries are (3 nlvl + 14) min(m, n), at least one.
    const struct {
        zint m, n, entries;
    } cases[] = {
        {100, 0, 1},          {-5, 10, 1},         {100, 52, 17 * 52},      {100, 53, 20 * 53},
        {100, 104, 20 * 100}, {10, 1000, 32 * 10}, {5000, 3329, 38 * 3329},
    };
    for (const auto& c : cases) EXPECT_EQ(dgelsd_iwork_entries(c.m, c.n), c.entries) << c.m << " x " << c.n;
    EXPECT_EQ(dgelsd_iwork_entries(INT64_MAX, INT64_MAX), INT64_MAX);
}

}  // namespace
}  // namespace zor
