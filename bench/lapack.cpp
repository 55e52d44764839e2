// The LU and Cholesky factorisations and solvers through the Fortran-style interface: dgetrf,
// zgetrf, dpotrf, zpotrf, dgesv (one right-hand side), dgetri (from the factors) and dpptrf at
// n = 200, 1000 and 3000; the orthogonal factorizations dgeqrf, zgeqrf, dgelqf, dgeqp3 and dorgqr
// (Q from dgeqrf's reflectors) at n = 500, 1000, 2000 and 4000; the symmetric and Hermitian
// eigenproblem dsyevd and zheevd without ("-n") and with ("-v") vectors at the same orders; the
// nonsymmetric eigenproblem (dgehrd, dgeev without and with vectors, zgeev with right vectors,
// dgees with Schur vectors) at n = 250, 500, 1000 and 2000; the generalized eigenproblem (dggev with
// both sets of vectors, zggev with right vectors, dgges with Schur vectors) at n = 250, 500, 1000; the SVD by
// divide and conquer dgesdd and zgesdd (values only, "N", and the leading vectors, "S") and the least-squares
// solve dgelsd (ten right-hand sides, rcond -1) at n = 500, 1000, 2000 and on the tall 4000 x 500 (nominal
// counts: 4mn² - 4n³/3 for the reduction, twice that with vectors, four times as much for complex
// data); dgemm at all these orders as the ceiling to read them against; in GFLOP/s (the usual operation
// counts; nominal ones for the eigenproblems), single-threaded. Every call works on a fresh copy of its
// input; the time of the copy is measured alone and taken off.
//
// The peers to compare with: openblas-avx512 (OpenBLAS's own LU, Cholesky, QR and eigenproblem
// routines on its AVX-512 kernels) and reference-lapack (the reference routines on the same BLAS).

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/harness.hpp"

namespace {

using Getrf = void(const int*, const int*, double*, const int*, int*, int*);
using Potrf = void(const char*, const int*, double*, const int*, int*, std::size_t);
using Gesv = void(const int*, const int*, double*, const int*, int*, double*, const int*, int*);
using Getri = void(const int*, double*, const int*, const int*, double*, const int*, int*);
using Pptrf = void(const char*, const int*, double*, int*, std::size_t);
// dgeqrf, zgeqrf and dgelqf share this form (complex arrays as pairs of doubles).
using Geqrf = void(const int*, const int*, double*, const int*, double*, double*, const int*, int*);
using Geqp3 = void(const int*, const int*, double*, const int*, int*, double*, double*, const int*, int*);
using Orgqr = void(const int*, const int*, const int*, double*, const int*, const double*, double*,
                   const int*, int*);
// The nonsymmetric eigenproblem (complex arrays as pairs of doubles; zgeev's rwork last but one).
using Gehrd = void(const int*, const int*, const int*, double*, const int*, double*, double*, const int*,
                   int*);
using Dgeev = void(const char*, const char*, const int*, double*, const int*, double*, double*, double*,
                   const int*, double*, const int*, double*, const int*, int*, std::size_t, std::size_t);
using Zgeev = void(const char*, const char*, const int*, double*, const int*, double*, double*, const int*,
                   double*, const int*, double*, const int*, double*, int*, std::size_t, std::size_t);
using Select = int(const double*, const double*);
using Dgees = void(const char*, const char*, Select*, const int*, double*, const int*, int*, double*, double*,
                   double*, const int*, double*, const int*, int*, int*, std::size_t, std::size_t);
// dsyevd, and zheevd with its rwork (complex arrays as pairs of doubles).
using Syevd = void(const char*, const char*, const int*, double*, const int*, double*, double*, const int*,
                   int*, const int*, int*, std::size_t, std::size_t);
using Heevd = void(const char*, const char*, const int*, double*, const int*, double*, double*, const int*,
                   double*, const int*, int*, const int*, int*, std::size_t, std::size_t);
// The generalized eigenproblem (complex arrays as pairs of doubles; zggev's rwork last but one).
using Dggev = void(const char*, const char*, const int*, double*, const int*, double*, const int*, double*,
                   double*, double*, double*, const int*, double*, const int*, double*, const int*, int*,
                   std::size_t, std::size_t);
using Zggev = void(const char*, const char*, const int*, double*, const int*, double*, const int*, double*,
                   double*, double*, const int*, double*, const int*, double*, const int*, double*, int*,
                   std::size_t, std::size_t);
using Select3 = int(const double*, const double*, const double*);
using Dgges = void(const char*, const char*, const char*, Select3*, const int*, double*, const int*, double*,
                   const int*, int*, double*, double*, double*, double*, const int*, double*, const int*,
                   double*, const int*, int*, int*, std::size_t, std::size_t, std::size_t);
// dgesdd and zgesdd (complex arrays as pairs of doubles; zgesdd takes rwork before iwork), dgelsd.
using Dgesdd = void(const char*, const int*, const int*, double*, const int*, double*, double*, const int*,
                    double*, const int*, double*, const int*, int*, int*, std::size_t);
using Zgesdd = void(const char*, const int*, const int*, double*, const int*, double*, double*, const int*,
                    double*, const int*, double*, const int*, double*, int*, int*, std::size_t);
using Dgelsd = void(const int*, const int*, const int*, double*, const int*, double*, const int*, double*,
                    const double*, int*, double*, const int*, int*, int*);
// cblas_dgemm: zor exports the CBLAS level 3, not the Fortran-style dgemm.
using Dgemm = void(int, int, int, int, int, int, double, const double*, int, const double*, int, double,
                   double*, int);

// 64-byte aligned doubles.
class Array {
  public:
    explicit Array(std::size_t count)
        : count_(count), data_(static_cast<double*>(std::aligned_alloc(64, (count * 8 + 63) / 64 * 64))) {}
    ~Array() { std::free(data_); }
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    double* get() const { return data_; }
    std::size_t size() const { return count_; }
    void copy_from(const Array& other) const { std::memcpy(data_, other.data_, count_ * sizeof(double)); }

  private:
    std::size_t count_;
    double* data_;
};

// Uniform values in [-1, 1) from a fixed sequence (xorshift64*).
void fill_random(double* x, std::size_t count, std::uint64_t seed) {
    std::uint64_t state = seed;
    for (std::size_t i = 0; i < count; ++i) {
        state ^= state >> 12;
        state ^= state << 25;
        state ^= state >> 27;
        x[i] = static_cast<double>((state * 0x2545F4914F6CDD1Du) >> 11) * 0x1.0p-52 - 1.0;
    }
}

// A general matrix (doubles, or complex as pairs), or a symmetric (Hermitian) one with a dominant
// diagonal, which is positive definite.
void fill_matrix(const Array& a, int n, bool complex, bool positive_definite) {
    fill_random(a.get(), a.size(), 0x9E3779B97F4A7C15u + static_cast<std::uint64_t>(n));
    if (!positive_definite) return;
    const std::size_t s = complex ? 2 : 1, nn = static_cast<std::size_t>(n);
    for (std::size_t j = 0; j < nn; ++j) {
        for (std::size_t i = 0; i < j; ++i) {
            a.get()[s * (j + i * nn)] = a.get()[s * (i + j * nn)];
            if (complex) a.get()[s * (j + i * nn) + 1] = -a.get()[s * (i + j * nn) + 1];
        }
        a.get()[s * (j + j * nn)] = n;
        if (complex) a.get()[s * (j + j * nn) + 1] = 0.0;
    }
}

// Seconds of `call` on a fresh copy of `input` in `work`, less the copy's own time. Calls of
// seconds (`long_calls`) are timed once after the warming call.
double timed_on_copy(const Array& input, const Array& work, const std::function<void()>& call,
                     bool long_calls = false) {
    const int repeats = long_calls ? 1 : 3;
    const double with_copy = bench::seconds_per_call(
        [&] {
            work.copy_from(input);
            call();
        },
        0.05, repeats);
    const double copy = bench::seconds_per_call([&] { work.copy_from(input); });
    return with_copy - copy;
}

// The optimal workspace of a routine that answers lwork = -1 in `query(lwork, work)`.
std::vector<double> optimal_work(const std::function<void(const int*, double*)>& query, bool complex) {
    double answer[2] = {0, 0};
    const int minus_one = -1;
    query(&minus_one, answer);
    return std::vector<double>(static_cast<std::size_t>(answer[0] + 1) * (complex ? 2 : 1));
}

// The orthogonal factorizations: A = Q R (dgeqrf, zgeqrf), A = L Q (dgelqf), A P = Q R (dgeqp3),
// and Q from dgeqrf's reflectors (dorgqr), square.
double measure_orthogonal(const bench::Library& library, const std::string& routine, int n) {
    const bool complex = routine[0] == 'z';
    const std::size_t nn = static_cast<std::size_t>(n) * n * (complex ? 2 : 1);
    const bool long_calls = static_cast<double>(n) * n * n * (complex ? 4 : 1) > 3e9;
    std::vector<double> tau(static_cast<std::size_t>(n) * 2);
    int info = 0;
    Array a(nn), w(nn);
    fill_random(a.get(), nn, 0x51ED2701u + static_cast<std::uint64_t>(n));
    if (routine == "dgeqrf" || routine == "zgeqrf" || routine == "dgelqf") {
        auto* f = library.function<Geqrf>(routine == "dgelqf" ? "dgelqf_" : complex ? "zgeqrf_" : "dgeqrf_");
        if (!f) return -1;
        std::vector<double> work =
            optimal_work([&](const int* lwork,
                             double* answer) { f(&n, &n, w.get(), &n, tau.data(), answer, lwork, &info); },
                         complex);
        const int lwork = static_cast<int>(work.size() / (complex ? 2 : 1));
        return timed_on_copy(
            a, w, [&] { f(&n, &n, w.get(), &n, tau.data(), work.data(), &lwork, &info); }, long_calls);
    }
    if (routine == "dgeqp3") {
        auto* f = library.function<Geqp3>("dgeqp3_");
        if (!f) return -1;
        std::vector<int> jpvt(static_cast<std::size_t>(n));
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&n, &n, w.get(), &n, jpvt.data(), tau.data(), answer, lwork, &info);
            },
            false);
        const int lwork = static_cast<int>(work.size());
        // Every column free: the pivots are cleared with each fresh copy (a cost next to nothing).
        return timed_on_copy(
            a, w,
            [&] {
                std::memset(jpvt.data(), 0, jpvt.size() * sizeof(int));
                f(&n, &n, w.get(), &n, jpvt.data(), tau.data(), work.data(), &lwork, &info);
            },
            long_calls);
    }
    if (routine == "dorgqr") {
        auto* geqrf = library.function<Geqrf>("dgeqrf_");
        auto* f = library.function<Orgqr>("dorgqr_");
        if (!f || !geqrf) return -1;
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                geqrf(&n, &n, a.get(), &n, tau.data(), answer, lwork, &info);
                const int generate_query = -1;
                double generate_answer[2] = {0, 0};
                f(&n, &n, &n, a.get(), &n, tau.data(), generate_answer, &generate_query, &info);
                answer[0] = std::max(answer[0], generate_answer[0]);
            },
            false);
        const int lwork = static_cast<int>(work.size());
        geqrf(&n, &n, a.get(), &n, tau.data(), work.data(), &lwork, &info);
        return timed_on_copy(
            a, w, [&] { f(&n, &n, &n, w.get(), &n, tau.data(), work.data(), &lwork, &info); }, long_calls);
    }
    return -1;
}

// The nonsymmetric eigenproblem on a random square matrix, with the optimal workspace: dgehrd (the
// whole matrix), dgeev without vectors (dgeev-nn) and with both (dgeev-vv), zgeev with right
// vectors (zgeev-nv), dgees with Schur vectors, unsorted (dgees-v).
double measure_eigen(const bench::Library& library, const std::string& routine, int n) {
    const bool complex = routine[0] == 'z';
    const std::size_t nn = static_cast<std::size_t>(n) * n * (complex ? 2 : 1);
    const bool long_calls = static_cast<double>(n) * n * n * (complex ? 4 : 1) > 3e8;
    Array a(nn), w(nn);
    fill_random(a.get(), nn, 0xE16E7u + static_cast<std::uint64_t>(n));
    std::vector<double> wr(static_cast<std::size_t>(2 * n)), wi(static_cast<std::size_t>(n));
    std::vector<double> v1(nn), v2(nn), rwork(static_cast<std::size_t>(2 * n));
    int info = 0;
    const int one = 1, ilo = 1;
    if (routine == "dgehrd") {
        auto* f = library.function<Gehrd>("dgehrd_");
        if (!f) return -1;
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&n, &ilo, &n, w.get(), &n, wr.data(), answer, lwork, &info);
            },
            false);
        const int lwork = static_cast<int>(work.size());
        return timed_on_copy(
            a, w, [&] { f(&n, &ilo, &n, w.get(), &n, wr.data(), work.data(), &lwork, &info); }, long_calls);
    }
    if (routine == "dgeev-nn" || routine == "dgeev-vv") {
        auto* f = library.function<Dgeev>("dgeev_");
        if (!f) return -1;
        const char job = routine == "dgeev-vv" ? 'V' : 'N';
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&job, &job, &n, w.get(), &n, wr.data(), wi.data(), v1.data(), &n, v2.data(), &n, answer,
                  lwork, &info, 1, 1);
            },
            false);
        const int lwork = static_cast<int>(work.size());
        return timed_on_copy(
            a, w,
            [&] {
                f(&job, &job, &n, w.get(), &n, wr.data(), wi.data(), v1.data(), &n, v2.data(), &n,
                  work.data(), &lwork, &info, 1, 1);
            },
            long_calls);
    }
    if (routine == "zgeev-nv") {
        auto* f = library.function<Zgeev>("zgeev_");
        if (!f) return -1;
        const char no = 'N', yes = 'V';
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&no, &yes, &n, w.get(), &n, wr.data(), v1.data(), &one, v2.data(), &n, answer, lwork,
                  rwork.data(), &info, 1, 1);
            },
            true);
        const int lwork = static_cast<int>(work.size() / 2);
        return timed_on_copy(
            a, w,
            [&] {
                f(&no, &yes, &n, w.get(), &n, wr.data(), v1.data(), &one, v2.data(), &n, work.data(), &lwork,
                  rwork.data(), &info, 1, 1);
            },
            long_calls);
    }
    if (routine == "dgees-v") {
        auto* f = library.function<Dgees>("dgees_");
        if (!f) return -1;
        const char yes = 'V', no = 'N';
        int sdim = 0, bwork = 0;
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&yes, &no, nullptr, &n, w.get(), &n, &sdim, wr.data(), wi.data(), v1.data(), &n, answer,
                  lwork, &bwork, &info, 1, 1);
            },
            false);
        const int lwork = static_cast<int>(work.size());
        return timed_on_copy(
            a, w,
            [&] {
                f(&yes, &no, nullptr, &n, w.get(), &n, &sdim, wr.data(), wi.data(), v1.data(), &n,
                  work.data(), &lwork, &bwork, &info, 1, 1);
            },
            long_calls);
    }
    return -1;
}

// The generalized eigenproblem on a random pencil (A, B), with the optimal workspace: dggev with
// both sets of vectors (dggev-vv), zggev with right vectors (zggev-nv), dgges with both sets of
// Schur vectors, unsorted (dgges-v). A and B are copied afresh for every call.
double measure_generalized(const bench::Library& library, const std::string& routine, int n) {
    const bool complex = routine[0] == 'z';
    const std::size_t nn = static_cast<std::size_t>(n) * n * (complex ? 2 : 1);
    const bool long_calls = static_cast<double>(n) * n * n * (complex ? 4 : 1) > 1e8;
    // A and B side by side in one array, so that one copy restores both.
    Array ab(2 * nn), w(2 * nn);
    fill_random(ab.get(), 2 * nn, 0x6E6E7u + static_cast<std::uint64_t>(n));
    double* a = w.get();
    double* b = w.get() + nn;
    std::vector<double> alpha(static_cast<std::size_t>(2 * n)), alphai(static_cast<std::size_t>(n)),
        beta(static_cast<std::size_t>(2 * n)), v1(nn), v2(nn), rwork(static_cast<std::size_t>(8 * n));
    int info = 0;
    const int one = 1;
    const char yes = 'V', no = 'N';
    if (routine == "dggev-vv") {
        auto* f = library.function<Dggev>("dggev_");
        if (!f) return -1;
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&yes, &yes, &n, a, &n, b, &n, alpha.data(), alphai.data(), beta.data(), v1.data(), &n,
                  v2.data(), &n, answer, lwork, &info, 1, 1);
            },
            false);
        const int lwork = static_cast<int>(work.size());
        return timed_on_copy(
            ab, w,
            [&] {
                f(&yes, &yes, &n, a, &n, b, &n, alpha.data(), alphai.data(), beta.data(), v1.data(), &n,
                  v2.data(), &n, work.data(), &lwork, &info, 1, 1);
            },
            long_calls);
    }
    if (routine == "zggev-nv") {
        auto* f = library.function<Zggev>("zggev_");
        if (!f) return -1;
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&no, &yes, &n, a, &n, b, &n, alpha.data(), beta.data(), v1.data(), &one, v2.data(), &n,
                  answer, lwork, rwork.data(), &info, 1, 1);
            },
            true);
        const int lwork = static_cast<int>(work.size() / 2);
        return timed_on_copy(
            ab, w,
            [&] {
                f(&no, &yes, &n, a, &n, b, &n, alpha.data(), beta.data(), v1.data(), &one, v2.data(), &n,
                  work.data(), &lwork, rwork.data(), &info, 1, 1);
            },
            long_calls);
    }
    if (routine == "dgges-v") {
        auto* f = library.function<Dgges>("dgges_");
        if (!f) return -1;
        int sdim = 0, bwork = 0;
        std::vector<double> work = optimal_work(
            [&](const int* lwork, double* answer) {
                f(&yes, &yes, &no, nullptr, &n, a, &n, b, &n, &sdim, alpha.data(), alphai.data(), beta.data(),
                  v1.data(), &n, v2.data(), &n, answer, lwork, &bwork, &info, 1, 1, 1);
            },
            false);
        const int lwork = static_cast<int>(work.size());
        return timed_on_copy(
            ab, w,
            [&] {
                f(&yes, &yes, &no, nullptr, &n, a, &n, b, &n, &sdim, alpha.data(), alphai.data(), beta.data(),
                  v1.data(), &n, v2.data(), &n, work.data(), &lwork, &bwork, &info, 1, 1, 1);
            },
            long_calls);
    }
    return -1;
}

// The eigenvalues (routine "dsyevd-n", "zheevd-n") or eigenvalues and vectors ("-v") of a random
// symmetric (Hermitian) matrix, lower triangle, with the optimal workspaces the library answers.
double measure_symmetric(const bench::Library& library, const std::string& routine, int n) {
    const bool complex = routine[0] == 'z';
    const char jobz = routine.back() == 'v' ? 'V' : 'N', lower = 'L';
    const std::size_t nn = static_cast<std::size_t>(n) * n * (complex ? 2 : 1);
    Array a(nn), w(nn);
    fill_random(a.get(), nn, 0x5EED0000u + static_cast<std::uint64_t>(n));
    std::vector<double> values(static_cast<std::size_t>(n));
    int info = 0, liwork = -1, lwork = -1, lrwork = -1;
    double work_size[2] = {0, 0}, rwork_size = 0;
    int iwork_size = 0;
    auto* syevd = library.function<Syevd>("dsyevd_");
    auto* heevd = library.function<Heevd>("zheevd_");
    if (complex ? !heevd : !syevd) return -1;
    if (complex) {
        heevd(&jobz, &lower, &n, w.get(), &n, values.data(), work_size, &lwork, &rwork_size, &lrwork,
              &iwork_size, &liwork, &info, 1, 1);
    } else {
        syevd(&jobz, &lower, &n, w.get(), &n, values.data(), work_size, &lwork, &iwork_size, &liwork, &info,
              1, 1);
    }
    lwork = static_cast<int>(work_size[0]);
    lrwork = std::max(1, static_cast<int>(rwork_size));
    liwork = std::max(1, iwork_size);
    std::vector<double> work(static_cast<std::size_t>(lwork) * (complex ? 2 : 1)), rwork(lrwork);
    std::vector<int> iwork(static_cast<std::size_t>(liwork));
    const bool long_calls = static_cast<double>(n) * n * n * (complex ? 4 : 1) > 3e9;
    return timed_on_copy(
        a, w,
        [&] {
            if (complex) {
                heevd(&jobz, &lower, &n, w.get(), &n, values.data(), work.data(), &lwork, rwork.data(),
                      &lrwork, iwork.data(), &liwork, &info, 1, 1);
            } else {
                syevd(&jobz, &lower, &n, w.get(), &n, values.data(), work.data(), &lwork, iwork.data(),
                      &liwork, &info, 1, 1);
            }
        },
        long_calls);
}

// The SVD (jobz "N" or "S") and the least-squares solve on an m by n matrix.
double measure_svd(const bench::Library& library, const std::string& routine, char jobz, int m, int n) {
    const bool complex = routine[0] == 'z';
    const int k = std::min(m, n), x = std::max(m, n);
    const std::size_t s = complex ? 2 : 1, mn = static_cast<std::size_t>(m) * n;
    const bool long_calls = static_cast<double>(m) * n * k * (complex ? 4 : 1) > 1e9;
    std::vector<double> sv(static_cast<std::size_t>(k)), u(s * m * k), vt(s * k * n);
    std::vector<int> iwork(static_cast<std::size_t>(8 * k + 32 * k));
    int info = 0;
    const int minus_one = -1;
    if (routine == "dgelsd") {
        auto* f = library.function<Dgelsd>("dgelsd_");
        if (!f) return -1;
        const int nrhs = 10, ldb = x;
        const double rcond = -1;
        int rank = 0;
        Array a(mn + static_cast<std::size_t>(ldb) * nrhs), w(a.size());  // A, then B
        fill_random(a.get(), a.size(), 0x5EED + static_cast<std::uint64_t>(m + n));
        double query = 0;
        f(&m, &n, &nrhs, w.get(), &m, w.get() + mn, &ldb, sv.data(), &rcond, &rank, &query, &minus_one,
          iwork.data(), &info);
        std::vector<double> work(static_cast<std::size_t>(query) + 1);
        iwork.resize(static_cast<std::size_t>(std::max(iwork[0], 1)));
        const int lwork = static_cast<int>(work.size());
        return timed_on_copy(
            a, w,
            [&] {
                f(&m, &n, &nrhs, w.get(), &m, w.get() + mn, &ldb, sv.data(), &rcond, &rank, work.data(),
                  &lwork, iwork.data(), &info);
            },
            long_calls);
    }
    Array a(s * mn), w(s * mn);
    fill_random(a.get(), a.size(), 0xD1CE + static_cast<std::uint64_t>(m + n));
    const char job[2] = {jobz, 0};
    if (complex) {
        auto* f = library.function<Zgesdd>("zgesdd_");
        if (!f) return -1;
        std::vector<double> rwork(
            static_cast<std::size_t>(std::max(5 * k * k + 5 * k, 2 * x * k + 2 * k * k + k)));
        double query[2] = {0, 0};
        f(job, &m, &n, w.get(), &m, sv.data(), u.data(), &m, vt.data(), &k, query, &minus_one, rwork.data(),
          iwork.data(), &info, 1);
        std::vector<double> work(2 * (static_cast<std::size_t>(query[0]) + 1));
        const int lwork = static_cast<int>(work.size() / 2);
        return timed_on_copy(
            a, w,
            [&] {
                f(job, &m, &n, w.get(), &m, sv.data(), u.data(), &m, vt.data(), &k, work.data(), &lwork,
                  rwork.data(), iwork.data(), &info, 1);
            },
            long_calls);
    }
    auto* f = library.function<Dgesdd>("dgesdd_");
    if (!f) return -1;
    double query = 0;
    f(job, &m, &n, w.get(), &m, sv.data(), u.data(), &m, vt.data(), &k, &query, &minus_one, iwork.data(),
      &info, 1);
    std::vector<double> work(static_cast<std::size_t>(query) + 1);
    const int lwork = static_cast<int>(work.size());
    return timed_on_copy(
        a, w,
        [&] {
            f(job, &m, &n, w.get(), &m, sv.data(), u.data(), &m, vt.data(), &k, work.data(), &lwork,
              iwork.data(), &info, 1);
        },
        long_calls);
}

double measure(const bench::Library& library, const std::string& routine, int n) {
    if (routine.rfind("dsyevd", 0) == 0 || routine.rfind("zheevd", 0) == 0)
        return measure_symmetric(library, routine, n);
    if (routine == "dgehrd" || routine == "dgeev-nn" || routine == "dgeev-vv" || routine == "zgeev-nv" ||
        routine == "dgees-v")
        return measure_eigen(library, routine, n);
    if (routine == "dggev-vv" || routine == "zggev-nv" || routine == "dgges-v")
        return measure_generalized(library, routine, n);
    if (routine == "dgeqrf" || routine == "zgeqrf" || routine == "dgelqf" || routine == "dgeqp3" ||
        routine == "dorgqr")
        return measure_orthogonal(library, routine, n);
    const bool complex = routine[0] == 'z';
    const std::size_t nn = static_cast<std::size_t>(n) * n * (complex ? 2 : 1);
    std::vector<int> ipiv(static_cast<std::size_t>(n));
    int info = 0;
    const char lower = 'L';
    if (routine == "dgetrf" || routine == "zgetrf") {
        auto* f = library.function<Getrf>(complex ? "zgetrf_" : "dgetrf_");
        if (!f) return -1;
        Array a(nn), w(nn);
        fill_matrix(a, n, complex, false);
        return timed_on_copy(a, w, [&] { f(&n, &n, w.get(), &n, ipiv.data(), &info); });
    }
    if (routine == "dpotrf" || routine == "zpotrf") {
        auto* f = library.function<Potrf>(complex ? "zpotrf_" : "dpotrf_");
        if (!f) return -1;
        Array a(nn), w(nn);
        fill_matrix(a, n, complex, true);
        return timed_on_copy(a, w, [&] { f(&lower, &n, w.get(), &n, &info, 1); });
    }
    if (routine == "dgesv") {
        auto* f = library.function<Gesv>("dgesv_");
        if (!f) return -1;
        Array a(nn + n), w(nn + n);  // the matrix, then the right-hand side
        fill_matrix(a, n, false, false);
        const int one = 1;
        return timed_on_copy(a, w, [&] { f(&n, &one, w.get(), &n, ipiv.data(), w.get() + nn, &n, &info); });
    }
    if (routine == "dgetri") {
        auto* getrf = library.function<Getrf>("dgetrf_");
        auto* f = library.function<Getri>("dgetri_");
        if (!f || !getrf) return -1;
        Array a(nn), w(nn);
        fill_matrix(a, n, false, false);
        getrf(&n, &n, a.get(), &n, ipiv.data(), &info);
        double query = 0;
        const int minus_one = -1;
        f(&n, a.get(), &n, ipiv.data(), &query, &minus_one, &info);
        const int lwork = static_cast<int>(query);
        std::vector<double> work(static_cast<std::size_t>(lwork));
        return timed_on_copy(a, w, [&] { f(&n, w.get(), &n, ipiv.data(), work.data(), &lwork, &info); });
    }
    if (routine == "dpptrf") {
        auto* f = library.function<Pptrf>("dpptrf_");
        if (!f) return -1;
        Array full(nn), a(static_cast<std::size_t>(n) * (n + 1) / 2), w(a.size());
        fill_matrix(full, n, false, true);
        std::size_t p = 0;
        for (int j = 0; j < n; ++j) {
            for (int i = j; i < n; ++i) a.get()[p++] = full.get()[i + static_cast<std::size_t>(j) * n];
        }
        return timed_on_copy(a, w, [&] { f(&lower, &n, w.get(), &info, 1); });
    }
    if (routine == "dgemm") {
        auto* f = library.function<Dgemm>("cblas_dgemm");
        if (!f) return -1;
        Array a(nn), b(nn), c(nn);
        fill_random(a.get(), nn, 1);
        fill_random(b.get(), nn, 2);
        fill_random(c.get(), nn, 3);
        const double one = 1.0;
        constexpr int kColMajor = 102, kNoTrans = 111;  // the CBLAS enumeration values
        return bench::seconds_per_call(
            [&] { f(kColMajor, kNoTrans, kNoTrans, n, n, n, one, a.get(), n, b.get(), n, one, c.get(), n); });
    }
    return -1;
}

double flops(const std::string& routine, double n) {
    const double cube = n * n * n;
    if (routine == "dgetrf") return 2 * cube / 3;
    if (routine == "zgetrf") return 8 * cube / 3;
    if (routine == "dpotrf" || routine == "dpptrf") return cube / 3;
    if (routine == "zpotrf") return 4 * cube / 3;
    if (routine == "dgesv") return 2 * cube / 3 + 2 * n * n;
    if (routine == "dgetri") return 4 * cube / 3;
    if (routine == "dgeqrf" || routine == "dgelqf" || routine == "dgeqp3" || routine == "dorgqr")
        return 4 * cube / 3;
    if (routine == "zgeqrf") return 16 * cube / 3;
    // The customary counts of the eigenproblem: the Hessenberg reduction, eigenvalues only, with
    // both sets of vectors, the Schur form with Schur vectors (complex: four times the real count).
    if (routine == "dgehrd") return 10 * cube / 3;
    if (routine == "dgeev-nn") return 10 * cube;
    if (routine == "dgeev-vv") return 26.33 * cube;
    if (routine == "zgeev-nv") return 4 * 26.33 * cube;
    if (routine == "dgees-v") return 25 * cube;
    // The generalized eigenproblem, nominal: the QZ reduction and iteration with both Q and Z,
    // 66 n³ (complex: four times that; zggev-nv forms Z only, counted the same).
    if (routine == "dggev-vv" || routine == "dgges-v") return 66 * cube;
    if (routine == "zggev-nv") return 4 * 66 * cube;
    // The eigenproblem: the reduction (4/3 n³), and with vectors the product with its Q (2 n³); the
    // divide-and-conquer merges, which depend on the deflation, are not counted.
    if (routine == "dsyevd-n") return 4 * cube / 3;
    if (routine == "dsyevd-v") return 10 * cube / 3;
    if (routine == "zheevd-n") return 16 * cube / 3;
    if (routine == "zheevd-v") return 40 * cube / 3;
    return 2 * cube;  // dgemm
}

const char* const kRoutines[] = {"dgetrf", "zgetrf", "dpotrf", "zpotrf",
                                 "dgesv",  "dgetri", "dpptrf", "dgemm"};
const char* const kOrthogonal[] = {"dgeqrf", "zgeqrf", "dgelqf", "dgeqp3", "dorgqr", "dgemm"};
const char* const kEigen[] = {"dgehrd", "dgeev-nn", "dgeev-vv", "zgeev-nv", "dgees-v"};
const char* const kSymmetric[] = {"dsyevd-n", "dsyevd-v", "zheevd-n", "zheevd-v"};
const char* const kGeneralized[] = {"dggev-vv", "zggev-nv", "dgges-v"};

// The SVD cases: routine and jobz as the case's first word ("dgesdd-S").
const char* const kSvd[] = {"dgesdd-N", "dgesdd-S", "zgesdd-N", "zgesdd-S", "dgelsd"};

double svd_flops(const std::string& name, double m, double n) {
    const double reduction = 4 * m * n * n - 4 * n * n * n / 3;
    const double vectors = name.find("-S") != std::string::npos ? 2 : 1;
    return reduction * vectors * (name[0] == 'z' ? 4 : 1);
}

}  // namespace

int main(int argc, char** argv) {
    bench::Benchmark benchmark;
    benchmark.title = "LU, Cholesky, QR, the eigenproblems and the SVD, column-major, GFLOP/s";
    benchmark.metric = bench::Metric::GflopsPerSecond;
    for (const char* routine : kRoutines) {
        for (const int n : {200, 1000, 3000}) {
            benchmark.cases.push_back({std::string(routine) + " n=" + std::to_string(n), flops(routine, n)});
        }
    }
    for (const char* routine : kOrthogonal) {
        for (const int n : {500, 1000, 2000, 4000}) {
            // dgemm at 1000 is in the list already.
            if (std::string(routine) == "dgemm" && n == 1000) continue;
            benchmark.cases.push_back({std::string(routine) + " n=" + std::to_string(n), flops(routine, n)});
        }
    }
    for (const char* routine : kSymmetric) {
        for (const int n : {500, 1000, 2000, 4000}) {
            benchmark.cases.push_back({std::string(routine) + " n=" + std::to_string(n), flops(routine, n)});
        }
    }
    for (const char* routine : kEigen) {
        for (const int n : {250, 500, 1000, 2000}) {
            benchmark.cases.push_back({std::string(routine) + " n=" + std::to_string(n), flops(routine, n)});
        }
    }
    for (const char* routine : kGeneralized) {
        for (const int n : {250, 500, 1000}) {
            benchmark.cases.push_back({std::string(routine) + " n=" + std::to_string(n), flops(routine, n)});
        }
    }
    for (const char* routine : kSvd) {
        for (const auto& [m, n] :
             {std::pair{500, 500}, std::pair{1000, 1000}, std::pair{2000, 2000}, std::pair{4000, 500}}) {
            benchmark.cases.push_back(
                {std::string(routine) + " " + std::to_string(m) + "x" + std::to_string(n),
                 svd_flops(routine, m, n)});
        }
    }
    benchmark.measure = [](const bench::Library& library, const bench::Case& c) {
        const std::string routine = c.name.substr(0, c.name.find(' '));
        if (routine.rfind("dgesdd", 0) == 0 || routine.rfind("zgesdd", 0) == 0 || routine == "dgelsd") {
            const std::size_t x = c.name.find('x', c.name.find(' '));
            const int m = std::atoi(c.name.c_str() + c.name.find(' ') + 1),
                      n = std::atoi(c.name.c_str() + x + 1);
            const char jobz = routine.size() > 7 ? routine[7] : 'N';
            return measure_svd(library, routine.substr(0, 6), jobz, m, n);
        }
        return measure(library, routine, std::atoi(c.name.c_str() + c.name.find('=') + 1));
    };
    return bench::run(argc, argv, benchmark);
}
