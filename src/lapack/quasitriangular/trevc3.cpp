// trevc3: eigenvectors of a Schur form by back substitution, x of (T - w I) x = 0 for each
// eigenvalue w (and yᴴ (T - w I) = 0 for the left vectors), and their back-transformation by the
// Schur vectors Q. Each solve runs over the diagonal blocks with a scale factor that keeps the
// vector from overflowing (the column norms of T bound the growth of each update); the small
// systems of real 2 by 2 blocks go to laln2, and nearly singular blocks are perturbed to smin =
// eps |w|. With howmny "B" and enough work, up to NB vectors are collected and multiplied by Q in
// one GEMM; otherwise each vector takes one gemv.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"
#include "lapack/quasitriangular/quasitriangular.hpp"

namespace zor {

namespace {

constexpr zint kMinBlock = 8;    // fewer vectors at a time are not worth a GEMM
constexpr zint kMaxBlock = 128;  // the most vectors collected for one GEMM

// What a solve shares: the order, T, the work array as an n by (1 + 2 nb) matrix whose column 0
// holds the column norms of T's strict upper triangle (real data) and whose columns 1 .. nb collect
// vectors, and the overflow bounds.
template <class T>
struct Solver {
    zint n;
    T* t;
    zint ldt;
    T* work;
    double* norms;  // the column norms: work's column 0 (real data) or rwork (complex data)
    double ulp, smlnum, bignum;

    T& at(zint i, zint j) const { return t[(i - 1) + (j - 1) * ldt]; }
    // Entry i (one-based) of work column c.
    T& w(zint i, zint c) const { return work[(i - 1) + c * n]; }
    T* col(zint c) const { return work + c * n; }
};

// ---- the back-transformation and normalisation, shared by both element types -----------------------

// x := x / (the largest |re| + |im| among its n entries).
template <class T>
void normalise(zint n, T* x) {
    double emax = 0.0;
    for (zint i = 0; i < n; ++i) emax = std::fmax(emax, abs1(x[i]));
    Blas<T>::scal_real(n, 1.0 / emax, x, 1);
}

// A real complex pair (two columns): divided by the largest |re| + |im| over both.
inline void normalise_pair(zint n, double* re, double* im) {
    double emax = 0.0;
    for (zint i = 0; i < n; ++i) emax = std::fmax(emax, std::fabs(re[i]) + std::fabs(im[i]));
    const double remax = 1.0 / emax;
    Blas<double>::scal_real(n, remax, re, 1);
    Blas<double>::scal_real(n, remax, im, 1);
}

// Kinds of the collected columns: a real vector, or the real or imaginary part of a pair.
enum class Part : signed char { Real = 0, First = 1, Second = -1 };

// The blocked back-transformation: `count` collected columns of work starting at column `first`,
// whose `depth` entries from x on (the rest zero) multiply `depth` columns of Q from q, into work's
// columns nb + first ..; normalised and copied to `dest`.
template <class T>
void transform_block(const Solver<T>& s, zint nb, zint first, zint count, const T* q, zint ldq, zint depth,
                     const T* x, const Part* kinds, T* dest, zint lddest) {
    Blas<T>::gemm('N', 'N', s.n, count, depth, one<T>(), q, ldq, x, s.n, zero<T>(), s.col(nb + first), s.n);
    for (zint k = 0; k < count; ++k) {
        T* x = s.col(nb + first + k);
        if (kinds[k] == Part::Real) {
            normalise(s.n, x);
        } else if (kinds[k] == Part::First) {
            if constexpr (!kIsComplex<T>) normalise_pair(s.n, x, x + s.n);
        }
    }
    lacpy('A', s.n, count, s.col(nb + first), s.n, dest, lddest);
}

// ---- real data -------------------------------------------------------------------------------------------

struct RealVectors {
    Solver<double> s;
    bool over;
    zint nb;

    // The right vector (pair) of the eigenvalue (wr, wi) whose block ends at ki: solve T(1:j, 1:j)
    // x = scale·rhs for j = ki - 1 (or ki - 2) upwards, into columns c (real) or c - 1, c (pair).
    void solve_right(zint ki, bool pair, double wr, double wi, zint c) {
        const double smin = std::fmax(s.ulp * (std::fabs(wr) + std::fabs(wi)), s.smlnum);
        double x[4], scale, xnorm;
        zint ierr;
        if (!pair) {
            s.w(ki, c) = 1.0;
            for (zint k = 1; k < ki; ++k) s.w(k, c) = -s.at(k, ki);
        } else {
            // The pair's own 2 by 2 block first.
            if (std::fabs(s.at(ki - 1, ki)) >= std::fabs(s.at(ki, ki - 1))) {
                s.w(ki - 1, c - 1) = 1.0;
                s.w(ki, c) = wi / s.at(ki - 1, ki);
            } else {
                s.w(ki - 1, c - 1) = -wi / s.at(ki, ki - 1);
                s.w(ki, c) = 1.0;
            }
            s.w(ki, c - 1) = 0.0;
            s.w(ki - 1, c) = 0.0;
            for (zint k = 1; k < ki - 1; ++k) {
                s.w(k, c - 1) = -s.w(ki - 1, c - 1) * s.at(k, ki - 1);
                s.w(k, c) = -s.w(ki, c) * s.at(k, ki);
            }
        }
        const zint last = pair ? ki - 2 : ki - 1;
        for (zint j = last; j >= 1;) {
            const bool block = j > 1 && s.at(j, j - 1) != 0.0;
            const zint j1 = block ? j - 1 : j;
            const double bound = block ? std::fmax(s.norms[j - 2], s.norms[j - 1]) : s.norms[j - 1];
            const zint nx = block ? 2 : 1;
            if (!pair) {
                laln2(false, nx, 1, smin, 1.0, &s.at(j1, j1), s.ldt, 1.0, 1.0, &s.w(j1, c), s.n, wr, 0.0, x,
                      2, scale, xnorm, ierr);
            } else {
                laln2(false, nx, 2, smin, 1.0, &s.at(j1, j1), s.ldt, 1.0, 1.0, &s.w(j1, c - 1), s.n, wr, wi,
                      x, 2, scale, xnorm, ierr);
            }
            // Scale x down when the update of the right-hand side could overflow.
            if (xnorm > 1.0 && bound > s.bignum / xnorm) {
                const double rec = 1.0 / xnorm;
                for (double& v : x) v *= rec;
                scale *= rec;
            }
            const zint columns = pair ? 2 : 1;
            if (scale != 1.0) {
                for (zint p = 0; p < columns; ++p) Blas<double>::scal(ki, scale, s.col(c - p), 1);
            }
            // x is 2 by 2 (ldx 2): rows are the block's rows, columns the real and imaginary parts.
            for (zint p = 0; p < columns; ++p) {
                const zint col = pair ? c - 1 + p : c;
                for (zint r = 0; r < nx; ++r) s.w(j1 + r, col) = x[r + 2 * p];
                for (zint r = 0; r < nx; ++r)
                    Blas<double>::axpy(j1 - 1, -x[r + 2 * p], &s.at(1, j1 + r), 1, s.col(col), 1);
            }
            j = j1 - 1;
        }
    }

    // The left vector (pair) of the eigenvalue whose block starts at ki: solve T(j:n, j:n)ᵀ x =
    // scale·rhs for j = ki + 1 (or ki + 2) downwards, into columns c (real) or c, c + 1 (pair).
    void solve_left(zint ki, bool pair, double wr, double wi, zint c) {
        const zint n = s.n;
        const double smin = std::fmax(s.ulp * (std::fabs(wr) + std::fabs(wi)), s.smlnum);
        double x[4], scale, xnorm;
        zint ierr;
        if (!pair) {
            s.w(ki, c) = 1.0;
            for (zint k = ki + 1; k <= n; ++k) s.w(k, c) = -s.at(ki, k);
        } else {
            if (std::fabs(s.at(ki, ki + 1)) >= std::fabs(s.at(ki + 1, ki))) {
                s.w(ki, c) = wi / s.at(ki, ki + 1);
                s.w(ki + 1, c + 1) = 1.0;
            } else {
                s.w(ki, c) = 1.0;
                s.w(ki + 1, c + 1) = -wi / s.at(ki + 1, ki);
            }
            s.w(ki + 1, c) = 0.0;
            s.w(ki, c + 1) = 0.0;
            for (zint k = ki + 2; k <= n; ++k) {
                s.w(k, c) = -s.w(ki, c) * s.at(ki, k);
                s.w(k, c + 1) = -s.w(ki + 1, c + 1) * s.at(ki + 1, k);
            }
        }
        const zint columns = pair ? 2 : 1;
        const zint start = pair ? ki + 2 : ki + 1;
        double vmax = 1.0, vcrit = s.bignum;
        for (zint j = start; j <= n;) {
            const bool block = j < n && s.at(j + 1, j) != 0.0;
            const zint nx = block ? 2 : 1;
            const double beta = block ? std::fmax(s.norms[j - 1], s.norms[j]) : s.norms[j - 1];
            // Scale down first when forming the right-hand side could overflow.
            if (beta > vcrit) {
                const double rec = 1.0 / vmax;
                for (zint p = 0; p < columns; ++p) Blas<double>::scal(n - ki + 1, rec, &s.w(ki, c + p), 1);
                vmax = 1.0;
                vcrit = s.bignum;
            }
            for (zint p = 0; p < columns; ++p) {
                for (zint r = 0; r < nx; ++r) {
                    s.w(j + r, c + p) -=
                        Blas<double>::dotc(j - start, &s.at(start, j + r), 1, &s.w(start, c + p), 1);
                }
            }
            if (!pair) {
                laln2(block, nx, 1, smin, 1.0, &s.at(j, j), s.ldt, 1.0, 1.0, &s.w(j, c), n, wr, 0.0, x, 2,
                      scale, xnorm, ierr);
            } else {
                laln2(block, nx, 2, smin, 1.0, &s.at(j, j), s.ldt, 1.0, 1.0, &s.w(j, c), n, wr, -wi, x, 2,
                      scale, xnorm, ierr);
            }
            if (scale != 1.0) {
                for (zint p = 0; p < columns; ++p) Blas<double>::scal(n - ki + 1, scale, &s.w(ki, c + p), 1);
            }
            for (zint p = 0; p < columns; ++p) {
                for (zint r = 0; r < nx; ++r) {
                    s.w(j + r, c + p) = x[r + 2 * p];
                    vmax = std::fmax(vmax, std::fabs(x[r + 2 * p]));
                }
            }
            vcrit = s.bignum / vmax;
            j += nx;
        }
    }
};

void real_vectors(bool rightv, bool leftv, bool somev, const zint* select, Solver<double>& s, double* vl,
                  zint ldvl, double* vr, zint ldvr, zint m, bool over, zint nb) {
    const zint n = s.n;
    RealVectors rv{s, over, nb};
    Part kinds[kMaxBlock + 1];
    const auto V = [](double* v, zint ld, zint i, zint j) { return v + (i - 1) + (j - 1) * ld; };
    if (rightv) {
        // iv: the column of work for the current vector (its real part at iv - 1 for a pair).
        zint iv = nb > 2 ? nb : 2;
        zint is = m;
        for (zint ki = n; ki >= 1; --ki) {
            const bool pair = ki > 1 && s.at(ki, ki - 1) != 0.0;
            if (somev && select[(pair ? ki - 1 : ki) - 1] == 0) {
                if (pair) --ki;
                continue;
            }
            const double wr = s.at(ki, ki);
            const double wi =
                pair ? std::sqrt(std::fabs(s.at(ki, ki - 1))) * std::sqrt(std::fabs(s.at(ki - 1, ki))) : 0.0;
            rv.solve_right(ki, pair, wr, wi, iv);
            if (!over) {
                // The vector itself, in column is (is - 1, is for a pair).
                if (!pair) {
                    Blas<double>::copy(ki, s.col(iv), 1, V(vr, ldvr, 1, is), 1);
                    const zint ii = Blas<double>::iamax(ki, V(vr, ldvr, 1, is), 1);
                    Blas<double>::scal(ki, 1.0 / std::fabs(*V(vr, ldvr, ii, is)), V(vr, ldvr, 1, is), 1);
                    for (zint k = ki + 1; k <= n; ++k) *V(vr, ldvr, k, is) = 0.0;
                } else {
                    Blas<double>::copy(ki, s.col(iv - 1), 1, V(vr, ldvr, 1, is - 1), 1);
                    Blas<double>::copy(ki, s.col(iv), 1, V(vr, ldvr, 1, is), 1);
                    normalise_pair(ki, V(vr, ldvr, 1, is - 1), V(vr, ldvr, 1, is));
                    for (zint k = ki + 1; k <= n; ++k) *V(vr, ldvr, k, is - 1) = *V(vr, ldvr, k, is) = 0.0;
                }
            } else if (nb == 1) {
                // Q x, one gemv per column; the vector's own entry is its coefficient of Q's column.
                if (!pair) {
                    if (ki > 1)
                        Blas<double>::gemv('N', n, ki - 1, 1.0, vr, ldvr, s.col(iv), 1, s.w(ki, iv),
                                           V(vr, ldvr, 1, ki), 1);
                    const zint ii = Blas<double>::iamax(n, V(vr, ldvr, 1, ki), 1);
                    Blas<double>::scal(n, 1.0 / std::fabs(*V(vr, ldvr, ii, ki)), V(vr, ldvr, 1, ki), 1);
                } else {
                    if (ki > 2) {
                        Blas<double>::gemv('N', n, ki - 2, 1.0, vr, ldvr, s.col(iv - 1), 1,
                                           s.w(ki - 1, iv - 1), V(vr, ldvr, 1, ki - 1), 1);
                        Blas<double>::gemv('N', n, ki - 2, 1.0, vr, ldvr, s.col(iv), 1, s.w(ki, iv),
                                           V(vr, ldvr, 1, ki), 1);
                    } else {
                        Blas<double>::scal(n, s.w(ki - 1, iv - 1), V(vr, ldvr, 1, ki - 1), 1);
                        Blas<double>::scal(n, s.w(ki, iv), V(vr, ldvr, 1, ki), 1);
                    }
                    normalise_pair(n, V(vr, ldvr, 1, ki - 1), V(vr, ldvr, 1, ki));
                }
            } else {
                // Collected for a block GEMM: zero below the vector.
                for (zint k = ki + 1; k <= n; ++k) s.w(k, iv) = 0.0;
                kinds[iv] = Part::Real;
                if (pair) {
                    for (zint k = ki + 1; k <= n; ++k) s.w(k, iv - 1) = 0.0;
                    kinds[iv - 1] = Part::First;
                    kinds[iv] = Part::Second;
                    --iv;
                }
            }
            if (nb > 1) {
                const zint ki2 = pair ? ki - 1 : ki;
                // Columns iv .. nb are complete: multiply when the block is full or this was the last.
                if (iv <= 2 || ki2 == 1) {
                    transform_block(s, nb, iv, nb - iv + 1, vr, ldvr, ki2 + nb - iv, s.col(iv), kinds + iv,
                                    V(vr, ldvr, 1, ki2), ldvr);
                    iv = nb;
                } else {
                    --iv;
                }
            }
            is -= pair ? 2 : 1;
            if (pair) --ki;
        }
    }
    if (leftv) {
        zint iv = 1;
        zint is = 1;
        for (zint ki = 1; ki <= n; ++ki) {
            const bool pair = ki < n && s.at(ki + 1, ki) != 0.0;
            if (somev && select[ki - 1] == 0) {
                if (pair) ++ki;
                continue;
            }
            const double wr = s.at(ki, ki);
            const double wi =
                pair ? std::sqrt(std::fabs(s.at(ki, ki + 1))) * std::sqrt(std::fabs(s.at(ki + 1, ki))) : 0.0;
            rv.solve_left(ki, pair, wr, wi, iv);
            const zint len = n - ki + 1;
            if (!over) {
                if (!pair) {
                    Blas<double>::copy(len, &s.w(ki, iv), 1, V(vl, ldvl, ki, is), 1);
                    const zint ii = Blas<double>::iamax(len, V(vl, ldvl, ki, is), 1) + ki - 1;
                    Blas<double>::scal(len, 1.0 / std::fabs(*V(vl, ldvl, ii, is)), V(vl, ldvl, ki, is), 1);
                    for (zint k = 1; k < ki; ++k) *V(vl, ldvl, k, is) = 0.0;
                } else {
                    Blas<double>::copy(len, &s.w(ki, iv), 1, V(vl, ldvl, ki, is), 1);
                    Blas<double>::copy(len, &s.w(ki, iv + 1), 1, V(vl, ldvl, ki, is + 1), 1);
                    normalise_pair(len, V(vl, ldvl, ki, is), V(vl, ldvl, ki, is + 1));
                    for (zint k = 1; k < ki; ++k) *V(vl, ldvl, k, is) = *V(vl, ldvl, k, is + 1) = 0.0;
                }
            } else if (nb == 1) {
                if (!pair) {
                    if (ki < n)
                        Blas<double>::gemv('N', n, n - ki, 1.0, V(vl, ldvl, 1, ki + 1), ldvl,
                                           &s.w(ki + 1, iv), 1, s.w(ki, iv), V(vl, ldvl, 1, ki), 1);
                    const zint ii = Blas<double>::iamax(n, V(vl, ldvl, 1, ki), 1);
                    Blas<double>::scal(n, 1.0 / std::fabs(*V(vl, ldvl, ii, ki)), V(vl, ldvl, 1, ki), 1);
                } else {
                    if (ki < n - 1) {
                        Blas<double>::gemv('N', n, n - ki - 1, 1.0, V(vl, ldvl, 1, ki + 2), ldvl,
                                           &s.w(ki + 2, iv), 1, s.w(ki, iv), V(vl, ldvl, 1, ki), 1);
                        Blas<double>::gemv('N', n, n - ki - 1, 1.0, V(vl, ldvl, 1, ki + 2), ldvl,
                                           &s.w(ki + 2, iv + 1), 1, s.w(ki + 1, iv + 1),
                                           V(vl, ldvl, 1, ki + 1), 1);
                    } else {
                        Blas<double>::scal(n, s.w(ki, iv), V(vl, ldvl, 1, ki), 1);
                        Blas<double>::scal(n, s.w(ki + 1, iv + 1), V(vl, ldvl, 1, ki + 1), 1);
                    }
                    normalise_pair(n, V(vl, ldvl, 1, ki), V(vl, ldvl, 1, ki + 1));
                }
            } else {
                for (zint k = 1; k < ki; ++k) s.w(k, iv) = 0.0;
                kinds[iv] = Part::Real;
                if (pair) {
                    for (zint k = 1; k < ki; ++k) s.w(k, iv + 1) = 0.0;
                    kinds[iv] = Part::First;
                    kinds[iv + 1] = Part::Second;
                    ++iv;
                }
            }
            if (nb > 1) {
                const zint ki2 = pair ? ki + 1 : ki;
                // Columns 1 .. iv are complete.
                if (iv >= nb - 1 || ki2 == n) {
                    transform_block(s, nb, 1, iv, V(vl, ldvl, 1, ki2 - iv + 1), ldvl, n - ki2 + iv,
                                    &s.w(ki2 - iv + 1, 1), kinds + 1, V(vl, ldvl, 1, ki2 - iv + 1), ldvl);
                    iv = 1;
                } else {
                    ++iv;
                }
            }
            is += pair ? 2 : 1;
            if (pair) ++ki;
        }
    }
}

// ---- complex data -----------------------------------------------------------------------------------------

struct ComplexVectors {
    Solver<zcomplex> s;

    // (T(1:ki-1, 1:ki-1) - T(ki, ki)) x = scale·rhs, backwards, into column c; x(ki) carries the
    // scale.
    void solve_right(zint ki, zint c) {
        const zcomplex wk = s.at(ki, ki);
        const double smin = std::fmax(s.ulp * abs1(wk), s.smlnum);
        s.w(ki, c) = one<zcomplex>();
        for (zint k = 1; k < ki; ++k) s.w(k, c) = -s.at(k, ki);
        for (zint j = ki - 1; j >= 1; --j) {
            double scale;
            zcomplex x = divide(s.w(j, c), s.at(j, j) - wk, smin, scale);
            const double xnorm = abs1(x);
            if (xnorm > 1.0 && s.norms[j - 1] > s.bignum / xnorm) {
                x = x / xnorm;
                scale /= xnorm;
            }
            if (scale != 1.0) Blas<zcomplex>::scal_real(ki, scale, s.col(c), 1);
            s.w(j, c) = x;
            Blas<zcomplex>::axpy(j - 1, -x, &s.at(1, j), 1, s.col(c), 1);
        }
    }

    // (T(ki+1:n, ki+1:n) - T(ki, ki))ᴴ x = scale·rhs, forwards, into column c.
    void solve_left(zint ki, zint c) {
        const zint n = s.n;
        const zcomplex wk = s.at(ki, ki);
        const double smin = std::fmax(s.ulp * abs1(wk), s.smlnum);
        s.w(ki, c) = one<zcomplex>();
        for (zint k = ki + 1; k <= n; ++k) s.w(k, c) = -conj(s.at(ki, k));
        double vmax = 1.0, vcrit = s.bignum;
        for (zint j = ki + 1; j <= n; ++j) {
            if (s.norms[j - 1] > vcrit) {
                Blas<zcomplex>::scal_real(n - ki + 1, 1.0 / vmax, &s.w(ki, c), 1);
                vmax = 1.0;
                vcrit = s.bignum;
            }
            s.w(j, c) -= Blas<zcomplex>::dotc(j - ki - 1, &s.at(ki + 1, j), 1, &s.w(ki + 1, c), 1);
            double scale;
            const zcomplex x = divide(s.w(j, c), conj(s.at(j, j) - wk), smin, scale);
            if (scale != 1.0) Blas<zcomplex>::scal_real(n - ki + 1, scale, &s.w(ki, c), 1);
            s.w(j, c) = x;
            vmax = std::fmax(vmax, abs1(x));
            vcrit = s.bignum / vmax;
        }
    }

    // b / d with d raised to smin when smaller, and b scaled by `scale` <= 1 so that the quotient
    // cannot overflow.
    zcomplex divide(zcomplex b, zcomplex d, double smin, double& scale) const {
        double dnorm = abs1(d);
        if (dnorm < smin) {
            d = {smin, 0.0};
            dnorm = smin;
        }
        scale = 1.0;
        const double bnorm = abs1(b);
        const double bignum = 0.5 / dlamch("S");
        if (dnorm < 1.0 && bnorm > 1.0 && bnorm > bignum * dnorm) scale = 1.0 / bnorm;
        return (b * scale) / d;
    }
};

void complex_vectors(bool rightv, bool leftv, bool somev, const zint* select, Solver<zcomplex>& s,
                     zcomplex* vl, zint ldvl, zcomplex* vr, zint ldvr, zint m, bool over, zint nb) {
    const zint n = s.n;
    ComplexVectors cv{s};
    Part kinds[kMaxBlock + 1] = {};
    const auto V = [](zcomplex* v, zint ld, zint i, zint j) { return v + (i - 1) + (j - 1) * ld; };
    const auto scale_largest = [](zint len, zcomplex* x) {
        const zint ii = Blas<zcomplex>::iamax(len, x, 1);
        Blas<zcomplex>::scal_real(len, 1.0 / abs1(x[ii - 1]), x, 1);
    };
    if (rightv) {
        zint iv = nb;
        zint is = m;
        for (zint ki = n; ki >= 1; --ki) {
            if (somev && select[ki - 1] == 0) continue;
            cv.solve_right(ki, iv);
            if (!over) {
                Blas<zcomplex>::copy(ki, s.col(iv), 1, V(vr, ldvr, 1, is), 1);
                scale_largest(ki, V(vr, ldvr, 1, is));
                for (zint k = ki + 1; k <= n; ++k) *V(vr, ldvr, k, is) = {};
            } else if (nb == 1) {
                if (ki > 1)
                    Blas<zcomplex>::gemv('N', n, ki - 1, one<zcomplex>(), vr, ldvr, s.col(iv), 1, s.w(ki, iv),
                                         V(vr, ldvr, 1, ki), 1);
                scale_largest(n, V(vr, ldvr, 1, ki));
            } else {
                for (zint k = ki + 1; k <= n; ++k) s.w(k, iv) = {};
                if (iv == 1 || ki == 1) {
                    transform_block(s, nb, iv, nb - iv + 1, vr, ldvr, ki + nb - iv, s.col(iv), kinds + iv,
                                    V(vr, ldvr, 1, ki), ldvr);
                    iv = nb;
                } else {
                    --iv;
                }
            }
            --is;
        }
    }
    if (leftv) {
        zint iv = 1;
        zint is = 1;
        for (zint ki = 1; ki <= n; ++ki) {
            if (somev && select[ki - 1] == 0) continue;
            cv.solve_left(ki, iv);
            const zint len = n - ki + 1;
            if (!over) {
                Blas<zcomplex>::copy(len, &s.w(ki, iv), 1, V(vl, ldvl, ki, is), 1);
                scale_largest(len, V(vl, ldvl, ki, is));
                for (zint k = 1; k < ki; ++k) *V(vl, ldvl, k, is) = {};
            } else if (nb == 1) {
                if (ki < n)
                    Blas<zcomplex>::gemv('N', n, n - ki, one<zcomplex>(), V(vl, ldvl, 1, ki + 1), ldvl,
                                         &s.w(ki + 1, iv), 1, s.w(ki, iv), V(vl, ldvl, 1, ki), 1);
                scale_largest(n, V(vl, ldvl, 1, ki));
            } else {
                for (zint k = 1; k < ki; ++k) s.w(k, iv) = {};
                if (iv == nb || ki == n) {
                    transform_block(s, nb, 1, iv, V(vl, ldvl, 1, ki - iv + 1), ldvl, n - ki + iv,
                                    &s.w(ki - iv + 1, 1), kinds + 1, V(vl, ldvl, 1, ki - iv + 1), ldvl);
                    iv = 1;
                } else {
                    ++iv;
                }
            }
            ++is;
        }
    }
}

}  // namespace

template <class T>
zint trevc3_workspace(zint n) {
    const zint nb = ilaenv(1, routine_name<T>("DTREVC", "ZTREVC"), " ", n, -1, -1, -1);
    return max_of(1, n + 2 * n * nb);
}

template <class T>
void trevc3(char side, char howmny, zint* select, zint n, T* t, zint ldt, T* vl, zint ldvl, T* vr, zint ldvr,
            zint mm, zint& m, T* work, zint lwork, double* rwork, zint& info) {
    const char* name = routine_name<T>("DTREVC3", "ZTREVC3");
    const bool both = lsame(side, 'B');
    const bool rightv = lsame(side, 'R') || both, leftv = lsame(side, 'L') || both;
    const bool allv = lsame(howmny, 'A'), over = lsame(howmny, 'B'), somev = lsame(howmny, 'S');
    const zint least = kIsComplex<T> ? max_of(1, 2 * n) : max_of(1, 3 * n);
    // The number of columns the chosen vectors need; a real pair selected by either entry is
    // selected by its first.
    m = n;
    if (somev) {
        m = 0;
        for (zint j = 0; j < n; ++j) {
            const bool pair = !kIsComplex<T> && j + 1 < n && !is_zero(t[j + 1 + j * ldt]);
            if (!pair) {
                if (select[j] != 0) ++m;
                continue;
            }
            if (select[j] != 0 || select[j + 1] != 0) {
                select[j] = 1;
                m += 2;
            }
            select[j + 1] = 0;
            ++j;
        }
    }
    info = check_arguments(name, {{!rightv && !leftv, 1},
                                  {!allv && !over && !somev, 2},
                                  {n < 0, 4},
                                  {ldt < max_of(1, n), 6},
                                  {ldvl < 1 || (leftv && ldvl < n), 8},
                                  {ldvr < 1 || (rightv && ldvr < n), 10},
                                  {mm < m, 11},
                                  {lwork != -1 && lwork < least, 14}});
    if (info != 0) return;
    work[0] = from_real<T>(static_cast<double>(trevc3_workspace<T>(n)));
    if (lwork == -1 || n == 0) return;

    zint nb = 1;
    if (over && lwork >= n + 2 * n * kMinBlock) {
        nb = min_of((lwork - n) / (2 * n), kMaxBlock);
        // Cleared so that stale NaN in the unused rows cannot reach the products.
        laset('A', n, 1 + 2 * nb, zero<T>(), zero<T>(), work, n);
    }
    const double unfl = dlamch("S"), ulp = dlamch("P");
    const double smlnum = unfl * (static_cast<double>(n) / ulp);
    Solver<T> s{n, t, ldt, work, nullptr, ulp, smlnum, (1.0 - ulp) / smlnum};
    if constexpr (kIsComplex<T>) {
        s.norms = rwork;
        rwork[0] = 0.0;
        for (zint j = 2; j <= n; ++j) {
            double sum = 0.0;
            for (zint i = 1; i < j; ++i) sum += abs1(s.at(i, j));
            rwork[j - 1] = sum;
        }
        complex_vectors(rightv, leftv, somev, select, s, vl, ldvl, vr, ldvr, m, over, nb);
    } else {
        (void)rwork;
        s.norms = work;
        work[0] = 0.0;
        for (zint j = 2; j <= n; ++j) {
            double sum = 0.0;
            for (zint i = 1; i < j; ++i) sum += std::fabs(s.at(i, j));
            work[j - 1] = sum;
        }
        real_vectors(rightv, leftv, somev, select, s, vl, ldvl, vr, ldvr, m, over, nb);
    }
}

}  // namespace zor

ZOR_INSTANTIATE(trevc3)
ZOR_INSTANTIATE(trevc3_workspace)
