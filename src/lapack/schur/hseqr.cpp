// hseqr: the Schur factorization of a Hessenberg matrix. Small matrices go to lahqr, larger ones
// to the multishift QR of laqr0; when lahqr fails on a small matrix (rarely), laqr0 gets a second
// try on what is left, on a copy padded to the order that gives it scratch room below the
// subdiagonal.

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/schur/schur_support.hpp"

namespace zor {

namespace {

constexpr zint kTiny = 15;    // laqr0 needs at least this order
constexpr zint kPadded = 49;  // the order of the copy that a second try of a small matrix runs on

}  // namespace

template <class T>
zint check_hseqr(char job, char compz, zint n, zint ilo, zint ihi, zint ldh, zint ldz, zint lwork) {
    const bool wantz = lsame(compz, 'I') || lsame(compz, 'V');
    return check_arguments(routine_name<T>("DHSEQR", "ZHSEQR"),
                           {{!lsame(job, 'E') && !lsame(job, 'S'), 1},
                            {!lsame(compz, 'N') && !wantz, 2},
                            {n < 0, 3},
                            {ilo < 1 || ilo > max_of(1, n), 4},
                            {ihi < min_of(ilo, n) || ihi > n, 5},
                            {ldh < max_of(1, n), 7},
                            {ldz < 1 || (wantz && ldz < max_of(1, n)), 11},
                            {lwork != -1 && lwork < hseqr_workspace(n), 13}});
}

template <class T>
void hseqr(char job, char compz, zint n, zint ilo, zint ihi, T* hp, zint ldh, Eigenvalues<T> w, T* z,
           zint ldz, T* work, zint lwork, zint& info) {
    info = check_hseqr<T>(job, compz, n, ilo, ihi, ldh, ldz, lwork);
    if (info != 0) return;
    work[0] = from_real<T>(static_cast<double>(hseqr_workspace(n)));
    if (n == 0 || lwork == -1) return;
    const bool wantt = lsame(job, 'S'), initz = lsame(compz, 'I'), wantz = initz || lsame(compz, 'V');
    const OneBased<T> h{hp, ldh};
    const auto diagonal = [&](zint i) { return zcomplex{real(h(i, i)), imag(h(i, i))}; };
    // The eigenvalues balancing isolated.
    for (zint i = 1; i < ilo; ++i) w.set(i - 1, diagonal(i));
    for (zint i = ihi + 1; i <= n; ++i) w.set(i - 1, diagonal(i));
    if (initz) laset('A', n, n, zero<T>(), one<T>(), z, ldz);
    if (ilo == ihi) {
        w.set(ilo - 1, diagonal(ilo));
        return;
    }
    const char jobs[2] = {job, compz};
    const zint nmin =
        max_of(kTiny, ilaenv(12, routine_name<T>("DHSEQR", "ZHSEQR"), jobs, n, ilo, ihi, lwork, 6, 2));
    if (n > nmin) {
        laqr0(wantt, wantz, n, ilo, ihi, hp, ldh, w, ilo, ihi, z, ldz, work, lwork, info);
    } else {
        lahqr(wantt, wantz, n, ilo, ihi, hp, ldh, w, ilo, ihi, z, ldz, info);
        if (info > 0) {
            const zint kbot = info;
            if (n >= kPadded) {
                laqr0(wantt, wantz, n, ilo, kbot, hp, ldh, w, ilo, ihi, z, ldz, work, lwork, info);
            } else {
                T padded[kPadded * kPadded];
                T padded_work[kPadded];
                laset('A', kPadded, kPadded, zero<T>(), zero<T>(), padded, kPadded);
                lacpy('A', n, n, hp, ldh, padded, kPadded);
                laqr0(wantt, wantz, kPadded, ilo, kbot, padded, kPadded, w, ilo, ihi, z, ldz, padded_work,
                      kPadded, info);
                if (wantt || info != 0) lacpy('A', n, n, padded, kPadded, hp, ldh);
            }
        }
    }
    // What the routines left below the first subdiagonal.
    if ((wantt || info != 0) && n > 2) laset('L', n - 2, n - 2, zero<T>(), zero<T>(), h.at(3, 1), ldh);
}

}  // namespace zor

ZOR_INSTANTIATE(hseqr)
ZOR_INSTANTIATE(check_hseqr)
