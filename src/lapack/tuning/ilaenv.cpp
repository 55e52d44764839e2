// ilaenv: a tuned table. Routine names are split as LAPACK names are, a precision letter, the
// matrix type (characters 2 and 3) and the operation (characters 4 to 6), and each piece is packed
// into an integer, so that finding an answer costs integer comparisons only. docs/tuning.md says
// which answers are the library's own and which are the published defaults.

#include <climits>

#include "lapack/tuning/tuning.hpp"
#include "service/cpu.hpp"
#include "service/letters.hpp"

namespace zor {

namespace {

// A name piece of up to three characters packed into an integer, with '*' matching any character.
struct Piece {
    std::uint32_t value;
    std::uint32_t mask;
    bool matches(std::uint32_t packed) const { return (packed & mask) == value; }
};

constexpr std::uint32_t pack(char a, char b, char c) {
    return static_cast<std::uint8_t>(a) | (static_cast<std::uint32_t>(static_cast<std::uint8_t>(b)) << 8) |
           (static_cast<std::uint32_t>(static_cast<std::uint8_t>(c)) << 16);
}

// Not constexpr: calling it while building the table at compile time makes a malformed entry a
// compile-time error.
[[maybe_unused]] void malformed_tuning_entry() {}

consteval Piece piece(const char* text, int length) {
    std::uint32_t value = 0;
    std::uint32_t mask = 0;
    for (int i = 0; i < length; ++i) {
        if (text[i] < '*' || text[i] > 'Z') malformed_tuning_entry();
        if (text[i] == '*') continue;
        value |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(text[i])) << (8 * i);
        mask |= 0xFFu << (8 * i);
    }
    return {value, mask};
}

enum class Precision : std::uint8_t { Any, Real, Complex };

// What a rule reads: the name's precision, the first character of opts (upper-cased) and the
// dimensions.
struct TuningRequest {
    const TuningMachine& machine;
    char letter;  // S, D, C or Z
    bool complex;
    bool single;
    char option;
    zint n1, n2, n3, n4;
};

using Rule = zint (*)(const TuningRequest&);

constexpr int kMaxOperations = 8;

// One answer: for the query, the precision, the type (2 characters) and any of the operations
// (3 characters each, separated by blanks), a constant or a rule.
struct TuningEntry {
    consteval TuningEntry(std::int32_t query_, Precision precision_, const char* type_,
                          const char* operations_, zint value_, Rule rule_ = nullptr)
        : query(query_), precision(precision_), type(piece(type_, 2)), value(value_), rule(rule_) {
        if (type_[2] != '\0') malformed_tuning_entry();
        const char* p = operations_;
        for (;;) {
            if (count == kMaxOperations || p[0] == '\0' || p[1] == '\0' || p[2] == '\0')
                malformed_tuning_entry();
            operations[count++] = piece(p, 3);
            if (p[3] == '\0') break;
            if (p[3] != ' ') malformed_tuning_entry();
            p += 4;
        }
    }

    bool matches(std::int32_t query_, bool complex, std::uint32_t name_type,
                 std::uint32_t name_operation) const {
        if (query_ != query || !type.matches(name_type)) return false;
        if ((precision == Precision::Real && complex) || (precision == Precision::Complex && !complex))
            return false;
        for (int i = 0; i < count; ++i) {
            if (operations[i].matches(name_operation)) return true;
        }
        return false;
    }

    std::int32_t query;
    Precision precision;
    Piece type;
    Piece operations[kMaxOperations]{};
    int count = 0;
    zint value;
    Rule rule;
};

// Answers by ranges of one dimension: the first step whose bound (inclusive) is not exceeded.
struct Step {
    zint up_to;
    zint answer;
};

template <int N>
zint ladder(zint value, const Step (&steps)[N]) {
    for (const Step& step : steps) {
        if (value <= step.up_to) return step.answer;
    }
    return steps[N - 1].answer;
}

constexpr zint kNever = 1000000;  // a crossover never reached: never switch

// Query 3 for GETRF: the crossover to unblocked code.
zint getrf_crossover(const TuningRequest& r) {
    if (r.n3 < 0 || (r.machine.level == CpuLevel::Default && r.machine.authentic_amd)) return 64;
    return (r.letter == 'D' && r.n3 == 8 && r.n2 > 2800) ? 4000 : 64;
}

// Query 1 for GETRF with opts "S", the recursive panels' block size by the smaller dimension: small
// panels are factored unblocked (a block at least as wide as the panel), larger ones split about in
// half, wide ones into blocks of at most 256 columns, whose trailing updates are deep enough for the
// GEMM engine. Other opts keep the reference's 64.
zint getrf_block(const TuningRequest& r) {
    if (r.option != 'S') return 64;
    const zint k = r.n1 < r.n2 ? r.n1 : r.n2;
    if (k <= 32) return 32;
    const zint half = (k / 2 + 7) / 8 * 8;
    return half < 256 ? half : 256;
}

// Query 1 for POTRF: diagonal blocks up to 64 are left to the unblocked kernel, larger ones split
// about in half up to blocks of 256.
zint potrf_block(const TuningRequest& r) {
    if (r.n1 <= 64) return 64;
    const zint half = (r.n1 / 2 + 7) / 8 * 8;
    return half < 256 ? half : 256;
}

// Query 1 for PPTRF: the block of the path with a full-storage work block ("Memory") and of the one
// on the packed storage ("No Memory").
zint pptrf_block(const TuningRequest& r) {
    return r.option == 'M' ? 128 : 32;
}

// Query 1 for PPTRS (n2 = the right-hand sides): the copies to full storage pay for themselves from
// a few right-hand sides on; below that the packed kernels solve directly.
zint pptrs_block(const TuningRequest& r) {
    if (r.option == 'M') return r.n2 < 8 ? 1 : 128;
    return 16;
}

// Query 3 for GEQRF.
zint geqrf_crossover(const TuningRequest& r) {
    zint answer;
    if (r.option == '2') {
        static constexpr Step kSingle[] = {{300, 128}, {400, 96}, {800, 80}, {2000, 64}, {LLONG_MAX, 48}};
        static constexpr Step kDouble[] = {{200, 128}, {400, 80}, {800, 56}, {2000, 48}, {LLONG_MAX, 40}};
        answer = r.single ? ladder(r.n1, kSingle) : ladder(r.n1, kDouble);
    } else if (r.n2 > 8) {
        const __int128 area = static_cast<__int128>(r.n1) * r.n2;
        if (r.single) {
            answer = (r.n1 <= 4000 && area <= 25000) ? 256 : 8;
        } else {
            answer = (r.n1 > 4000 || area > 12500) ? 8 : 128;
        }
    } else {
        answer = 128;
    }
    if (r.n3 >= 1) {
        const __int128 sum = static_cast<__int128>(r.n1) + r.n2;
        answer = sum < 200 ? static_cast<zint>(sum) : 0;
    }
    return answer;
}

// Query 1 for names ending in QRF: the block size by the number of columns.
zint qrf_block(const TuningRequest& r) {
    static constexpr Step kPanel[] = {{200, 8}, {400, 16}, {550, 32}, {800, 48}, {1350, 64}, {LLONG_MAX, 96}};
    static constexpr Step kWhole[] = {{300, 16},  {350, 24},  {800, 48},
                                      {1150, 64}, {3400, 96}, {LLONG_MAX, 128}};
    return r.option == 'P' ? ladder(r.n2, kPanel) : ladder(r.n2, kWhole);
}

// Query 12 for names ending in QRF: the panel parameter.
zint qrf_panel(const TuningRequest& r) {
    static constexpr Step kPanel[] = {{400, 24},  {550, 32},  {800, 48},
                                      {1350, 64}, {1900, 96}, {LLONG_MAX, 128}};
    return r.option == 'P' ? ladder(r.n2, kPanel) : 16;
}

// Query 7 for the generalized Hessenberg reduction and QZ.
zint qz_switch(const TuningRequest& r) {
    return static_cast<int>(r.machine.level) < static_cast<int>(CpuLevel::Sse42) ? 2 : 32;
}

// Band factorizations: unblocked for narrow bands (n4 = KU for GBTRF, n2 = KD for PBTRF).
zint gbtrf_block(const TuningRequest& r) {
    return r.n4 <= 64 ? 1 : 32;
}
zint pbtrf_block(const TuningRequest& r) {
    return r.n2 <= 64 ? 1 : 32;
}

// Query 1 for the first stage of the two-stage tridiagonal reduction: the band's width. A wider
// band makes the first stage's products larger and the second stage's chase longer.
zint band_width(const TuningRequest& r) {
    return r.n1 < 3000 ? 32 : 64;
}

constexpr Precision kAny = Precision::Any;
constexpr Precision kReal = Precision::Real;
constexpr Precision kComplex = Precision::Complex;

// The factorizations whose Q the OR (real) and UN (complex) routines generate (G) or apply (M).
constexpr char kQFamilies[] = "*QR *RQ *LQ *QL *HR *TR *BR";

// First match wins: the library's own entries stand before the published defaults they refine.
// Later families add their entries here.
constexpr TuningEntry kTuningTable[] = {
    // Query 1: the block size NB.
    {1, kAny, "**", "QRF", 0, &qrf_block},
    {1, kAny, "GE", "TRF", 0, &getrf_block},
    {1, kAny, "GE", "TRI", 64},
    {1, kAny, "GE", "RQF LQF QLF HRD BRD QP3", 32},
    {1, kAny, "PO", "TRF", 0, &potrf_block},
    {1, kAny, "PP", "TRF", 0, &pptrf_block},
    {1, kAny, "PP", "TRS", 0, &pptrs_block},
    {1, kReal, "GT", "TRS", 16},
    {1, kAny, "TP", "TRS", 16},
    {1, kAny, "SY", "TRF", 64},
    {1, kReal, "SY", "TRD", 32},
    {1, kReal, "SY", "GST", 64},
    {1, kComplex, "HE", "TRF GST", 64},
    {1, kComplex, "HE", "TRD", 32},
    {1, kReal, "OR", kQFamilies, 32},
    {1, kComplex, "UN", kQFamilies, 32},
    {1, kAny, "GB", "TRF", 0, &gbtrf_block},
    {1, kAny, "PB", "TRF", 0, &pbtrf_block},
    {1, kAny, "TR", "TRI EVC", 64},
    {1, kAny, "LA", "UUM", 64},
    {1, kReal, "ST", "EBZ", 1},
    {1, kAny, "GG", "HD3", 32},
    {1, kReal, "SY", "2SB", 0, &band_width},
    {1, kComplex, "HE", "2HB", 0, &band_width},
    // Query 2: the smallest block size worth blocking NBMIN.
    {2, kAny, "GE", "QRF RQF LQF QLF HRD BRD TRI QP3", 2},
    {2, kAny, "SY", "TRF", 8},
    {2, kReal, "SY", "TRD", 2},
    {2, kComplex, "HE", "TRD", 2},
    {2, kReal, "OR", kQFamilies, 2},
    {2, kComplex, "UN", kQFamilies, 2},
    {2, kAny, "GG", "HD3", 2},
    // Query 3: the crossover NX below which unblocked code runs.
    {3, kAny, "GE", "TRF", 0, &getrf_crossover},
    {3, kAny, "GE", "QRF", 0, &geqrf_crossover},
    {3, kAny, "PO", "TRF", 32},
    {3, kAny, "PP", "TRF", 64},
    {3, kAny, "GE", "RQF LQF QLF HRD BRD QP3", 128},
    {3, kReal, "SY", "TRD", 32},
    {3, kComplex, "HE", "TRD", 32},
    {3, kReal, "OR", kQFamilies, 128},
    {3, kComplex, "UN", kQFamilies, 128},
    {3, kAny, "GG", "HD3", 128},
    {3, kReal, "SY", "2SB", 1500},
    {3, kComplex, "HE", "2HB", 1500},
    // Query 7: the algorithm switch of the generalized Hessenberg reduction and QZ.
    {7, kAny, "HG", "EQZ", 0, &qz_switch},
    {7, kAny, "GG", "HRD", 0, &qz_switch},
    // Query 12: the panel parameter of the library's LU and QR factorizations.
    {12, kAny, "**", "TRF", 16},
    {12, kAny, "**", "QRF", 0, &qrf_panel},
};

// Query 6: the truncation of min(n1, n2) * 1.6 in single precision, saturated.
zint svd_crossover(zint n1, zint n2) {
    const float product = static_cast<float>(n1 < n2 ? n1 : n2) * 1.6f;
    if (product >= 0x1p63f) return LLONG_MAX;
    if (product < -0x1p63f) return LLONG_MIN;
    return static_cast<zint>(product);
}

// The answer of a name-dependent query for which the table has no entry.
zint untabled_answer(std::int32_t ispec, const char* name, const char* opts, zint n1, zint n2, zint n3,
                     zint n4) {
    switch (ispec) {
        case 1:
            return 1;
        case 2:
            return 2;
        case 3:
            return 0;
        case 12:
            return iparmq(ispec, name, opts, n1, n2, n3, n4, 6, 6);
        case 17:
        case 18:
        case 19:
            return kNever;
        default:  // 7
            return 1;
    }
}

}  // namespace

TuningMachine current_tuning_machine() {
    return {detect_cpu_level(), cpu_is_authentic_amd()};
}

zint tuned_answer(const TuningMachine& machine, std::int32_t ispec, const char* name, zint name_length,
                  const char* opts, zint opts_length, zint n1, zint n2, zint n3, zint n4) {
    // Six characters of the name, upper-cased, blanks for what the caller did not pass; the first
    // character of opts the same way, padded to six for iparmq.
    char routine[6];
    for (int i = 0; i < 6; ++i) routine[i] = i < name_length ? ascii_upper(name[i]) : ' ';
    char options[6] = {' ', ' ', ' ', ' ', ' ', ' '};
    if (opts_length > 0) options[0] = opts[0];

    switch (ispec) {
        case 4:
            return 6;
        case 5:
            return 2;
        case 6:
            return svd_crossover(n1, n2);
        case 8:
            return 50;
        case 9:
            return 25;
        case 10:
        case 11:
            return 1;  // IEEE NaN and infinity arithmetic are trusted
        case 13:
        case 14:
        case 15:
        case 16:
            return iparmq(ispec, routine, options, n1, n2, n3, n4, 6, 6);
        case 1:
        case 2:
        case 3:
        case 7:
        case 12:
        case 17:
        case 18:
        case 19:
            break;
        default:
            return -1;
    }

    const char letter = routine[0];
    if (letter != 'S' && letter != 'D' && letter != 'C' && letter != 'Z') return 1;
    const bool complex = letter == 'C' || letter == 'Z';
    const TuningRequest request{
        machine, letter, complex, letter == 'S' || letter == 'C', ascii_upper(options[0]), n1, n2, n3, n4};
    const std::uint32_t type = pack(routine[1], routine[2], '\0');
    const std::uint32_t operation = pack(routine[3], routine[4], routine[5]);
    for (const TuningEntry& entry : kTuningTable) {
        if (entry.matches(ispec, complex, type, operation))
            return entry.rule != nullptr ? entry.rule(request) : entry.value;
    }
    return untabled_answer(ispec, routine, options, n1, n2, n3, n4);
}

zint ilaenv(const std::int32_t& ispec, const char* name, const char* opts, const zint& n1, const zint& n2,
            const zint& n3, const zint& n4, zint name_length, zint opts_length) {
    return tuned_answer(current_tuning_machine(), ispec, name, name_length, opts, opts_length, n1, n2, n3,
                        n4);
}

}  // namespace zor
