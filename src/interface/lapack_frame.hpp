#pragma once
// The frame of every Fortran-style LAPACK export. An export widens its integer scalars, asks the
// call for 64-bit copies of its integer and logical arrays, starts the call (which reports a
// failed copy and registers the default handlers), runs the internal routine and finishes with
// its info (in a file that says `using namespace zor::fortran;`):
//
//     ZOR_API void dgetrf(const zor_int* m, const zor_int* n, double* a, const zor_int* lda,
//                         zor_int* ipiv, zor_int* info) {
//         LapackCall call("DGETRF", info);
//         const zint m_ = widen(m), n_ = widen(n), lda_ = widen(lda);
//         const zint k = m_ < n_ ? m_ : n_;
//         zint* ipiv_ = call.array(ipiv, k, Transfer::Out, k);
//         if (!call.start()) return;
//         zint info_ = 0;
//         zor::dgetrf(m_, n_, a, lda_, ipiv_, info_);
//         call.finish(info_);
//     }
//
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

    // `name`: the routine's upper-case name without padding ("DGESV"); `info`: the caller's.
    LapackCall(const char* name, zor_int* info) : name_(name), info_(info) {}
    ~LapackCall();
    LapackCall(const LapackCall&) = delete;
    LapackCall& operator=(const LapackCall&) = delete;

    // A 64-bit copy of the caller's array: max(entries, 1) entries from the memory manager, of
    // which the first `count` (at most `entries`) are transferred as `transfer` says. Null when no
    // memory was left (start() then reports it).
    zint* array(zor_int* caller, zint entries, Transfer transfer, zint count);

    // False when a copy could not be had: message 1089 has been printed with the routine's name and
    // the caller's info is -1023. Otherwise the default error and progress handlers are registered
    // (unless handlers are registered already) and the internal routine may run.
    bool start();

    // Narrows the arrays back (not after an argument error, info < 0, which leaves the caller's
    // arrays as they were) and stores the low 32 bits of info.
    void finish(zint info);

  private:
    struct Copy {
        zor_int* caller;
        zint* wide;
        Transfer transfer;
        zint count;
    };

    const char* name_;
    zor_int* info_;
    Copy copies_[kMaxArrays] = {};
    int count_ = 0;
    bool failed_ = false;
};

// The integer workspace dgelsd sizes for itself (the caller's iwork is only told its size):
// (3 nlvl + 14) min(m, n) entries, at least 1, where nlvl counts the levels of the
// divide-and-conquer tree over n columns.
zint dgelsd_iwork_entries(const zint& m, const zint& n);

}  // namespace zor::fortran
