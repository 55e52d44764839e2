#pragma once
// The block size of the blocked reflector routines (the QR and LQ factorizations, the generation
// and application of their Q) for the workspace the caller gave: one function answers both the
// workspace query and the carving of the work array, so the two cannot disagree.

#include <cstdint>

#include "lapack/lapack.hpp"

namespace zor {

// No limit on NB beyond the tuning function's answer.
inline constexpr zint kAnyBlock = INT64_MAX;

struct ReflectorBlocking {
    zint nb;         // the block size in force; the routine runs blocked only when `blocked`
    bool blocked;    // nb >= NBMIN, nb < steps and the crossover below steps
    zint crossover;  // NX: the last `crossover` steps run unblocked (0 when blocked is false)
    zint optimal;    // the workspace query's answer: ldwork · NB + extra (at least 1)
};

// NB = min(query 1, max_nb) for `name` with `opts` and the dimensions n1..n3; the crossover from
// query 3 when `with_crossover` (only asked when 1 < NB < steps). The blocked code needs ldwork ·
// nb + extra elements of work; with less than that for the optimal NB, nb shrinks to what fits and
// the code runs unblocked when it falls below NBMIN (query 2, at least 2).
inline ReflectorBlocking plan_reflector_blocks(const char* name, const char* opts, zint n1, zint n2, zint n3,
                                               zint steps, zint ldwork, zint extra, zint lwork, zint max_nb,
                                               bool with_crossover) {
    ReflectorBlocking plan{};
    plan.nb = min_of(ilaenv(1, name, opts, n1, n2, n3, -1), max_nb);
    plan.optimal = max_of(1, ldwork * plan.nb + extra);
    zint nbmin = 2;
    if (plan.nb > 1 && plan.nb < steps) {
        if (with_crossover) plan.crossover = max_of(0, ilaenv(3, name, opts, n1, n2, n3, -1));
        if (plan.crossover < steps && lwork != -1 && lwork < ldwork * plan.nb + extra) {
            plan.nb = ldwork > 0 ? (lwork - extra) / ldwork : 0;
            nbmin = max_of(2, ilaenv(2, name, opts, n1, n2, n3, -1));
        }
    }
    plan.blocked = plan.nb >= nbmin && plan.nb < steps && plan.crossover < steps;
    if (!plan.blocked) plan.crossover = 0;
    return plan;
}

}  // namespace zor
