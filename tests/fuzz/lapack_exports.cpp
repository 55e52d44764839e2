// The Fortran-style LAPACK exports in the fuzzer: for each, its arguments, its model and its arrays.
// The models state the reference LAPACK routine documentation: each argument check, in the
// routine's order, with the argument's position; the name reported is the routine's upper-case
// name, blank-padded to six characters. Option letters compare like lsame (ASCII letters in either
// case), except dgttrs, which takes exactly N, n, T, t, C, c.
//
// Adding an export: write its function in the style of the others (draw the arguments in order,
// state the checks with c.lapack, then ask for the arrays, then c.run_lapack) and add a row to
// kExports. Arrays a routine only writes are Use::InOut and start as filler; arrays it reads that
// must hold valid indices (pivots) come from c.pivots.

#include <cmath>
#include <cstring>
#include <type_traits>

#include "fuzz.hpp"

namespace zor::fuzz {

namespace {

// Whether `letter` is one of `valid` (upper case) as lsame compares them.
bool is(char letter, const char* valid) {
    const char upper = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - ('a' - 'A')) : letter;
    return upper != '\0' && std::strchr(valid, upper) != nullptr;
}

// The length of a diagonal `by` below the main one of order n.
std::int64_t below(zor_int n, int by) {
    return max_of(std::int64_t{n} - by, 0);
}

using D = double;
using Z = zor_complex_double;

// ---- LU -----------------------------------------------------------------------------------------

template <class T, auto f>
void getrf(Call& c, const char* name) {
    const zor_int m = c.dimension("M"), n = c.dimension("N"), lda = c.leading("LDA", m);
    c.lapack(name, {{m < 0, 1}, {n < 0, 2}, {lda < max1(m), 4}});
    T* a = c.matrix<T>("A", m, n, lda, Use::InOut);
    zor_int* ipiv = c.array<zor_int>("IPIV", min_of(m, n), Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&m, &n, a, &lda, ipiv, info); });
}

template <class T, auto f>
void gesv(Call& c, const char* name) {
    const zor_int n = c.dimension("N"), nrhs = c.dimension("NRHS");
    const zor_int lda = c.leading("LDA", n), ldb = c.leading("LDB", n);
    c.lapack(name, {{n < 0, 1}, {nrhs < 0, 2}, {lda < max1(n), 4}, {ldb < max1(n), 7}});
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    zor_int* ipiv = c.array<zor_int>("IPIV", n, Use::InOut);
    T* b = c.matrix<T>("B", n, nrhs, ldb, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&n, &nrhs, a, &lda, ipiv, b, &ldb, info); });
}

// A workspace query (LWORK = -1) only writes WORK(1): A and IPIV are not touched.
template <class T, auto f>
void getri(Call& c, const char* name) {
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n), lwork = c.workspace("LWORK", n);
    const bool query = lwork == -1;
    c.lapack(name, {{n < 0, 1}, {lda < max1(n), 3}, {lwork < max1(n) && !query, 6}});
    T* a = c.matrix<T>("A", n, n, lda, query ? Use::Untouched : Use::InOut);
    const zor_int* ipiv = c.pivots("IPIV", n, n, query ? Use::Untouched : Use::In);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&n, a, &lda, ipiv, work, &lwork, info); });
}

template <class T, auto f>
void gbsv(Call& c, const char* name) {
    const zor_int n = c.dimension("N"), kl = c.dimension("KL"), ku = c.dimension("KU");
    const zor_int nrhs = c.dimension("NRHS");
    const std::int64_t band = 2 * std::int64_t{kl} + ku + 1;
    const zor_int ldab = c.leading("LDAB", band), ldb = c.leading("LDB", n);
    c.lapack(name,
             {{n < 0, 1}, {kl < 0, 2}, {ku < 0, 3}, {nrhs < 0, 4}, {ldab < band, 6}, {ldb < max1(n), 9}});
    // The routine reaches the first 2 KL + KU + 1 rows of each column.
    T* ab = c.array<T>("AB", n <= 0 ? 0 : std::int64_t{ldab} * (n - 1) + band, Use::InOut);
    zor_int* ipiv = c.array<zor_int>("IPIV", n, Use::InOut);
    T* b = c.matrix<T>("B", n, nrhs, ldb, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&n, &kl, &ku, &nrhs, ab, &ldab, ipiv, b, &ldb, info); });
}

void dgttrf_(Call& c) {
    const zor_int n = c.dimension("N");
    c.lapack("DGTTRF", {{n < 0, 1}});
    double* dl = c.array<double>("DL", below(n, 1), Use::InOut);
    double* d = c.array<double>("D", n, Use::InOut);
    double* du = c.array<double>("DU", below(n, 1), Use::InOut);
    double* du2 = c.array<double>("DU2", below(n, 2), Use::InOut);
    zor_int* ipiv = c.array<zor_int>("IPIV", n, Use::InOut);
    c.run_lapack([&](zor_int* info) { dgttrf(&n, dl, d, du, du2, ipiv, info); });
}

void dgttrs_(Call& c) {
    const char trans = c.letter("TRANS", "NTC");
    const zor_int n = c.dimension("N"), nrhs = c.dimension("NRHS"), ldb = c.leading("LDB", n);
    const bool known = std::strchr("NnTtCc", trans) != nullptr && trans != '\0';
    c.lapack("DGTTRS", {{!known, 1}, {n < 0, 2}, {nrhs < 0, 3}, {ldb < max1(n), 10}});
    const double* dl = c.array<double>("DL", below(n, 1), Use::In);
    const double* d = c.array<double>("D", n, Use::In);
    const double* du = c.array<double>("DU", below(n, 1), Use::In);
    const double* du2 = c.array<double>("DU2", below(n, 2), Use::In);
    const zor_int* ipiv = c.pivots("IPIV", n, 1, Use::In);
    double* b = c.matrix<double>("B", n, nrhs, ldb, Use::InOut);
    c.run_lapack([&](zor_int* info) { dgttrs(&trans, &n, &nrhs, dl, d, du, du2, ipiv, b, &ldb, info, 1); });
}

// ---- Cholesky -----------------------------------------------------------------------------------

// potrf and potri: (UPLO, N, A, LDA, INFO).
template <class T, auto f>
void potrf(Call& c, const char* name) {
    const char uplo = c.letter("UPLO", "UL");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n);
    c.lapack(name, {{!is(uplo, "UL"), 1}, {n < 0, 2}, {lda < max1(n), 4}});
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&uplo, &n, a, &lda, info, 1); });
}

template <class T, auto f>
void posv(Call& c, const char* name) {
    const char uplo = c.letter("UPLO", "UL");
    const zor_int n = c.dimension("N"), nrhs = c.dimension("NRHS");
    const zor_int lda = c.leading("LDA", n), ldb = c.leading("LDB", n);
    c.lapack(name, {{!is(uplo, "UL"), 1}, {n < 0, 2}, {nrhs < 0, 3}, {lda < max1(n), 5}, {ldb < max1(n), 7}});
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    T* b = c.matrix<T>("B", n, nrhs, ldb, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&uplo, &n, &nrhs, a, &lda, b, &ldb, info, 1); });
}

// pptrf and pptri: (UPLO, N, AP, INFO).
template <class T, auto f>
void pptrf(Call& c, const char* name) {
    const char uplo = c.letter("UPLO", "UL");
    const zor_int n = c.dimension("N");
    c.lapack(name, {{!is(uplo, "UL"), 1}, {n < 0, 2}});
    T* ap = c.packed<T>("AP", n, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&uplo, &n, ap, info, 1); });
}

template <class T, auto f>
void pptrs(Call& c, const char* name) {
    const char uplo = c.letter("UPLO", "UL");
    const zor_int n = c.dimension("N"), nrhs = c.dimension("NRHS"), ldb = c.leading("LDB", n);
    c.lapack(name, {{!is(uplo, "UL"), 1}, {n < 0, 2}, {nrhs < 0, 3}, {ldb < max1(n), 6}});
    const T* ap = c.packed<T>("AP", n, Use::In);
    T* b = c.matrix<T>("B", n, nrhs, ldb, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&uplo, &n, &nrhs, ap, b, &ldb, info, 1); });
}

// ---- triangular ---------------------------------------------------------------------------------

template <class T, auto f>
void trtri(Call& c, const char* name) {
    const char uplo = c.letter("UPLO", "UL"), diag = c.letter("DIAG", "NU");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n);
    c.lapack(name, {{!is(uplo, "UL"), 1}, {!is(diag, "NU"), 2}, {n < 0, 3}, {lda < max1(n), 5}});
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&uplo, &diag, &n, a, &lda, info, 1, 1); });
}

template <class T, auto f>
void tptri(Call& c, const char* name) {
    const char uplo = c.letter("UPLO", "UL"), diag = c.letter("DIAG", "NU");
    const zor_int n = c.dimension("N");
    c.lapack(name, {{!is(uplo, "UL"), 1}, {!is(diag, "NU"), 2}, {n < 0, 3}});
    T* ap = c.packed<T>("AP", n, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&uplo, &diag, &n, ap, info, 1, 1); });
}

template <class T, auto f>
void tptrs(Call& c, const char* name) {
    const char uplo = c.letter("UPLO", "UL"), trans = c.letter("TRANS", "NTC"), diag = c.letter("DIAG", "NU");
    const zor_int n = c.dimension("N"), nrhs = c.dimension("NRHS"), ldb = c.leading("LDB", n);
    c.lapack(name, {{!is(uplo, "UL"), 1},
                    {!is(trans, "NTC"), 2},
                    {!is(diag, "NU"), 3},
                    {n < 0, 4},
                    {nrhs < 0, 5},
                    {ldb < max1(n), 8}});
    const T* ap = c.packed<T>("AP", n, Use::In);
    T* b = c.matrix<T>("B", n, nrhs, ldb, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&uplo, &trans, &diag, &n, &nrhs, ap, b, &ldb, info, 1, 1, 1); });
}

// ---- orthogonal factorizations ------------------------------------------------------------------

// geqrf and gelqf: (M, N, A, LDA, TAU, WORK, LWORK, INFO); LWORK at least N (QR) or M (LQ), 1 when
// either is 0. A query writes only WORK(1).
template <class T, auto f, bool lq>
void factor(Call& c, const char* name) {
    const zor_int m = c.dimension("M"), n = c.dimension("N"), lda = c.leading("LDA", m);
    const std::int64_t least = min_of(m, n) > 0 ? max1(lq ? m : n) : 1;
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1;
    c.lapack(name, {{m < 0, 1}, {n < 0, 2}, {lda < max1(m), 4}, {lwork < least && !query, 7}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", m, n, lda, out);
    T* tau = c.array<T>("TAU", min_of(m, n), out);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&m, &n, a, &lda, tau, work, &lwork, info); });
}

template <class T, auto f>
void geqrf(Call& c, const char* name) {
    factor<T, f, false>(c, name);
}

template <class T, auto f>
void gelqf(Call& c, const char* name) {
    factor<T, f, true>(c, name);
}

// geqp3: LWORK at least 3 N + 1 (zgeqp3: N + 1, with RWORK of 2 N), 1 when M or N is 0; any JPVT
// on entry (nonzero entries mark the columns kept in front).
template <class T, auto f>
void geqp3(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const zor_int m = c.dimension("M"), n = c.dimension("N"), lda = c.leading("LDA", m);
    const std::int64_t least = min_of(m, n) > 0 ? (complex ? 1 : 3) * std::int64_t{n} + 1 : 1;
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1;
    c.lapack(name, {{m < 0, 1}, {n < 0, 2}, {lda < max1(m), 4}, {lwork < least && !query, 8}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", m, n, lda, out);
    zor_int* jpvt = c.array<zor_int>("JPVT", n, out);
    T* tau = c.array<T>("TAU", min_of(m, n), out);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    if constexpr (complex) {
        double* rwork = c.array<double>("RWORK", 2 * std::int64_t{n}, out);
        c.run_lapack([&](zor_int* info) { f(&m, &n, a, &lda, jpvt, tau, work, &lwork, rwork, info); });
    } else {
        c.run_lapack([&](zor_int* info) { f(&m, &n, a, &lda, jpvt, tau, work, &lwork, info); });
    }
}

// orgqr and orglq: (M, N, K, A, LDA, TAU, WORK, LWORK, INFO); QR needs M >= N >= K, LQ N >= M >= K;
// LWORK at least N (QR) or M (LQ).
template <class T, auto f, bool lq>
void generate(Call& c, const char* name) {
    const zor_int m = c.dimension("M"), n = c.dimension("N"), k = c.dimension("K");
    const zor_int lda = c.leading("LDA", m);
    const zor_int count = lq ? m : n;
    const zor_int lwork = c.workspace("LWORK", count);
    const bool query = lwork == -1;
    c.lapack(name, {{m < 0, 1},
                    {lq ? n < m : n < 0 || n > m, 2},
                    {k < 0 || k > count, 3},
                    {lda < max1(m), 5},
                    {lwork < max1(count) && !query, 8}});
    T* a = c.matrix<T>("A", m, n, lda, query ? Use::Untouched : Use::InOut);
    const T* tau = c.array<T>("TAU", k, query ? Use::Untouched : Use::In);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&m, &n, &k, a, &lda, tau, work, &lwork, info); });
}

template <class T, auto f>
void orgqr(Call& c, const char* name) {
    generate<T, f, false>(c, name);
}

template <class T, auto f>
void orglq(Call& c, const char* name) {
    generate<T, f, true>(c, name);
}

// orghr: 1 <= ILO <= max(1, N), min(ILO, N) <= IHI <= N; LWORK at least IHI - ILO.
template <class T, auto f>
void orghr(Call& c, const char* name) {
    const zor_int n = c.dimension("N"), ilo = c.dimension("ILO"), ihi = c.dimension("IHI");
    const zor_int lda = c.leading("LDA", n);
    const std::int64_t least = max1(std::int64_t{ihi} - ilo);
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1;
    c.lapack(name, {{n < 0, 1},
                    {ilo < 1 || ilo > max1(n), 2},
                    {ihi < min_of(ilo, n) || ihi > n, 3},
                    {lda < max1(n), 5},
                    {lwork < least && !query, 8}});
    T* a = c.matrix<T>("A", n, n, lda, query ? Use::Untouched : Use::InOut);
    const T* tau = c.array<T>("TAU", below(n, 1), query ? Use::Untouched : Use::In);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&n, &ilo, &ihi, a, &lda, tau, work, &lwork, info); });
}

// ---- the nonsymmetric eigenproblem -------------------------------------------------------------

// gebal: a NaN in A is reported as argument 3 after the permutation: keep A finite.
template <class T, auto f>
void gebal(Call& c, const char* name) {
    const char job = c.letter("JOB", "NPSB");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n);
    c.lapack(name, {{!is(job, "NPSB"), 1}, {n < 0, 2}, {lda < max1(n), 4}});
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    double* scale = c.array<double>("SCALE", n, Use::InOut);
    if (c.full_size()) {
        auto* values = reinterpret_cast<double*>(a);
        const std::int64_t count =
            (n > 0 ? (n - 1) * std::int64_t{lda} + n : 0) * std::int64_t{sizeof(T) / sizeof(double)};
        for (std::int64_t i = 0; i < count; ++i)
            if (!std::isfinite(values[i])) values[i] = 0.0;
    }
    zor_int ilo = 0, ihi = 0;
    c.run_lapack([&](zor_int* info) { f(&job, &n, a, &lda, &ilo, &ihi, scale, info, 1); });
}

// gebak: SCALE as gebal leaves it, row indices outside ILO .. IHI and positive factors inside.
template <class T, auto f>
void gebak(Call& c, const char* name) {
    const char job = c.letter("JOB", "NPSB"), side = c.letter("SIDE", "LR");
    const zor_int n = c.dimension("N"), ilo = c.dimension("ILO"), ihi = c.dimension("IHI");
    const zor_int m = c.dimension("M"), ldv = c.leading("LDV", n);
    c.lapack(name, {{!is(job, "NPSB"), 1},
                    {!is(side, "LR"), 2},
                    {n < 0, 3},
                    {ilo < 1 || ilo > max1(n), 4},
                    {ihi < min_of(ilo, n) || ihi > n, 5},
                    {m < 0, 7},
                    {ldv < max1(n), 9}});
    double* scale = c.array<double>("SCALE", n, Use::In);
    T* v = c.matrix<T>("V", n, m, ldv, Use::InOut);
    if (c.full_size()) {
        for (zor_int i = 0; i < n; ++i)
            scale[i] = i + 1 < ilo || i + 1 > ihi ? double((i * 7) % n + 1) : std::fabs(scale[i]) + 0.5;
    }
    c.run_lapack([&](zor_int* info) { f(&job, &side, &n, &ilo, &ihi, scale, &m, v, &ldv, info, 1, 1); });
}

// gehrd: the ILO/IHI rules of orghr; LWORK at least max(1, N).
template <class T, auto f>
void gehrd(Call& c, const char* name) {
    const zor_int n = c.dimension("N"), ilo = c.dimension("ILO"), ihi = c.dimension("IHI");
    const zor_int lda = c.leading("LDA", n);
    const zor_int lwork = c.workspace("LWORK", max1(n));
    const bool query = lwork == -1;
    c.lapack(name, {{n < 0, 1},
                    {ilo < 1 || ilo > max1(n), 2},
                    {ihi < min_of(ilo, n) || ihi > n, 3},
                    {lda < max1(n), 5},
                    {lwork < max1(n) && !query, 8}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", n, n, lda, out);
    T* tau = c.array<T>("TAU", below(n, 1), out);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    c.run_lapack([&](zor_int* info) { f(&n, &ilo, &ihi, a, &lda, tau, work, &lwork, info); });
}

zor_int select_left_half(const double* wr, const double*) {
    return *wr < 0.0;
}
zor_int select_left_half_z(const zor_complex_double* w) {
    return w->real < 0.0;
}

// gees: LWORK at least 3 N (dgees) or 2 N (zgees, with RWORK of N), 1 when N is 0; VS only with
// JOBVS "V", BWORK only when sorting. The complex form has no WI: later parameters are one less.
template <class T, auto f>
void gees(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char jobvs = c.letter("JOBVS", "VN"), sort = c.letter("SORT", "SN");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n), ldvs = c.leading("LDVS", n);
    const bool wantvs = is(jobvs, "V");
    const std::int64_t least = n > 0 ? (complex ? 2 : 3) * std::int64_t{n} : 1;
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1;
    const int shift = complex ? 1 : 0;
    c.lapack(name, {{!is(jobvs, "VN"), 1},
                    {!is(sort, "SN"), 2},
                    {n < 0, 4},
                    {lda < max1(n), 6},
                    {ldvs < 1 || (wantvs && ldvs < n), 11 - shift},
                    {lwork < least && !query, 13 - shift}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", n, n, lda, out);
    T* vs = c.matrix<T>("VS", wantvs ? n : 0, n, ldvs, wantvs ? out : Use::Untouched);
    zor_int* bwork = c.array<zor_int>("BWORK", n, is(sort, "S") ? out : Use::Untouched);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    zor_int sdim = 0;
    if constexpr (complex) {
        T* w = c.array<T>("W", n, out);
        double* rwork = c.array<double>("RWORK", n, out);
        c.run_lapack([&](zor_int* info) {
            f(&jobvs, &sort, select_left_half_z, &n, a, &lda, &sdim, w, vs, &ldvs, work, &lwork, rwork, bwork,
              info, 1, 1);
        });
    } else {
        double* wr = c.array<double>("WR", n, out);
        double* wi = c.array<double>("WI", n, out);
        c.run_lapack([&](zor_int* info) {
            f(&jobvs, &sort, select_left_half, &n, a, &lda, &sdim, wr, wi, vs, &ldvs, work, &lwork, bwork,
              info, 1, 1);
        });
    }
}

// geev: LWORK at least 4 N with vectors, 3 N without (dgeev), 2 N (zgeev, with RWORK of 2 N), 1
// when N is 0; VL and VR only when asked for.
template <class T, auto f>
void geev(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char jobvl = c.letter("JOBVL", "VN"), jobvr = c.letter("JOBVR", "VN");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n);
    const zor_int ldvl = c.leading("LDVL", n), ldvr = c.leading("LDVR", n);
    const bool wantvl = is(jobvl, "V"), wantvr = is(jobvr, "V");
    const std::int64_t least = n > 0 ? (complex ? 2 : wantvl || wantvr ? 4 : 3) * std::int64_t{n} : 1;
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1;
    const int shift = complex ? 1 : 0;
    c.lapack(name, {{!is(jobvl, "VN"), 1},
                    {!is(jobvr, "VN"), 2},
                    {n < 0, 3},
                    {lda < max1(n), 5},
                    {ldvl < 1 || (wantvl && ldvl < n), 9 - shift},
                    {ldvr < 1 || (wantvr && ldvr < n), 11 - shift},
                    {lwork < least && !query, 13 - shift}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", n, n, lda, out);
    T* vl = c.matrix<T>("VL", wantvl ? n : 0, n, ldvl, wantvl ? out : Use::Untouched);
    T* vr = c.matrix<T>("VR", wantvr ? n : 0, n, ldvr, wantvr ? out : Use::Untouched);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    if constexpr (complex) {
        T* w = c.array<T>("W", n, out);
        double* rwork = c.array<double>("RWORK", 2 * std::int64_t{n}, out);
        c.run_lapack([&](zor_int* info) {
            f(&jobvl, &jobvr, &n, a, &lda, w, vl, &ldvl, vr, &ldvr, work, &lwork, rwork, info, 1, 1);
        });
    } else {
        double* wr = c.array<double>("WR", n, out);
        double* wi = c.array<double>("WI", n, out);
        c.run_lapack([&](zor_int* info) {
            f(&jobvl, &jobvr, &n, a, &lda, wr, wi, vl, &ldvl, vr, &ldvr, work, &lwork, info, 1, 1);
        });
    }
}

// trexc on any T (its subdiagonal decides the blocks of the real form); Q only with COMPQ "V".
template <class T, auto f>
void trexc(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char compq = c.letter("COMPQ", "VN");
    const zor_int n = c.dimension("N"), ldt = c.leading("LDT", n), ldq = c.leading("LDQ", n);
    zor_int ifst = c.dimension("IFST"), ilst = c.dimension("ILST");
    const bool wantq = is(compq, "V");
    c.lapack(name, {{!is(compq, "VN"), 1},
                    {n < 0, 2},
                    {ldt < max1(n), 4},
                    {ldq < 1 || (wantq && ldq < max1(n)), 6},
                    {(ifst < 1 || ifst > n) && n > 0, 7},
                    {(ilst < 1 || ilst > n) && n > 0, 8}});
    T* t = c.matrix<T>("T", n, n, ldt, Use::InOut);
    T* q = c.matrix<T>("Q", wantq ? n : 0, n, ldq, wantq ? Use::InOut : Use::Untouched);
    if constexpr (complex) {
        c.run_lapack([&](zor_int* info) { f(&compq, &n, t, &ldt, q, &ldq, &ifst, &ilst, info, 1); });
    } else {
        double* work = c.array<double>("WORK", n, Use::InOut);
        c.run_lapack([&](zor_int* info) { f(&compq, &n, t, &ldt, q, &ldq, &ifst, &ilst, work, info, 1); });
    }
}

// trsyl on any A and B; "T" is valid for the real form only.
template <class T, auto f>
void trsyl(Call& c, const char* name) {
    const char* valid = std::is_same_v<T, Z> ? "NC" : "NTC";
    const char trana = c.letter("TRANA", valid), tranb = c.letter("TRANB", valid);
    const zor_int isgn = c.enumeration("ISGN", -1, 3);
    const zor_int m = c.dimension("M"), n = c.dimension("N");
    const zor_int lda = c.leading("LDA", m), ldb = c.leading("LDB", n), ldc = c.leading("LDC", m);
    c.lapack(name, {{!is(trana, valid), 1},
                    {!is(tranb, valid), 2},
                    {isgn != 1 && isgn != -1, 3},
                    {m < 0, 4},
                    {n < 0, 5},
                    {lda < max1(m), 7},
                    {ldb < max1(n), 9},
                    {ldc < max1(m), 11}});
    const T* a = c.matrix<T>("A", m, m, lda, Use::In);
    const T* b = c.matrix<T>("B", n, n, ldb, Use::In);
    T* cc = c.matrix<T>("C", m, n, ldc, Use::InOut);
    double scale = 0.0;
    c.run_lapack([&](zor_int* info) {
        f(&trana, &tranb, &isgn, &m, &n, a, &lda, b, &ldb, cc, &ldc, &scale, info, 1, 1);
    });
}

// ---- the symmetric eigenproblem ----------------------------------------------------------------

// syevd (dsyevd, zheevd): the least LWORK, LRWORK, LIWORK of the published table, all 1 when N <= 1;
// any of them -1 is a query, which writes only the first element of each work array.
template <class T, auto f>
void syevd(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char jobz = c.letter("JOBZ", "VN"), uplo = c.letter("UPLO", "UL");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n);
    const bool vectors = is(jobz, "V");
    const std::int64_t N = n, nn = N * N;
    const bool small = n <= 1;
    // Orders past 2^28 need more than any lwork can say: the library answers 2^62.
    constexpr std::int64_t kUnattainable = std::int64_t{1} << 62;
    const bool huge = N > (std::int64_t{1} << 28);
    const std::int64_t least_work = small     ? 1
                                    : huge    ? kUnattainable
                                    : complex ? (vectors ? 2 * N + nn : N + 1)
                                    : vectors ? 1 + 6 * N + 2 * nn
                                              : 2 * N + 1;
    const std::int64_t least_rwork = small ? 1 : huge ? kUnattainable : vectors ? 1 + 5 * N + 2 * nn : N;
    const std::int64_t least_iwork = small || !vectors ? 1 : huge ? kUnattainable : 3 + 5 * N;
    const zor_int lwork = c.workspace("LWORK", least_work);
    const zor_int lrwork = complex ? c.workspace("LRWORK", least_rwork) : 0;
    const zor_int liwork = c.workspace("LIWORK", least_iwork);
    const bool query = lwork == -1 || liwork == -1 || (complex && lrwork == -1);
    c.lapack(name, {{!is(jobz, "VN"), 1},
                    {!is(uplo, "UL"), 2},
                    {n < 0, 3},
                    {lda < max1(n), 5},
                    {lwork < least_work && !query, 8},
                    {complex && lrwork < least_rwork && !query, 10},
                    {liwork < least_iwork && !query, complex ? 12 : 10}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", n, n, lda, out);
    double* w = c.array<double>("W", n, out);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    zor_int* iwork = c.array<zor_int>("IWORK", query ? 1 : liwork, Use::InOut);
    if constexpr (complex) {
        double* rwork = c.array<double>("RWORK", query ? 1 : lrwork, Use::InOut);
        c.run_lapack([&](zor_int* info) {
            f(&jobz, &uplo, &n, a, &lda, w, work, &lwork, rwork, &lrwork, iwork, &liwork, info, 1, 1);
        });
    } else {
        c.run_lapack([&](zor_int* info) {
            f(&jobz, &uplo, &n, a, &lda, w, work, &lwork, iwork, &liwork, info, 1, 1);
        });
    }
}

// ---- the SVD and least squares ------------------------------------------------------------------

// A NaN in A makes gesdd return info = -4 without a message (as LAPACK 3.10 on): keep A finite.
template <class T>
void keep_finite(Call& c, T* a, zor_int m, zor_int n, zor_int lda) {
    if (!c.full_size() || m <= 0 || n <= 0) return;
    auto* values = reinterpret_cast<double*>(a);
    const std::int64_t count = ((n - 1) * std::int64_t{lda} + m) * std::int64_t{sizeof(T) / sizeof(double)};
    for (std::int64_t i = 0; i < count; ++i)
        if (!std::isfinite(values[i])) values[i] = 0.0;
}

// gesdd: the least LWORK of the published paths (k = min(M, N), x = max(M, N); QR or LQ first when
// x >= 1.6 k); IWORK of 8 k; zgesdd's RWORK 5 k ("N") or max(5k² + 5k, 2xk + 2k² + k).
template <class T, auto f>
void gesdd(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char jobz = c.letter("JOBZ", "ASON");
    const zor_int m = c.dimension("M"), n = c.dimension("N"), lda = c.leading("LDA", m);
    const zor_int ldu = c.leading("LDU", m), ldvt = c.leading("LDVT", n);
    const bool all = is(jobz, "A"), some = is(jobz, "S"), over = is(jobz, "O"), none = is(jobz, "N");
    const std::int64_t k = max_of(min_of(m, n), 0), x = max_of(max_of(m, n), 0);
    std::int64_t least = 1;
    if (k > (std::int64_t{1} << 28)) {
        least = std::int64_t{1} << 62;  // past any lwork, as the library answers
    } else if (k > 0 && (all || some || over || none)) {
        const bool first = x >= static_cast<std::int64_t>(static_cast<float>(k) * 1.6f);
        const std::int64_t bd = none ? 7 * k : 3 * k * k + 4 * k, kk = k * k;
        if (first) {
            least = none   ? (complex ? 3 * k : bd + k)
                    : over ? (complex ? 2 * kk + 3 * k : bd + 2 * kk + 3 * k)
                    : some ? (complex ? kk + 3 * k : bd + kk + 3 * k)
                           : (complex ? kk + 2 * k + x : kk + max_of(3 * k + bd, k + x));
        } else {
            least = complex ? 2 * k + x + (over ? kk : 0) : 3 * k + max_of(x, (over ? kk : 0) + bd);
        }
    }
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1;
    c.lapack(name, {{!(all || some || over || none), 1},
                    {m < 0, 2},
                    {n < 0, 3},
                    {lda < max1(m), 5},
                    {ldu < 1 || ((all || some) && ldu < m) || (over && m < n && ldu < m), 8},
                    {ldvt < 1 || (all && ldvt < n) || (some && ldvt < k) || (over && m >= n && ldvt < n), 10},
                    {lwork < least && !query && m >= 0 && n >= 0, 12}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", m, n, lda, out);
    double* s = c.array<double>("S", k, out);
    const bool u_used = all || some || (over && m < n), vt_used = all || some || (over && m >= n);
    T* u = c.matrix<T>("U", u_used ? m : 0, all ? m : k, ldu, u_used ? out : Use::Untouched);
    T* vt = c.matrix<T>("VT", vt_used ? (all ? n : k) : 0, n, ldvt, vt_used ? out : Use::Untouched);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    zor_int* iwork = c.array<zor_int>("IWORK", 8 * k, out);
    if (!query) keep_finite(c, a, m, n, lda);
    if constexpr (complex) {
        const std::int64_t lrwork = none ? 5 * k
                                    : k > (std::int64_t{1} << 28)
                                        ? std::int64_t{1} << 62
                                        : max_of(5 * k * k + 5 * k, 2 * x * k + 2 * k * k + k);
        double* rwork = c.array<double>("RWORK", lrwork, out);
        c.run_lapack([&](zor_int* info) {
            f(&jobz, &m, &n, a, &lda, s, u, &ldu, vt, &ldvt, work, &lwork, rwork, iwork, info, 1);
        });
    } else {
        c.run_lapack([&](zor_int* info) {
            f(&jobz, &m, &n, a, &lda, s, u, &ldu, vt, &ldvt, work, &lwork, iwork, info, 1);
        });
    }
}

// dgelsd: the least LWORK is max(3k + rows reduced, 3k + NRHS, 3k + lalsd's 9k + 2k·25 + 8k·levels +
// k·NRHS + 26²) with k = min(M, N), the rows reduced N after a QR factorization (M >= 1.6 N), else M.
void dgelsd_(Call& c) {
    const zor_int m = c.dimension("M"), n = c.dimension("N"), nrhs = c.dimension("NRHS");
    const zor_int lda = c.leading("LDA", m), ldb = c.leading("LDB", max_of(m, n));
    const double rcond = c.real("RCOND");
    const std::int64_t k = max_of(min_of(m, n), 0);
    std::int64_t least = 1;
    if (k > 0 && nrhs >= 0) {
        const std::int64_t levels =
            max_of(0, static_cast<std::int64_t>(std::log(static_cast<double>(k) / 26.0) / std::log(2.0)) + 1);
        const std::int64_t lalsd = 9 * k + 2 * k * 25 + 8 * k * levels + k * nrhs + 26 * 26;
        const bool qr_first = m >= n && m >= static_cast<std::int64_t>(static_cast<float>(n) * 1.6f);
        const std::int64_t rows = m >= n ? (qr_first ? n : m) : m;
        least = max_of(3 * k + rows, max_of(3 * k + nrhs, 3 * k + lalsd));
    }
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1;
    c.lapack("DGELSD", {{m < 0, 1},
                        {n < 0, 2},
                        {nrhs < 0, 3},
                        {lda < max1(m), 5},
                        {ldb < max1(max_of(m, n)), 7},
                        {lwork < least && !query && m >= 0 && n >= 0 && nrhs >= 0, 12}});
    const Use out = query ? Use::Untouched : Use::InOut;
    double* a = c.matrix<double>("A", m, n, lda, out);
    double* b = c.matrix<double>("B", max_of(m, n), nrhs, ldb, out);
    double* s = c.array<double>("S", k, out);
    double* work = c.array<double>("WORK", query ? 1 : lwork, Use::InOut);
    const std::int64_t levels =
        k > 0 ? max_of(0,
                       static_cast<std::int64_t>(std::log(static_cast<double>(k) / 26.0) / std::log(2.0)) + 1)
              : 0;
    zor_int* iwork = c.array<zor_int>("IWORK", max1(3 * max1(k) * levels + 11 * max1(k)), Use::InOut);
    zor_int rank = 0;
    c.run_lapack([&](zor_int* info) {
        dgelsd(&m, &n, &nrhs, a, &lda, b, &ldb, s, &rcond, &rank, work, &lwork, iwork, info);
    });
}

// ---- the generalized eigenproblem ---------------------------------------------------------------

// Whether a COMPQ-style letter asks for the matrix (I or V).
bool wanted(char compq) {
    return is(compq, "IV");
}

// gghrd: (COMPQ, COMPZ, N, ILO, IHI, A, LDA, B, LDB, Q, LDQ, Z, LDZ, INFO); 1 <= ILO, ILO - 1 <= IHI
// <= N; Q and Z not referenced for "N".
template <class T, auto f>
void gghrd(Call& c, const char* name) {
    const char compq = c.letter("COMPQ", "NIV"), compz = c.letter("COMPZ", "NIV");
    const zor_int n = c.dimension("N"), ilo = c.dimension("ILO"), ihi = c.dimension("IHI");
    const zor_int lda = c.leading("LDA", n), ldb = c.leading("LDB", n);
    const zor_int ldq = c.leading("LDQ", n), ldz = c.leading("LDZ", n);
    c.lapack(name, {{!is(compq, "NIV"), 1},
                    {!is(compz, "NIV"), 2},
                    {n < 0, 3},
                    {ilo < 1, 4},
                    {ihi > n || ihi < std::int64_t{ilo} - 1, 5},
                    {lda < max1(n), 7},
                    {ldb < max1(n), 9},
                    {(wanted(compq) && ldq < n) || ldq < 1, 11},
                    {(wanted(compz) && ldz < n) || ldz < 1, 13}});
    T* a = c.matrix<T>("A", n, n, lda, Use::InOut);
    T* b = c.matrix<T>("B", n, n, ldb, Use::InOut);
    T* q = wanted(compq) ? c.matrix<T>("Q", n, n, ldq, Use::InOut) : c.array<T>("Q", 1, Use::Untouched);
    T* z = wanted(compz) ? c.matrix<T>("Z", n, n, ldz, Use::InOut) : c.array<T>("Z", 1, Use::Untouched);
    c.run_lapack([&](zor_int* info) {
        f(&compq, &compz, &n, &ilo, &ihi, a, &lda, b, &ldb, q, &ldq, z, &ldz, info, 1, 1);
    });
}

// hgeqz: (JOB, COMPQ, COMPZ, N, ILO, IHI, H, LDH, T, LDT, ALPHAR, ALPHAI (ALPHA), BETA, Q, LDQ, Z,
// LDZ, WORK, LWORK, [RWORK,] INFO); LWORK at least max(1, N); a query touches only WORK(1).
template <class T, auto f>
void hgeqz(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char job = c.letter("JOB", "ES"), compq = c.letter("COMPQ", "NIV"),
               compz = c.letter("COMPZ", "NIV");
    const zor_int n = c.dimension("N"), ilo = c.dimension("ILO"), ihi = c.dimension("IHI");
    const zor_int ldh = c.leading("LDH", n), ldt = c.leading("LDT", n);
    const zor_int ldq = c.leading("LDQ", n), ldz = c.leading("LDZ", n);
    const zor_int lwork = c.workspace("LWORK", max1(n));
    const bool query = lwork == -1;
    const int shift = complex ? 1 : 0;
    c.lapack(name, {{!is(job, "ES"), 1},
                    {!is(compq, "NIV"), 2},
                    {!is(compz, "NIV"), 3},
                    {n < 0, 4},
                    {ilo < 1, 5},
                    {ihi > n || ihi < std::int64_t{ilo} - 1, 6},
                    {ldh < n, 8},
                    {ldt < n, 10},
                    {ldq < 1 || (wanted(compq) && ldq < n), 15 - shift},
                    {ldz < 1 || (wanted(compz) && ldz < n), 17 - shift},
                    {lwork < max1(n) && !query, 19 - shift}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* h = c.matrix<T>("H", n, n, ldh, out);
    T* t = c.matrix<T>("T", n, n, ldt, out);
    T* alpha = c.array<T>("ALPHA", n, out);
    double* alphai = complex ? nullptr : c.array<double>("ALPHAI", n, out);
    T* beta = c.array<T>("BETA", n, out);
    T* q = wanted(compq) ? c.matrix<T>("Q", n, n, ldq, out) : c.array<T>("Q", 1, Use::Untouched);
    T* z = wanted(compz) ? c.matrix<T>("Z", n, n, ldz, out) : c.array<T>("Z", 1, Use::Untouched);
    T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
    if constexpr (complex) {
        double* rwork = c.array<double>("RWORK", n, out);
        c.run_lapack([&](zor_int* info) {
            f(&job, &compq, &compz, &n, &ilo, &ihi, h, &ldh, t, &ldt, alpha, beta, q, &ldq, z, &ldz, work,
              &lwork, rwork, info, 1, 1, 1);
        });
    } else {
        c.run_lapack([&](zor_int* info) {
            f(&job, &compq, &compz, &n, &ilo, &ihi, h, &ldh, t, &ldt, alpha, alphai, beta, q, &ldq, z, &ldz,
              work, &lwork, info, 1, 1, 1);
        });
    }
}

// tgevc: (SIDE, HOWMNY, SELECT, N, S, LDS, P, LDP, VL, LDVL, VR, LDVR, MM, M, WORK, [RWORK,] INFO).
// The checks after LDP read the arrays: real S must have no two adjacent nonzero subdiagonal
// entries (5) and P zeros beside S's 2 by 2 blocks (7); MM counts the columns howmny "S" needs (a
// real pair two, chosen by either of its entries).
template <class T, auto f>
void tgevc(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char side = c.letter("SIDE", "RLB"), howmny = c.letter("HOWMNY", "ASB");
    const zor_int n = c.dimension("N"), lds = c.leading("LDS", n), ldp = c.leading("LDP", n);
    const zor_int ldvl = c.leading("LDVL", n), ldvr = c.leading("LDVR", n), mm = c.dimension("MM");
    c.lapack(
        name,
        {{!is(side, "RLB"), 1}, {!is(howmny, "ASB"), 2}, {n < 0, 4}, {lds < max1(n), 6}, {ldp < max1(n), 8}});
    const bool left = is(side, "LB"), right = is(side, "RB"), chosen = is(howmny, "S");
    const zor_int* select = c.array<zor_int>("SELECT", chosen ? n : 1, chosen ? Use::In : Use::Untouched);
    const T* s = c.matrix<T>("S", n, n, lds, Use::In);
    const T* p = c.matrix<T>("P", n, n, ldp, Use::In);
    bool sbad = false, pbad = false;
    std::int64_t needed = n;
    if (c.full_size() && n > 0) {
        auto sub = [&](const T* m, zor_int ld, std::int64_t i, std::int64_t j) {
            const T& x = m[i + j * std::int64_t{ld}];
            if constexpr (complex) {
                return x.real != 0 || x.imag != 0;
            } else {
                return x != 0;
            }
        };
        for (std::int64_t j = 0; !complex && j + 1 < n; ++j) {
            if (!sub(s, lds, j + 1, j)) continue;
            if (sub(p, ldp, j + 1, j) || sub(p, ldp, j, j + 1)) pbad = true;
            if (j + 2 < n && sub(s, lds, j + 2, j + 1)) sbad = true;
        }
        if (chosen) {
            needed = 0;
            for (std::int64_t j = 0; j < n; ++j) {
                if (!complex && j + 1 < n && sub(s, lds, j + 1, j)) {
                    if (select[j] != 0 || select[j + 1] != 0) needed += 2;
                    ++j;
                } else if (select[j] != 0) {
                    ++needed;
                }
            }
        }
    }
    c.lapack_on_arrays(name, {{sbad, 5},
                              {pbad, 7},
                              {ldvl < 1 || (left && ldvl < n), 10},
                              {ldvr < 1 || (right && ldvr < n), 12},
                              {mm < needed, 13}});
    T* vl = left ? c.matrix<T>("VL", n, mm, ldvl, Use::InOut) : c.array<T>("VL", 1, Use::Untouched);
    T* vr = right ? c.matrix<T>("VR", n, mm, ldvr, Use::InOut) : c.array<T>("VR", 1, Use::Untouched);
    T* work = c.array<T>("WORK", (complex ? 2 : 6) * std::int64_t{n}, Use::InOut);
    zor_int m = 0;
    if constexpr (complex) {
        double* rwork = c.array<double>("RWORK", 2 * std::int64_t{n}, Use::InOut);
        c.run_lapack([&](zor_int* info) {
            f(&side, &howmny, select, &n, s, &lds, p, &ldp, vl, &ldvl, vr, &ldvr, &mm, &m, work, rwork, info,
              1, 1);
        });
    } else {
        c.run_lapack([&](zor_int* info) {
            f(&side, &howmny, select, &n, s, &lds, p, &ldp, vl, &ldvl, vr, &ldvr, &mm, &m, work, info, 1, 1);
        });
    }
}

// The arrays of ggev and gges, in their order: A, B, ALPHA (ALPHAR), ALPHAI (real data), BETA, the
// left and right vectors (untouched when not wanted), WORK.
template <class T>
struct PencilArrays {
    T *a, *b, *alpha;
    double* alphai;
    T *beta, *vl, *vr, *work;
};

template <class T>
PencilArrays<T> pencil_arrays(Call& c, zor_int n, zor_int lda, zor_int ldb, const char* left, bool wantl,
                              zor_int ldvl, const char* right, bool wantr, zor_int ldvr, zor_int lwork) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const Use out = lwork == -1 ? Use::Untouched : Use::InOut;
    PencilArrays<T> p{};
    p.a = c.matrix<T>("A", n, n, lda, out);
    p.b = c.matrix<T>("B", n, n, ldb, out);
    p.alpha = c.array<T>("ALPHA", n, out);
    p.alphai = complex ? nullptr : c.array<double>("ALPHAI", n, out);
    p.beta = c.array<T>("BETA", n, out);
    p.vl = wantl ? c.matrix<T>(left, n, n, ldvl, out) : c.array<T>(left, 1, Use::Untouched);
    p.vr = wantr ? c.matrix<T>(right, n, n, ldvr, out) : c.array<T>(right, 1, Use::Untouched);
    p.work = c.array<T>("WORK", lwork == -1 ? 1 : lwork, Use::InOut);
    return p;
}

// ggev: (JOBVL, JOBVR, N, A, LDA, B, LDB, ALPHAR, ALPHAI (ALPHA), BETA, VL, LDVL, VR, LDVR, WORK,
// LWORK, [RWORK,] INFO); LWORK at least max(1, 8 N) (zggev: max(1, 2 N), RWORK of 8 N).
template <class T, auto f>
void ggev(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char jobvl = c.letter("JOBVL", "NV"), jobvr = c.letter("JOBVR", "NV");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n), ldb = c.leading("LDB", n);
    const zor_int ldvl = c.leading("LDVL", n), ldvr = c.leading("LDVR", n);
    const std::int64_t least = max1((complex ? 2 : 8) * std::int64_t{n});
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1, wantl = is(jobvl, "V"), wantr = is(jobvr, "V");
    const int shift = complex ? 1 : 0;
    c.lapack(name, {{!is(jobvl, "NV"), 1},
                    {!is(jobvr, "NV"), 2},
                    {n < 0, 3},
                    {lda < max1(n), 5},
                    {ldb < max1(n), 7},
                    {ldvl < 1 || (wantl && ldvl < n), 12 - shift},
                    {ldvr < 1 || (wantr && ldvr < n), 14 - shift},
                    {lwork < least && !query, 16 - shift}});
    const Use out = query ? Use::Untouched : Use::InOut;
    const PencilArrays<T> p = pencil_arrays<T>(c, n, lda, ldb, "VL", wantl, ldvl, "VR", wantr, ldvr, lwork);
    T *a = p.a, *b = p.b, *alpha = p.alpha, *beta = p.beta, *vl = p.vl, *vr = p.vr, *work = p.work;
    double* alphai = p.alphai;
    if constexpr (complex) {
        double* rwork = c.array<double>("RWORK", 8 * std::int64_t{n}, out);
        c.run_lapack([&](zor_int* info) {
            f(&jobvl, &jobvr, &n, a, &lda, b, &ldb, alpha, beta, vl, &ldvl, vr, &ldvr, work, &lwork, rwork,
              info, 1, 1);
        });
    } else {
        c.run_lapack([&](zor_int* info) {
            f(&jobvl, &jobvr, &n, a, &lda, b, &ldb, alpha, alphai, beta, vl, &ldvl, vr, &ldvr, work, &lwork,
              info, 1, 1);
        });
    }
}

// The caller's choice for gges, in the Fortran convention.
zor_int choose_real(const double* alphar, const double*, const double* beta) {
    return *alphar < *beta;
}
zor_int choose_complex(const zor_complex_double* alpha, const zor_complex_double*) {
    return alpha->real < 0;
}

// gges: (JOBVSL, JOBVSR, SORT, SELCTG, N, A, LDA, B, LDB, SDIM, ALPHAR, ALPHAI (ALPHA), BETA, VSL,
// LDVSL, VSR, LDVSR, WORK, LWORK, [RWORK,] BWORK, INFO); LWORK at least max(8 N, 6 N + 16) (1 for
// N = 0; zgges: max(1, 2 N), RWORK of 8 N); BWORK only when sorting.
template <class T, auto f>
void gges(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const char jobvsl = c.letter("JOBVSL", "NV"), jobvsr = c.letter("JOBVSR", "NV"),
               sort = c.letter("SORT", "NS");
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n), ldb = c.leading("LDB", n);
    const zor_int ldvsl = c.leading("LDVSL", n), ldvsr = c.leading("LDVSR", n);
    const std::int64_t least = complex ? max1(2 * std::int64_t{n})
                                       : (n <= 0 ? 1 : max_of(8 * std::int64_t{n}, 6 * std::int64_t{n} + 16));
    const zor_int lwork = c.workspace("LWORK", least);
    const bool query = lwork == -1, wantl = is(jobvsl, "V"), wantr = is(jobvsr, "V");
    const int shift = complex ? 1 : 0;
    c.lapack(name, {{!is(jobvsl, "NV"), 1},
                    {!is(jobvsr, "NV"), 2},
                    {!is(sort, "NS"), 3},
                    {n < 0, 5},
                    {lda < max1(n), 7},
                    {ldb < max1(n), 9},
                    {ldvsl < 1 || (wantl && ldvsl < n), 15 - shift},
                    {ldvsr < 1 || (wantr && ldvsr < n), 17 - shift},
                    {lwork < least && !query, 19 - shift}});
    const Use out = query ? Use::Untouched : Use::InOut;
    const PencilArrays<T> p =
        pencil_arrays<T>(c, n, lda, ldb, "VSL", wantl, ldvsl, "VSR", wantr, ldvsr, lwork);
    T *a = p.a, *b = p.b, *alpha = p.alpha, *beta = p.beta, *vsl = p.vl, *vsr = p.vr, *work = p.work;
    double* alphai = p.alphai;
    const bool sorting = is(sort, "S") && !query;
    zor_int* bwork = c.array<zor_int>("BWORK", sorting ? n : 1, sorting ? Use::InOut : Use::Untouched);
    zor_int sdim = 0;
    if constexpr (complex) {
        double* rwork = c.array<double>("RWORK", 8 * std::int64_t{n}, out);
        c.run_lapack([&](zor_int* info) {
            f(&jobvsl, &jobvsr, &sort, choose_complex, &n, a, &lda, b, &ldb, &sdim, alpha, beta, vsl, &ldvsl,
              vsr, &ldvsr, work, &lwork, rwork, bwork, info, 1, 1, 1);
        });
    } else {
        c.run_lapack([&](zor_int* info) {
            f(&jobvsl, &jobvsr, &sort, choose_real, &n, a, &lda, b, &ldb, &sdim, alpha, alphai, beta, vsl,
              &ldvsl, vsr, &ldvsr, work, &lwork, bwork, info, 1, 1, 1);
        });
    }
}

// tgexc: (WANTQ, WANTZ, N, A, LDA, B, LDB, Q, LDQ, Z, LDZ, IFST, ILST, [WORK, LWORK,] INFO); 1 <=
// IFST, ILST <= N; dtgexc's LWORK at least 4 N + 16 (1 for N <= 1).
template <class T, auto f>
void tgexc(Call& c, const char* name) {
    constexpr bool complex = std::is_same_v<T, Z>;
    const zor_int wantq = c.dimension("WANTQ") & 1, wantz = c.dimension("WANTZ") & 1;
    const zor_int n = c.dimension("N"), lda = c.leading("LDA", n), ldb = c.leading("LDB", n);
    const zor_int ldq = c.leading("LDQ", n), ldz = c.leading("LDZ", n);
    zor_int ifst = c.dimension("IFST"), ilst = c.dimension("ILST");
    const std::int64_t least = n <= 1 ? 1 : 4 * std::int64_t{n} + 16;
    const zor_int lwork = complex ? 1 : c.workspace("LWORK", least);
    const bool query = !complex && lwork == -1;
    c.lapack(name, {{n < 0, 3},
                    {lda < max1(n), 5},
                    {ldb < max1(n), 7},
                    {ldq < 1 || (wantq && ldq < max1(n)), 9},
                    {ldz < 1 || (wantz && ldz < max1(n)), 11},
                    {ifst < 1 || ifst > n, 12},
                    {ilst < 1 || ilst > n, 13},
                    {!complex && lwork < least && !query, 15}});
    const Use out = query ? Use::Untouched : Use::InOut;
    T* a = c.matrix<T>("A", n, n, lda, out);
    T* b = c.matrix<T>("B", n, n, ldb, out);
    T* q = wantq ? c.matrix<T>("Q", n, n, ldq, out) : c.array<T>("Q", 1, Use::Untouched);
    T* z = wantz ? c.matrix<T>("Z", n, n, ldz, out) : c.array<T>("Z", 1, Use::Untouched);
    if constexpr (complex) {
        c.run_lapack([&](zor_int* info) {
            f(&wantq, &wantz, &n, a, &lda, b, &ldb, q, &ldq, z, &ldz, &ifst, &ilst, info);
        });
    } else {
        T* work = c.array<T>("WORK", query ? 1 : lwork, Use::InOut);
        c.run_lapack([&](zor_int* info) {
            f(&wantq, &wantz, &n, a, &lda, b, &ldb, q, &ldq, z, &ldz, &ifst, &ilst, work, &lwork, info);
        });
    }
}

// ---- auxiliaries: no argument checks ------------------------------------------------------------

void dlapy2_(Call& c) {
    const double x = c.real("X"), y = c.real("Y");
    c.unchecked();
    c.run([&] {
        const double r = dlapy2(&x, &y);
        c.require(!(std::isnan(x) || std::isnan(y)) || std::isnan(r), "NaN from a NaN argument");
    });
}

void zdrot_(Call& c) {
    const zor_int n = c.dimension("N"), incx = c.increment("INCX"), incy = c.increment("INCY");
    const double cs = c.real("C"), sn = c.real("S");
    c.unchecked(n <= 0);
    Z* x = c.vector<Z>("CX", n, incx, Use::InOut);
    Z* y = c.vector<Z>("CY", n, incy, Use::InOut);
    c.run([&] { zdrot(&n, x, &incx, y, &incy, &cs, &sn); });
}

void zrotg_fuzz(Call& c) {
    Z ca = c.complex("CA");
    const Z cb = c.complex("CB");
    double cs = 0.0;
    Z sn{};
    c.unchecked();
    c.run([&] { zrotg_(&ca, &cb, &cs, &sn); });
}

// One row per export: the name as exported, the function of its shape, its element type and the
// name it reports; the d and z forms in one row.
#define ZOR_FUZZ_EXPORT(export_name, shape, type, reported)                   \
    {                                                                         \
#export_name, [](Call & c) { shape<type, export_name>(c, reported); } \
    }
#define ZOR_FUZZ_EXPORTS(name, shape, reported) \
    ZOR_FUZZ_EXPORT(d##name, shape, D, "D" reported), ZOR_FUZZ_EXPORT(z##name, shape, Z, "Z" reported)

constexpr Export kExports[] = {
    ZOR_FUZZ_EXPORTS(getrf, getrf, "GETRF"),
    ZOR_FUZZ_EXPORTS(gesv, gesv, "GESV"),
    ZOR_FUZZ_EXPORTS(getri, getri, "GETRI"),
    ZOR_FUZZ_EXPORTS(gbsv, gbsv, "GBSV"),
    {"dgttrf", dgttrf_},
    {"dgttrs", dgttrs_},
    ZOR_FUZZ_EXPORTS(potrf, potrf, "POTRF"),
    ZOR_FUZZ_EXPORTS(posv, posv, "POSV"),
    ZOR_FUZZ_EXPORTS(potri, potrf, "POTRI"),
    ZOR_FUZZ_EXPORTS(pptrf, pptrf, "PPTRF"),
    ZOR_FUZZ_EXPORTS(pptrs, pptrs, "PPTRS"),
    ZOR_FUZZ_EXPORTS(pptri, pptrf, "PPTRI"),
    ZOR_FUZZ_EXPORTS(trtri, trtri, "TRTRI"),
    ZOR_FUZZ_EXPORTS(tptri, tptri, "TPTRI"),
    ZOR_FUZZ_EXPORTS(tptrs, tptrs, "TPTRS"),
    ZOR_FUZZ_EXPORTS(geqrf, geqrf, "GEQRF"),
    ZOR_FUZZ_EXPORTS(gelqf, gelqf, "GELQF"),
    ZOR_FUZZ_EXPORTS(geqp3, geqp3, "GEQP3"),
    ZOR_FUZZ_EXPORT(dorgqr, orgqr, D, "DORGQR"),
    ZOR_FUZZ_EXPORT(zungqr, orgqr, Z, "ZUNGQR"),
    ZOR_FUZZ_EXPORT(dorglq, orglq, D, "DORGLQ"),
    ZOR_FUZZ_EXPORT(zunglq, orglq, Z, "ZUNGLQ"),
    ZOR_FUZZ_EXPORT(dorghr, orghr, D, "DORGHR"),
    ZOR_FUZZ_EXPORT(zunghr, orghr, Z, "ZUNGHR"),
    ZOR_FUZZ_EXPORTS(gebal, gebal, "GEBAL"),
    ZOR_FUZZ_EXPORTS(gebak, gebak, "GEBAK"),
    ZOR_FUZZ_EXPORTS(gehrd, gehrd, "GEHRD"),
    ZOR_FUZZ_EXPORTS(gees, gees, "GEES "),
    ZOR_FUZZ_EXPORTS(geev, geev, "GEEV "),
    ZOR_FUZZ_EXPORTS(trexc, trexc, "TREXC"),
    ZOR_FUZZ_EXPORTS(trsyl, trsyl, "TRSYL"),
    ZOR_FUZZ_EXPORT(dsyevd, syevd, D, "DSYEVD"),
    ZOR_FUZZ_EXPORT(zheevd, syevd, Z, "ZHEEVD"),
    ZOR_FUZZ_EXPORTS(gesdd, gesdd, "GESDD"),
    {"dgelsd", dgelsd_},
    ZOR_FUZZ_EXPORTS(gghrd, gghrd, "GGHRD"),
    ZOR_FUZZ_EXPORTS(hgeqz, hgeqz, "HGEQZ"),
    ZOR_FUZZ_EXPORTS(tgevc, tgevc, "TGEVC"),
    ZOR_FUZZ_EXPORTS(ggev, ggev, "GGEV"),
    ZOR_FUZZ_EXPORTS(gges, gges, "GGES"),
    ZOR_FUZZ_EXPORTS(tgexc, tgexc, "TGEXC"),
    {"dlapy2", dlapy2_},
    {"zdrot", zdrot_},
    {"zrotg_", zrotg_fuzz},
};

#undef ZOR_FUZZ_EXPORTS
#undef ZOR_FUZZ_EXPORT

}  // namespace

std::span<const Export> lapack_exports() {
    return kExports;
}

}  // namespace zor::fuzz
