#pragma once
// The frame of every Fortran-style LAPACK export. An export widens its integer scalars, starts the
// call with the routine's argument check (so an argument error is reported before any array of the
// caller is read or written and before anything is sized from the bad dimensions), asks the call
// for 64-bit copies of its integer and logical arrays, and runs the internal routine through the
// call, which reports a failed copy, registers the default handlers, hands the routine a 64-bit
// info and narrows the results back (in a file that says `using namespace zor::fortran;`):
//
//     template <class T>
//     void getrf_export(const char* name, const zor_int* m, const zor_int* n, T* a, const zor_int* lda,
//                       zor_int* ipiv, zor_int* info) {
//         const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda), k = min_of(m_, n_);
//         LapackCall call(name, info, zor::check_getrf<T>(m_, n_, lda_));
//         zint* ipiv_ = call.array(ipiv, k, Transfer::Pivots, k);
//         call.run([&](zint& i) { zor::getrf(m_, n_, a, lda_, ipiv_, i); });
//     }
//
// and the named exports are one line each: getrf_export("DGETRF", m, n, a, lda, ipiv, info).
// Copies wanted only on some paths (not in a workspace query, say) are simply not asked for; the
// internal routine then gets null.

#include "interface/integers.hpp"
#include "service/types.hpp"
#include "zor/zor_config.h"

namespace zor::fortran {

// What happens to the caller's array around the internal call.
enum class Transfer {
    None,      // workspace of the internal routine: neither read nor written back
    In,        // widened in before the call
    Out,       // narrowed back after the call
    InOut,     // both
    FirstOut,  // only the first entry narrowed back (the size a workspace query answers)
    // Pivot indices the routine writes (one-based, so never 0): nothing is read from the caller,
    // the copy starts as zeros and only the entries the routine wrote are narrowed back, so that
    // entries a stop asked by the progress handler never reached keep the caller's values.
    Pivots,
};

// The conditions under which exports copy an array only on some paths: not in a workspace query
// (lwork = -1); bwork only when the eigenvalues are sorted (SORT neither "N" nor "n"); select only
// when some vectors are selected (HOWMNY none of "A", "a", "B", "b"). Letters are compared
// directly, not with lsame.
inline bool workspace_query(zint lwork) {
    return lwork == -1;
}
inline bool sorts(char sort) {
    return sort != 'N' && sort != 'n';
}
inline bool selects_vectors(char howmny) {
    return howmny != 'A' && howmny != 'a' && howmny != 'B' && howmny != 'b';
}

class LapackCall {
  public:
    static constexpr int kMaxArrays = 4;

    // `name`: the routine's upper-case name without padding ("DGESV"); `info`: the caller's;
    // `checked`: the answer of the routine's argument check, run before the call is made (0, or -k
    // after the check has reported parameter k). After an argument error the call does nothing
    // but store it: no copy is made and the routine does not run.
    LapackCall(const char* name, zor_int* info, zint checked) : name_(name), info_(info), checked_(checked) {}
    ~LapackCall();
    LapackCall(const LapackCall&) = delete;
    LapackCall& operator=(const LapackCall&) = delete;

    // A 64-bit copy of the caller's array: max(entries, 1) entries from the memory manager, of
    // which the first `count` (at most `entries`) are transferred as `transfer` says. Null when no
    // memory was left (run() then reports it) or after an argument error.
    zint* array(zor_int* caller, zint entries, Transfer transfer, zint count);

    // Runs `routine(info)` with a 64-bit info, unless a copy could not be had: then message 1089 is
    // printed with the routine's name and the caller's info is -1023. Before the routine the default
    // error and progress handlers are registered (unless handlers are registered already); after it
    // the arrays are narrowed back (not after an argument error, info < 0, which leaves the caller's
    // arrays as they were) and the low 32 bits of info are stored.
    template <class Routine>
    void run(Routine&& routine) {
        if (checked_ != 0) {
            *info_ = narrow(checked_);
            return;
        }
        if (!start()) return;
        zint info = 0;
        routine(info);
        finish(info);
    }

  private:
    bool start();
    void finish(zint info);

    struct Copy {
        zor_int* caller;
        zint* wide;
        Transfer transfer;
        zint count;
    };

    const char* name_;
    zor_int* info_;
    zint checked_;
    Copy copies_[kMaxArrays] = {};
    int count_ = 0;
    bool failed_ = false;
};

// The integer workspace dgelsd sizes for itself (the caller's iwork is only told its size):
// (3 nlvl + 14) min(m, n) entries, at least 1, where nlvl counts the levels of the
// divide-and-conquer tree over n columns.
zint dgelsd_iwork_entries(const zint& m, const zint& n);

}  // namespace zor::fortran
