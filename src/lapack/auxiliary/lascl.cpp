// lascl: a matrix (or the part of it its type names) times cto / cfrom, in steps that neither
// overflow nor underflow.

#include <cmath>

#include "lapack/auxiliary/auxiliary.hpp"
#include "lapack/lapack.hpp"

namespace zor {

namespace {

enum class Shape { Full, Lower, Upper, Hessenberg, LowerBand, UpperBand, Band, Unknown };

Shape shape_of(char type) {
    switch (ascii_upper(type)) {
        case 'G':
            return Shape::Full;
        case 'L':
            return Shape::Lower;
        case 'U':
            return Shape::Upper;
        case 'H':
            return Shape::Hessenberg;
        case 'B':
            return Shape::LowerBand;
        case 'Q':
            return Shape::UpperBand;
        case 'Z':
            return Shape::Band;
        default:
            return Shape::Unknown;
    }
}

// The rows of column j that `shape` covers, as [first, last).
struct Rows {
    zint first, last;
};

Rows rows_of(Shape shape, zint kl, zint ku, zint m, zint n, zint j) {
    switch (shape) {
        case Shape::Lower:
            return {j, m};
        case Shape::Upper:
            return {0, min_of(j + 1, m)};
        case Shape::Hessenberg:
            return {0, min_of(j + 2, m)};
        case Shape::LowerBand:
            return {0, min_of(kl + 1, n - j)};
        case Shape::UpperBand:
            return {max_of(ku - j, 0), ku + 1};
        case Shape::Band:
            return {max_of(kl + ku - j, kl), min_of(2 * kl + ku + 1, kl + ku + m - j)};
        default:
            return {0, m};
    }
}

}  // namespace

template <class T>
void lascl(char type, zint kl, zint ku, double cfrom, double cto, zint m, zint n, T* a, zint lda,
           zint& info) {
    const Shape shape = shape_of(type);
    const bool band = shape == Shape::LowerBand || shape == Shape::UpperBand || shape == Shape::Band;
    const bool square = shape == Shape::LowerBand || shape == Shape::UpperBand;
    zint band_rows = 0;
    if (shape == Shape::LowerBand) band_rows = kl + 1;
    if (shape == Shape::UpperBand) band_rows = ku + 1;
    if (shape == Shape::Band) band_rows = 2 * kl + ku + 1;
    info = check_arguments(routine_name<T>("DLASCL", "ZLASCL"),
                           {{shape == Shape::Unknown, 1},
                            {cfrom == 0.0 || std::isnan(cfrom), 4},
                            {std::isnan(cto), 5},
                            {m < 0, 6},
                            {n < 0 || (square && n != m), 7},
                            {!band && lda < max_of(1, m), 9},
                            {band && (kl < 0 || kl > max_of(m - 1, 0)), 2},
                            {band && (ku < 0 || ku > max_of(n - 1, 0) || (square && kl != ku)), 3},
                            {band && lda < band_rows, 9}});
    if (info != 0 || m == 0 || n == 0) return;
    const double small = dlamch("S"), big = 1.0 / small;
    double from = cfrom, to = cto;
    // Each step divides out at most a factor of 1/small; three steps cover any pair of finite
    // values, so the bound only guards against what cannot happen.
    for (int step = 0; step < 8; ++step) {
        double factor;
        bool done = true;
        const double from_small = from * small;
        if (from_small == from) {
            // from is infinite: the quotient is 0 or NaN, in one step.
            factor = to / from;
        } else {
            const double to_small = to / big;
            if (to_small == to) {
                // to is 0 or infinite: multiply by it once.
                factor = to;
                from = 1.0;
            } else if (std::fabs(from_small) > std::fabs(to) && to != 0.0) {
                factor = small;
                done = false;
                from = from_small;
            } else if (std::fabs(to_small) > std::fabs(from)) {
                factor = big;
                done = false;
                to = to_small;
            } else {
                factor = to / from;
                if (factor == 1.0) return;
            }
        }
        for (zint j = 0; j < n; ++j) {
            const Rows rows = rows_of(shape, kl, ku, m, n, j);
            for (zint i = rows.first; i < rows.last; ++i) a[i + j * lda] = a[i + j * lda] * factor;
        }
        if (done) return;
    }
}

}  // namespace zor

ZOR_INSTANTIATE(lascl)
