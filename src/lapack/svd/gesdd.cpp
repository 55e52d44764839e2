// gesdd: the SVD by divide and conquer. A is reduced to bidiagonal form (after a QR or LQ
// factorization when it is much taller or wider than square: the crossover is ilaenv's query 6),
// bdsdc computes the singular values and vectors of the bidiagonal matrix (in real arithmetic for
// complex data), and the vectors are carried back through the reflectors of the reduction.
//
// One planning function answers the workspace query and carves the work array, so the two agree:
// per path it gives the published minimal lwork, the optimal one and, for the paths that overwrite
// A with vectors, how many rows (columns) of the final product fit the workspace at once.
// Real data keep the superdiagonal and bdsdc's work in work; complex data keep them, and the real
// singular vectors of the bidiagonal matrix, in rwork:
//     rwork: e (k) | U of B (k²) | Vᵀ of B (k²) | bdsdc's work (3k² + 4k; 4k without vectors)
// and copy the vectors into complex storage for the products with Q and P, or multiply by them in
// real arithmetic (lacrm, larcm) where the workspace is short.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/condensed/bidiagonal.hpp"
#include "lapack/lapack.hpp"
#include "lapack/qr/qr.hpp"
#include "lapack/svd/scaling.hpp"
#include "lapack/svd/svd.hpp"

namespace zor {

namespace {

enum class Job { None, Overwrite, Some, All };

Job job_of(char jobz) {
    if (lsame(jobz, 'N')) return Job::None;
    if (lsame(jobz, 'O')) return Job::Overwrite;
    if (lsame(jobz, 'S')) return Job::Some;
    return Job::All;
}

struct GesddPlan {
    bool factor_first;  // a QR (tall) or LQ (wide) factorization before the reduction
    zint minimal;       // the published least lwork
    zint optimal;       // the workspace query's answer
    zint scalars;       // e (real data), tauq and taup: 3k real, 2k complex
    zint bd;            // bdsdc's work inside work (real data; the published size)
    bool whole;         // "O": the product that overwrites A fits the workspace in one piece
    zint piece;         // "O": rows (tall) or columns (wide) of that product per piece
};

// The answer of a routine's workspace query.
template <class T, class Query>
zint asked(Query query) {
    T w[1] = {zero<T>()};
    zint info = 0;
    query(w, info);
    return static_cast<zint>(real(w[0]));
}

template <class T>
GesddPlan plan_gesdd(char jobz, zint m, zint n, zint lwork) {
    GesddPlan p{false, 1, 1, 0, 0, true, 0};
    const zint k = min_of(m, n), mx = max_of(m, n);
    if (k == 0) return p;
    if (k > kLargestOrder) {
        p.minimal = p.optimal = kUnattainable;
        return p;
    }
    const Job job = job_of(jobz);
    const bool tall = m >= n;
    constexpr bool complex = kIsComplex<T>;
    const zint bdspac = job == Job::None ? 7 * k : 3 * k * k + 4 * k;
    p.bd = complex ? 0 : bdspac;
    p.scalars = (complex ? 2 : 3) * k;
    p.factor_first = mx >= ilaenv(6, routine_name<T>("DGESDD", "ZGESDD"), " ", m, n, 0, 0);
    const zint sc = p.scalars, bd = p.bd;
    constexpr char adj = kAdjoint<T>;
    double dd[1] = {0};
    // The queries of the routines each path calls, for their optimal workspaces.
    const auto brd = [&](zint r, zint c) {
        return asked<T>([&](T* w, zint& i) { gebrd(r, c, w, r, dd, dd, w, w, w, -1, i); });
    };
    const auto mbr = [&](char vect, char side, zint r, zint c, zint kk) {
        const zint lda =
            max_of(1, lsame(vect, 'Q') ? (side == 'L' ? r : c) : min_of(side == 'L' ? r : c, kk));
        const char trans = lsame(vect, 'Q') ? 'N' : adj;
        return asked<T>(
            [&](T* w, zint& i) { ormbr(vect, side, trans, r, c, kk, w, lda, w, w, r, w, -1, i); });
    };
    if (p.factor_first) {
        const zint factor = k + asked<T>([&](T* w, zint& i) {
                                if (tall) {
                                    geqrf(m, n, w, m, w, w, -1, i);
                                } else {
                                    gelqf(m, n, w, m, w, w, -1, i);
                                }
                            });
        const auto generate = [&](zint order) {
            return k + asked<T>([&](T* w, zint& i) {
                       if (tall) {
                           orgqr(m, order, n, w, m, w, w, -1, i);
                       } else {
                           orglq(order, n, m, w, order, w, w, -1, i);
                       }
                   });
        };
        const zint square =
            sc +
            max_of(max_of(brd(k, k), max_of(mbr('Q', 'L', k, k, k), mbr('P', 'R', k, k, k))), max_of(bd, k));
        switch (job) {
            case Job::None:
                p.minimal = complex ? 3 * k : bdspac + k;
                p.optimal = max_of(factor, sc + max_of(brd(k, k), bd));
                break;
            case Job::Overwrite:
                p.minimal = complex ? 2 * k * k + 3 * k : bdspac + 2 * k * k + 3 * k;
                p.optimal = mx * k + k * k + max_of(max_of(factor, generate(k)), square);
                break;
            case Job::Some:
                p.minimal = complex ? k * k + 3 * k : bdspac + k * k + 3 * k;
                p.optimal = k * k + max_of(max_of(factor, generate(k)), square);
                break;
            case Job::All:
                p.minimal = complex ? k * k + 2 * k + mx : k * k + max_of(3 * k + bdspac, k + mx);
                p.optimal = k * k + max_of(max_of(factor, generate(mx)), square);
                break;
        }
    } else {
        const zint reduce = sc + brd(m, n);
        // The products with Q (m by m for U) and P (n by n for VT) at their shapes per job.
        const zint q_some = tall ? mbr('Q', 'L', m, n, n) : mbr('Q', 'L', m, m, n);
        const zint p_some = tall ? mbr('P', 'R', n, n, m) : mbr('P', 'R', m, n, m);
        const zint q_all = tall ? mbr('Q', 'L', m, m, n) : q_some;
        const zint p_all = tall ? p_some : mbr('P', 'R', n, n, m);
        p.minimal = complex ? 2 * k + mx : 3 * k + max_of(mx, bdspac);
        switch (job) {
            case Job::None:
                p.optimal = max_of(reduce, sc + bd);
                break;
            case Job::Overwrite:
                p.minimal = complex ? 2 * k + mx + k * k : 3 * k + max_of(mx, k * k + bdspac);
                p.optimal = max_of(reduce, sc + mx * k + max_of(bd, max_of(q_some, p_some)));
                break;
            case Job::Some:
                p.optimal = max_of(reduce, sc + max_of(bd, max_of(q_some, p_some)));
                break;
            case Job::All:
                p.optimal = max_of(reduce, sc + max_of(bd, max_of(q_all, p_all)));
                break;
        }
    }
    p.optimal = max_of(p.optimal, p.minimal);
    if (job == Job::Overwrite && lwork >= p.minimal) {
        if (p.factor_first) {
            // Work: the piece (piece by k), the vectors of B (k by k), then the scalars and the rest.
            const zint rest = k * k + sc + max_of(bd, k);
            p.piece = min_of(mx, (lwork - rest) / k);
            p.whole = p.piece == mx;
        } else {
            // Work: the scalars, then the vectors (mx by k) whole, or those of B (k by k, real data
            // only: complex data keep them in rwork) and the piece.
            p.whole = lwork >= sc + mx * k + max_of(bd, k);
            p.piece = min_of(mx, (lwork - sc - (complex ? 0 : k * k)) / k);
        }
    }
    return p;
}

// Where the pieces of a complex SVD of the bidiagonal matrix live in rwork (nothing for real data).
struct RealParts {
    double* e;
    double* u;
    double* vt;
    double* work;
};

// The scalars of the reduction from `base` on in work: real data keep e there too.
template <class T>
struct Scalars {
    double* e;
    T* tauq;
    T* taup;
    zint end;
};

template <class T>
Scalars<T> scalars_at(T* work, zint base, zint k, const RealParts& parts) {
    if constexpr (kIsComplex<T>) {
        return {parts.e, work + base, work + base + k, base + 2 * k};
    } else {
        return {work + base, work + base + k, work + base + 2 * k, base + 3 * k};
    }
}

// dst := the real k by k matrix src.
template <class T>
void copy_real(zint k, const double* src, T* dst, zint ld) {
    for (zint j = 0; j < k; ++j) {
        for (zint i = 0; i < k; ++i) dst[i + j * ld] = from_real<T>(src[i + j * k]);
    }
}

// C := A B with B real (k by k): gemm for real data, lacrm for complex data.
template <class T>
void times_real(zint rows, zint k, const T* a, zint lda, const double* b, zint ldb, T* c, zint ldc) {
    if constexpr (kIsComplex<T>) {
        lacrm(rows, k, a, lda, b, ldb, c, ldc);
    } else {
        Blas<double>::gemm('N', 'N', rows, k, k, 1.0, a, lda, b, ldb, 0.0, c, ldc);
    }
}

// C := A B with A real (k by k).
template <class T>
void real_times(zint k, zint cols, const double* a, zint lda, const T* b, zint ldb, T* c, zint ldc,
                double* rwork) {
    if constexpr (kIsComplex<T>) {
        larcm(k, cols, a, lda, b, ldb, c, ldc, rwork);
    } else {
        (void)rwork;
        Blas<double>::gemm('N', 'N', k, cols, k, 1.0, a, lda, b, ldb, 0.0, c, ldc);
    }
}

// One call of gesdd after its checks, scaling and quick returns.
template <class T>
class Gesdd {
  public:
    Gesdd(Job job, zint m, zint n, T* a, zint lda, double* s, T* u, zint ldu, T* vt, zint ldvt, T* work,
          zint lwork, double* rwork, zint* iwork, const GesddPlan& plan)
        : job_(job),
          m_(m),
          n_(n),
          k_(min_of(m, n)),
          a_(a),
          lda_(lda),
          s_(s),
          u_(u),
          ldu_(ldu),
          vt_(vt),
          ldvt_(ldvt),
          work_(work),
          lwork_(lwork),
          iwork_(iwork),
          plan_(plan) {
        if constexpr (kIsComplex<T>) {
            const zint k = k_;
            parts_ = {rwork, rwork + k, rwork + k + k * k,
                      job == Job::None ? rwork + k : rwork + k + 2 * k * k};
        } else {
            (void)rwork;
        }
    }

    // info > 0: bdsdc failed; the vectors are then left as they are. Returns false when the progress
    // handler stopped the QR or LQ factorization.
    bool run(zint& info) { return plan_.factor_first ? factored(info) : direct(info); }

  private:
    T* A(zint i, zint j) const { return a_ + i + j * lda_; }
    T* W(zint offset) const { return work_ + offset; }
    zint left(zint offset) const { return lwork_ - offset; }

    // The SVD of the bidiagonal matrix: values into s, and the vectors into ub and vtb (k by k; null:
    // for complex data, leave them in rwork). Real data give bdsdc the work from offset `bd` on.
    void bidiagonal(char uplo, const Scalars<T>& sc, T* ub, zint ldub, T* vtb, zint ldvtb, zint bd,
                    zint& info) {
        double dummy[1] = {0};
        zint idummy[1] = {0};
        if (job_ == Job::None) {
            double* bdwork = kIsComplex<T> ? parts_.work : reinterpret_cast<double*>(W(bd));
            bdsdc(uplo, 'N', k_, s_, sc.e, dummy, 1, dummy, 1, dummy, idummy, bdwork, iwork_, info);
            return;
        }
        if constexpr (kIsComplex<T>) {
            bdsdc(uplo, 'I', k_, s_, sc.e, parts_.u, k_, parts_.vt, k_, dummy, idummy, parts_.work, iwork_,
                  info);
            if (info != 0) return;
            if (ub != nullptr) copy_real(k_, parts_.u, ub, ldub);
            if (vtb != nullptr) copy_real(k_, parts_.vt, vtb, ldvtb);
        } else {
            bdsdc(uplo, 'I', k_, s_, sc.e, ub, ldub, vtb, ldvtb, dummy, idummy, W(bd), iwork_, info);
        }
    }

    void apply(char vect, char side, zint m, zint n, zint k, T* a, zint lda, const T* tau, T* c, zint ldc,
               zint from) {
        zint sub = 0;
        ormbr(vect, side, vect == 'Q' ? 'N' : kAdjoint<T>, m, n, k, a, lda, tau, c, ldc, W(from), left(from),
              sub);
    }

    void reduce(zint m, zint n, T* a, zint lda, const Scalars<T>& sc) {
        zint sub = 0;
        gebrd(m, n, a, lda, s_, sc.e, sc.tauq, sc.taup, W(sc.end), left(sc.end), sub);
    }

    // A QR (m >= n) or LQ (m < n) factorization first; its triangle R (L) is reduced, and Q carries
    // the vectors of the triangle to those of A.
    bool factored(zint& info) {
        const zint m = m_, n = n_, k = k_;
        const bool tall = m >= n;
        const T zero = zor::zero<T>(), one = zor::one<T>();
        zint sub = 0;
        // Work: [block (the triangle, then the pieces of "O") | vectors of the triangle (k by k) |
        // tau, then the scalars | rest]. "A" keeps the triangle in A and its vectors at the front.
        zint block = 0;
        switch (job_) {
            case Job::None:
                break;
            case Job::Overwrite:
                block = plan_.piece * k;
                break;
            case Job::Some:
                block = k * k;
                break;
            case Job::All:
                block = 0;
                break;
        }
        const zint vectors = block;
        const zint tau = job_ == Job::None ? 0 : block + (job_ == Job::Some ? 0 : k * k);
        const bool stopped = tall ? geqrf(m, n, a_, lda_, W(tau), W(tau + k), left(tau + k), sub)
                                  : gelqf(m, n, a_, lda_, W(tau), W(tau + k), left(tau + k), sub);
        if (stopped) return false;
        const Scalars<T> sc = scalars_at(work_, tau, k, parts_);
        // The triangle's vectors: U of R into the vectors block (or U for "S"), VT of L likewise.
        T* small = job_ == Job::Some ? (tall ? u_ : vt_) : W(vectors);
        const zint ldsmall = job_ == Job::Some ? (tall ? ldu_ : ldvt_) : k;
        T* ub = tall ? small : u_;
        T* vtb = tall ? vt_ : small;
        const zint ldub = tall ? ldsmall : ldu_, ldvtb = tall ? ldvt_ : ldsmall;
        if (job_ == Job::None || job_ == Job::All) {
            if (job_ == Job::All) {
                // The whole Q (Qᴴ of the LQ) into U (VT).
                if (tall) {
                    lacpy('L', m, n, a_, lda_, u_, ldu_);
                    orgqr(m, m, n, u_, ldu_, W(tau), W(tau + k), left(tau + k), sub);
                } else {
                    lacpy('U', m, n, a_, lda_, vt_, ldvt_);
                    orglq(n, n, m, vt_, ldvt_, W(tau), W(tau + k), left(tau + k), sub);
                }
            }
            if (k > 1) laset(tall ? 'L' : 'U', k - 1, k - 1, zero, zero, tall ? A(1, 0) : A(0, 1), lda_);
            reduce(k, k, a_, lda_, sc);
            bidiagonal('U', sc, ub, ldub, vtb, ldvtb, sc.end, info);
            if (job_ == Job::None || info != 0) return true;
            apply('Q', 'L', k, k, k, a_, lda_, sc.tauq, ub, ldub, sc.end);
            apply('P', 'R', k, k, k, a_, lda_, sc.taup, vtb, ldvtb, sc.end);
            if (tall) {
                Blas<T>::gemm('N', 'N', m, n, n, one, u_, ldu_, small, k, zero, a_, lda_);
            } else {
                Blas<T>::gemm('N', 'N', m, n, m, one, small, k, vt_, ldvt_, zero, a_, lda_);
            }
            lacpy('F', m, n, a_, lda_, tall ? u_ : vt_, tall ? ldu_ : ldvt_);
            return true;
        }
        // "O" and "S": the triangle is reduced in the block, Q formed in A.
        const zint ldt = tall ? block / k : k;
        if (tall) {
            lacpy('U', n, n, a_, lda_, W(0), ldt);
            if (n > 1) laset('L', n - 1, n - 1, zero, zero, W(1), ldt);
            orgqr(m, n, n, a_, lda_, W(tau), W(tau + k), left(tau + k), sub);
        } else {
            lacpy('L', m, m, a_, lda_, W(0), ldt);
            if (m > 1) laset('U', m - 1, m - 1, zero, zero, W(ldt), ldt);
            orglq(m, n, m, a_, lda_, W(tau), W(tau + k), left(tau + k), sub);
        }
        reduce(k, k, W(0), ldt, sc);
        bidiagonal('U', sc, ub, ldub, vtb, ldvtb, sc.end, info);
        if (info != 0) return true;
        apply('Q', 'L', k, k, k, W(0), ldt, sc.tauq, ub, ldub, sc.end);
        apply('P', 'R', k, k, k, W(0), ldt, sc.taup, vtb, ldvtb, sc.end);
        if (job_ == Job::Some) {
            // U = Q times U of R (VT = VT of L times Q), through the block.
            lacpy('F', k, k, small, ldsmall, W(0), k);
            if (tall) {
                Blas<T>::gemm('N', 'N', m, n, n, one, a_, lda_, W(0), k, zero, u_, ldu_);
            } else {
                Blas<T>::gemm('N', 'N', m, n, m, one, W(0), k, a_, lda_, zero, vt_, ldvt_);
            }
            return true;
        }
        // "O": the same products a piece of rows (columns) of A at a time through the block.
        const zint piece = plan_.piece;
        for (zint j = 0; j < (tall ? m : n); j += piece) {
            const zint part = min_of((tall ? m : n) - j, piece);
            if (tall) {
                Blas<T>::gemm('N', 'N', part, n, n, one, A(j, 0), lda_, small, k, zero, W(0), piece);
                lacpy('F', part, n, W(0), piece, A(j, 0), lda_);
            } else {
                Blas<T>::gemm('N', 'N', m, part, m, one, small, k, A(0, j), lda_, zero, W(0), k);
                lacpy('F', m, part, W(0), k, A(0, j), lda_);
            }
        }
        return true;
    }

    // The reduction of A itself: B upper bidiagonal for m >= n, lower for m < n. The vectors of the
    // longer side (U for m >= n, Vᴴ otherwise) start as those of B bordered by the unit matrix.
    bool direct(zint& info) {
        const zint m = m_, n = n_, k = k_;
        const bool tall = m >= n;
        const char uplo = tall ? 'U' : 'L';
        const T zero = zor::zero<T>(), one = zor::one<T>();
        const Scalars<T> sc = scalars_at(work_, 0, k, parts_);
        reduce(m, n, a_, lda_, sc);
        if (job_ == Job::None) {
            bidiagonal(uplo, sc, nullptr, 1, nullptr, 1, sc.end, info);
            return true;
        }
        if (job_ != Job::Overwrite) {
            const bool all = job_ == Job::All;
            const zint ucols = tall && all ? m : k, vrows = !tall && all ? n : k;
            if (tall) {
                laset('F', m, ucols, zero, zero, u_, ldu_);
            } else {
                laset('F', vrows, n, zero, zero, vt_, ldvt_);
            }
            bidiagonal(uplo, sc, u_, ldu_, vt_, ldvt_, sc.end, info);
            if (info != 0) return true;
            if (all && m != n) {
                const zint extra = max_of(m, n) - k;
                T* corner = tall ? u_ + n + n * ldu_ : vt_ + m + m * ldvt_;
                laset('F', extra, extra, zero, one, corner, tall ? ldu_ : ldvt_);
            }
            apply('Q', 'L', m, ucols, n, a_, lda_, sc.tauq, u_, ldu_, sc.end);
            apply('P', 'R', vrows, n, m, a_, lda_, sc.taup, vt_, ldvt_, sc.end);
            return true;
        }
        // "O": the vectors of the longer side overwrite A.
        const zint block = sc.end;
        if (plan_.whole) {
            // They are formed whole in work (m by n) and copied over A.
            laset('F', m, n, zero, zero, W(block), m);
            const zint rest = block + m * n;
            bidiagonal(uplo, sc, tall ? W(block) : u_, tall ? m : ldu_, tall ? vt_ : W(block),
                       tall ? ldvt_ : m, rest, info);
            if (info != 0) return true;
            apply('Q', 'L', m, tall ? n : m, n, a_, lda_, sc.tauq, tall ? W(block) : u_, tall ? m : ldu_,
                  rest);
            apply('P', 'R', tall ? n : m, n, m, a_, lda_, sc.taup, tall ? vt_ : W(block), tall ? ldvt_ : m,
                  rest);
            lacpy('F', m, n, W(block), m, a_, lda_);
            return true;
        }
        // Q (Pᴴ) is formed in A and multiplied by the real vectors of B a piece of rows (columns) at a
        // time; real data keep those vectors in work (k by k), complex data in rwork.
        const zint rest = block + (kIsComplex<T> ? 0 : k * k);
        T* real_block = kIsComplex<T> ? nullptr : W(block);
        bidiagonal(uplo, sc, tall ? real_block : u_, tall ? k : ldu_, tall ? vt_ : real_block,
                   tall ? ldvt_ : k, rest, info);
        if (info != 0) return true;
        zint sub = 0;
        if (tall) {
            apply('P', 'R', n, n, n, a_, lda_, sc.taup, vt_, ldvt_, rest);
            orgbr('Q', m, n, n, a_, lda_, sc.tauq, W(rest), left(rest), sub);
        } else {
            apply('Q', 'L', m, m, n, a_, lda_, sc.tauq, u_, ldu_, rest);
            orgbr('P', m, n, m, a_, lda_, sc.taup, W(rest), left(rest), sub);
        }
        const double* vectors = real_vectors(tall, W(block));
        const zint piece = plan_.piece;
        for (zint j = 0; j < (tall ? m : n); j += piece) {
            const zint part = min_of((tall ? m : n) - j, piece);
            if (tall) {
                times_real(part, n, A(j, 0), lda_, vectors, k, W(rest), piece);
                lacpy('F', part, n, W(rest), piece, A(j, 0), lda_);
            } else {
                real_times(m, part, vectors, k, A(0, j), lda_, W(rest), m, parts_.work);
                lacpy('F', m, part, W(rest), m, A(0, j), lda_);
            }
        }
        return true;
    }

    // The "O" paths with a short workspace multiply by the vectors of B in real storage: for complex
    // data rwork's, for real data the block that bdsdc wrote.
    const double* real_vectors(bool tall, T* block) const {
        if constexpr (kIsComplex<T>) {
            (void)block;
            return tall ? parts_.u : parts_.vt;
        } else {
            (void)tall;
            return block;
        }
    }

    Job job_;
    zint m_, n_, k_;
    T* a_;
    zint lda_;
    double* s_;
    T* u_;
    zint ldu_;
    T* vt_;
    zint ldvt_;
    T* work_;
    zint lwork_;
    zint* iwork_;
    const GesddPlan& plan_;
    RealParts parts_{};
};

}  // namespace

template <class T>
WorkSizes gesdd_work_sizes(char jobz, zint m, zint n) {
    const GesddPlan plan = plan_gesdd<T>(jobz, m, n, -1);
    return {plan.minimal, plan.optimal};
}

template <class T>
zint check_gesdd(char jobz, zint m, zint n, zint lda, zint ldu, zint ldvt, zint lwork) {
    const bool all = lsame(jobz, 'A'), some = lsame(jobz, 'S'), over = lsame(jobz, 'O');
    const bool valid = all || some || over || lsame(jobz, 'N');
    const zint k = min_of(m, n);
    const bool dims_ok = valid && m >= 0 && n >= 0;
    return check_arguments(
        routine_name<T>("DGESDD", "ZGESDD"),
        {{!valid, 1},
         {m < 0, 2},
         {n < 0, 3},
         {lda < max_of(1, m), 5},
         {ldu < 1 || ((all || some) && ldu < m) || (over && m < n && ldu < m), 8},
         {ldvt < 1 || (all && ldvt < n) || (some && ldvt < k) || (over && m >= n && ldvt < n), 10},
         {dims_ok && lwork != -1 && lwork < gesdd_work_sizes<T>(jobz, m, n).minimal, 12}});
}

template <class T>
void gesdd(char jobz, zint m, zint n, T* a, zint lda, double* s, T* u, zint ldu, T* vt, zint ldvt, T* work,
           zint lwork, double* rwork, zint* iwork, zint& info) {
    info = check_gesdd<T>(jobz, m, n, lda, ldu, ldvt, lwork);
    if (info != 0) return;
    const GesddPlan plan = plan_gesdd<T>(jobz, m, n, lwork);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
    if (lwork == -1 || m == 0 || n == 0) return;
    const zint k = min_of(m, n);
    // Scale A into [smlnum, bignum] when its largest entry lies outside.
    const double smlnum = std::sqrt(dlamch("S")) / dlamch("P");
    double dummy[1];
    const double anrm = lange('M', m, n, a, lda, dummy);
    if (std::isnan(anrm)) {
        info = -4;
        return;
    }
    zint sub = 0;
    const double scaled_to = range_target(anrm, smlnum);
    if (scaled_to != 0) lascl('G', 0, 0, anrm, scaled_to, m, n, a, lda, sub);
    Gesdd<T> call(job_of(jobz), m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, rwork, iwork, plan);
    if (!call.run(info)) return;
    if (scaled_to != 0) lascl('G', 0, 0, scaled_to, anrm, k, 1, s, k, sub);
    work[0] = from_real<T>(static_cast<double>(plan.optimal));
}

}  // namespace zor

ZOR_INSTANTIATE(gesdd)
ZOR_INSTANTIATE(gesdd_work_sizes)
ZOR_INSTANTIATE(check_gesdd)
