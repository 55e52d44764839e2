// stedc: the eigenvalues and eigenvectors of a symmetric tridiagonal matrix by divide and conquer.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/tridiagonal.hpp"
#include "lapack/condensed/tridiagonal_steps.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

enum class Vectors { None, Update, Identity, Invalid };

Vectors vectors_of(char compz) {
    if (lsame(compz, 'N')) return Vectors::None;
    if (lsame(compz, 'V')) return Vectors::Update;
    if (lsame(compz, 'I')) return Vectors::Identity;
    return Vectors::Invalid;
}

// The workspace: the published minimal sizes, which the query answers and the routine needs, and
// how "V" carves its part. "V" is computed as "I" into an n by n block at the front of work,
// followed by one product with the given Z; the "I" solve gets the rest of work and, once it is
// done, that rest holds the copy of Z the product reads. Its needs, n² + (1 + 4n + n²) doubles and
// 3 + 5n integers, are within the published sizes for "V".
struct Workspace {
    zint lwork = 1;
    zint liwork = 1;
    zint identity_work = 0;  // "V": where the "I" solve's work starts
};

Workspace workspace_of(Vectors vectors, zint n, zint leaf) {
    Workspace w;
    if (n <= 1 || vectors == Vectors::None) return w;
    if (n <= leaf) {
        w.lwork = 2 * (n - 1);
        return w;
    }
    zint lgn = 0;  // ⌈log₂ n⌉
    while ((zint{1} << lgn) < n) ++lgn;
    if (vectors == Vectors::Update) {
        w.lwork = 1 + 3 * n + 2 * n * lgn + 4 * n * n;
        w.liwork = 6 + 6 * n + 5 * n * lgn;
        w.identity_work = n * n;
    } else {
        w.lwork = 1 + 4 * n + n * n;
        w.liwork = 3 + 5 * n;
    }
    return w;
}

// "I" for n above the leaf size: Z := the eigenvectors, by independent blocks (where e is
// negligible), each scaled to norm one and solved by the tree (laed0) or, when small, by steqr.
// work: 1 + 4n + n², iwork: 3 + 5n.
void solve_identity(zint n, double* d, double* e, double* z, zint ldz, double* work, zint* iwork, zint leaf,
                    zint& info) {
    laset('A', n, n, 0.0, 1.0, z, ldz);
    if (lanst('M', n, d, e) == 0.0) return;
    const double eps = dlamch("E");
    const double overflow = dlamch("O");
    for (zint start = 0; start < n;) {
        // The block ends at the first negligible off-diagonal element; a NaN one does not end it,
        // so that a NaN anywhere in a block is seen by its norm.
        zint finish = start;
        while (finish + 1 < n && !(std::fabs(e[finish]) <= eps * std::sqrt(std::fabs(d[finish])) *
                                                               std::sqrt(std::fabs(d[finish + 1]))))
            ++finish;
        const zint m = finish - start + 1;
        const zint block = start;
        start = finish + 1;
        if (m == 1) continue;
        const auto failed = [&] { info = (block + 1) * (n + 1) + finish + 1; };
        double* const zb = z + block + block * ldz;
        if (m > leaf) {
            const double norm = lanst('M', m, d + block, e + block);
            // An infinite or NaN entry: no eigenvalue of the block can be computed.
            if (!(norm <= overflow)) return failed();
            zint scale_info = 0;
            lascl('G', 0, 0, norm, 1.0, m, 1, d + block, m, scale_info);
            lascl('G', 0, 0, norm, 1.0, m - 1, 1, e + block, m - 1, scale_info);
            laed0(m, d + block, e + block, zb, ldz, work, iwork, info);
            if (info != 0) {
                // laed0 names rows of the block; shift them to rows of T.
                info = (info / (m + 1) + block) * (n + 1) + info % (m + 1) + block;
                return;
            }
            lascl('G', 0, 0, 1.0, norm, m, 1, d + block, m, scale_info);
        } else {
            steqr('I', m, d + block, e + block, zb, ldz, work, info);
            if (info != 0) return failed();
        }
    }
    sort_with_vectors(n, d, z, ldz);
}

}  // namespace

void stedc(char compz, zint n, double* d, double* e, double* z, zint ldz, double* work, zint lwork,
           zint* iwork, zint liwork, zint& info) {
    const bool query = lwork == -1 || liwork == -1;
    const Vectors vectors = vectors_of(compz);
    const bool with_vectors = vectors == Vectors::Update || vectors == Vectors::Identity;
    const zint leaf = ilaenv(9, "DSTEDC", " ", 0, 0, 0, 0);
    const bool valid =
        vectors != Vectors::Invalid && n >= 0 && ldz >= 1 && (!with_vectors || ldz >= max_of(1, n));
    const Workspace need = valid ? workspace_of(vectors, n, leaf) : Workspace{};
    if (valid) {
        work[0] = static_cast<double>(need.lwork);
        iwork[0] = need.liwork;
    }
    info = check_arguments("DSTEDC", {{vectors == Vectors::Invalid, 1},
                                      {n < 0, 2},
                                      {ldz < 1 || (with_vectors && ldz < max_of(1, n)), 6},
                                      {!query && lwork < need.lwork, 8},
                                      {!query && liwork < need.liwork, 10}});
    if (info != 0 || query || n == 0) return;
    if (n == 1) {
        if (with_vectors) z[0] = 1.0;
        return;
    }

    if (vectors == Vectors::None) {
        sterf(n, d, e, info);
    } else if (n <= leaf) {
        steqr(compz, n, d, e, z, ldz, work, info);
    } else if (vectors == Vectors::Identity) {
        solve_identity(n, d, e, z, ldz, work, iwork, leaf, info);
    } else {
        double* const w = work;
        double* const rest = work + need.identity_work;
        solve_identity(n, d, e, w, n, rest, iwork, leaf, info);
        if (info == 0) {
            lacpy('A', n, n, z, ldz, rest, n);
            dgemm('N', 'N', n, n, n, 1.0, rest, n, w, n, 0.0, z, ldz);
        }
    }
    work[0] = static_cast<double>(need.lwork);
    iwork[0] = need.liwork;
}

}  // namespace zor
