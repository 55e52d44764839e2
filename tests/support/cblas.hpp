#pragma once
// What the tests of the CBLAS functions share: the report of a rejected argument, the run of an
// argument-check table, and operands in either layout (matrices with a NaN padding element after
// each line, strided vectors) seen as the column-major operands of support/level3_reference.hpp.

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "support/level3_reference.hpp"
#include "zor/zor.h"

namespace zor::test {

// The library's complex values, with the member names the reference reads.
struct Complex {
    double re, im;
};

// A scalar argument as the CBLAS functions take it: real ones by value, complex ones by address.
inline double arg(const double& v) {
    return v;
}
inline const void* arg(const Complex& v) {
    return &v;
}

inline std::string report(int parameter, const std::string& routine) {
    return "\nZOR ERROR: Parameter " + std::to_string(parameter) + " was incorrect on entry to " + routine +
           "\n";
}

// One call of an argument-check table: a change to the arguments of a valid call, the parameters
// the CBLAS function reports (in order; none for a valid call) and the one the Fortran-style
// routine then reports for a letter passed on unset (0: none).
template <class Args>
struct BadCall {
    std::function<void(Args&)> change;
    std::vector<int> reported;
    int fortran_reported = 0;
};

// A function under test: its name in reports, the Fortran-style routine's name, and a call with the
// given arguments on the given operands.
template <class Args, class Operands>
struct Checked {
    const char* name;
    const char* fortran_name;
    std::function<void(const Args&, Operands&)> call;
};

// An entry of a function list: the CBLAS function `name` and the Fortran-style routine's name, called
// with arguments written in terms of `a` (the Args) and `o` (the Operands).
#define ZOR_CHECKED(name, fortran_name, ...)                                   \
    {                                                                          \
#name, fortran_name, [](const auto& a, auto& o) { name(__VA_ARGS__); } \
    }

// Every call prints exactly its reports; a rejected one leaves the operands as they were.
template <class Args, class Operands>
void check_table(const std::vector<Checked<Args, Operands>>& functions,
                 const std::vector<BadCall<Args>>& table) {
    for (const auto& f : functions) {
        for (std::size_t k = 0; k < table.size(); ++k) {
            Args args;
            table[k].change(args);
            std::string expected;
            for (int parameter : table[k].reported) expected += report(parameter, f.name);
            if (table[k].fortran_reported != 0) expected += report(table[k].fortran_reported, f.fortran_name);
            Operands operands;
            const Operands before = operands;
            ::testing::internal::CaptureStdout();
            f.call(args, operands);
            EXPECT_EQ(::testing::internal::GetCapturedStdout(), expected) << f.name << " case " << k;
            if (!expected.empty()) {
                EXPECT_TRUE(operands == before) << f.name << " case " << k << " computed";
            }
        }
    }
}

// Small dyadic values from a seed.
template <class E>
E element(Index i, Index j, int seed) {
    return scalar<E>(((i * 7 + j * 13 + seed * 31) % 17) / 8.0 - 1.0,
                     ((i * 5 + j * 3 + seed) % 11) / 5.0 - 1.0);
}

// A rows x cols matrix in either layout, with one padding element (NaN) after each line.
template <class E>
struct LayoutMatrix {
    bool row_major;
    Index rows, cols, ld;
    std::vector<E> data;

    LayoutMatrix(bool row, Index r, Index c, int seed)
        : row_major(row), rows(r), cols(c), ld((row ? c : r) + 1) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        data.assign(static_cast<std::size_t>(ld * (row ? r : c)), scalar<E>(nan, nan));
        for (Index i = 0; i < rows; ++i) {
            for (Index j = 0; j < cols; ++j) (*this)(i, j) = element<E>(i, j, seed);
        }
    }
    E& operator()(Index i, Index j) {
        return data[static_cast<std::size_t>(row_major ? i * ld + j : i + j * ld)];
    }
    // NaN wherever `keep` does not select: elements a call must not read.
    template <class Selected>
    void poison_outside(Selected keep) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        for (Index i = 0; i < rows; ++i) {
            for (Index j = 0; j < cols; ++j) {
                if (!keep(i, j)) (*this)(i, j) = scalar<E>(nan, nan);
            }
        }
    }
    // The column-major copy the reference reads.
    Dense dense() const {
        const Dense stored = load(data.data(), row_major ? cols : rows, row_major ? rows : cols, ld);
        return row_major ? op(stored, 'T') : stored;
    }
    // Every element `may_change` does not select, and all the padding, bit for bit as in `before`.
    template <class Selected>
    ::testing::AssertionResult untouched_except(const std::vector<E>& before, Selected may_change) const {
        return untouched(data, before, ld, [&](Index r, Index line) {
            return r < (row_major ? cols : rows) && (row_major ? may_change(line, r) : may_change(r, line));
        });
    }
};

// A vector of n elements with increment inc (either sign), seen as an n x 1 matrix.
template <class E>
struct StridedVector {
    Index n, inc;
    std::vector<E> data;

    StridedVector(Index size, Index increment, int seed)
        : n(size),
          inc(increment),
          data(static_cast<std::size_t>(1 + (size - 1) * (increment < 0 ? -increment : increment))) {
        for (Index k = 0; k < static_cast<Index>(data.size()); ++k) data[k] = element<E>(k, 0, seed);
    }
    E& operator[](Index i) {
        return data[static_cast<std::size_t>((inc < 0 ? (n - 1 - i) : i) * (inc < 0 ? -inc : inc))];
    }
    Dense dense() {
        Dense d(n, 1);
        for (Index i = 0; i < n; ++i) d(i, 0) = value((*this)[i]);
        return d;
    }
};

inline const bool kLayouts[] = {false, true};  // column-major, row-major

// The enumerations from the ints that argument tables and option lists hold.
inline CBLAS_LAYOUT L(int v) {
    return static_cast<CBLAS_LAYOUT>(v);
}
inline CBLAS_SIDE S(int v) {
    return static_cast<CBLAS_SIDE>(v);
}
inline CBLAS_UPLO U(int v) {
    return static_cast<CBLAS_UPLO>(v);
}
inline CBLAS_TRANSPOSE T(int v) {
    return static_cast<CBLAS_TRANSPOSE>(v);
}
inline CBLAS_DIAG D(int v) {
    return static_cast<CBLAS_DIAG>(v);
}

inline const int kTransposes[] = {CblasNoTrans, CblasTrans, CblasConjTrans};

inline char letter(int transpose) {
    return transpose == CblasNoTrans ? 'N' : transpose == CblasTrans ? 'T' : 'C';
}

// The scalars of the real and of the complex calls, as the reference's values and as the elements.
template <class E>
Value alpha_of() {
    return kComplex<E> ? Value{0.75, -0.5} : Value{1.5, 0};
}
template <class E>
Value beta_of() {
    return kComplex<E> ? Value{0.5, 0.25} : Value{-0.5, 0};
}
template <class E>
E as(Value v) {
    return scalar<E>(static_cast<double>(v.re), static_cast<double>(v.im));
}

// Runs `check` with a real and with a complex element.
template <class F>
void for_both(F check) {
    check(0.0);
    check(Complex{});
}

// A test over combinations of options (GoogleTest's Combine).
template <class... Options>
using OptionTest = ::testing::TestWithParam<std::tuple<Options...>>;

inline CBLAS_LAYOUT layout_of(bool row_major) {
    return row_major ? CblasRowMajor : CblasColMajor;
}

}  // namespace zor::test
