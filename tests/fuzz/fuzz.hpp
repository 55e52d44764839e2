#pragma once
// The entry-layer fuzzer's vocabulary. A `Call` draws one export's arguments from the fuzz input,
// takes the export's model (its published checks in order: what must be printed, which info, whether
// the call may compute), then hands out the arrays, sized from both: exactly as large as the
// arguments claim when the checks pass, a few elements when they do not (so that AddressSanitizer
// catches any touch), and runs the export with standard output captured, checking the printed
// text, the info, the arrays and the allocations against the model.

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "zor/zor.h"

namespace zor::fuzz {

// One published check: when `failed`, `parameter` is reported. `goes_on_as` is nonzero for the
// CBLAS level-2 letters that are reported without ending the call; the Fortran-style routine, called
// with the letter unset, then rejects it as its own parameter `goes_on_as`.
struct Check {
    bool failed;
    int parameter;
    int goes_on_as = 0;
};

// How the export treats an array.
enum class Use {
    In,         // only read: unchanged after every call
    InOut,      // written when the call computes: unchanged after an argument error
    Untouched,  // neither read nor written on this path (a workspace query): a few elements, unchanged
};

// The fuzz input, read front to back; zeros once it is used up.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    std::uint8_t byte() { return at_ < size_ ? data_[at_++] : 0; }
    std::uint32_t bits32();

  private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

class Call {
  public:
    // `routine`: the export's name as a caller writes it ("cblas_dgemm", "dgetrf").
    Call(Input& input, const char* routine);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // ---- arguments: each drawn value is logged under its name for the report of a failure
    zor_int dimension(const char* name);
    // A leading dimension, mostly around max(1, rows).
    zor_int leading(const char* name, std::int64_t rows);
    zor_int increment(const char* name);
    // lwork: mostly around `needed`, often -1 (a workspace query).
    zor_int workspace(const char* name, std::int64_t needed);
    // An enumeration of `count` values from `first`, or a value outside it.
    int enumeration(const char* name, int first, int count);
    // The CBLAS enumerations, any int as a C caller may pass (their type in C++ is int).
    CBLAS_LAYOUT layout() { return static_cast<CBLAS_LAYOUT>(enumeration("Layout", CblasRowMajor, 2)); }
    CBLAS_TRANSPOSE transpose(const char* name) {
        return static_cast<CBLAS_TRANSPOSE>(enumeration(name, CblasNoTrans, 3));
    }
    CBLAS_UPLO uplo() { return static_cast<CBLAS_UPLO>(enumeration("Uplo", CblasUpper, 2)); }
    CBLAS_DIAG diag() { return static_cast<CBLAS_DIAG>(enumeration("Diag", CblasNonUnit, 2)); }
    CBLAS_SIDE side() { return static_cast<CBLAS_SIDE>(enumeration("Side", CblasLeft, 2)); }
    // An option letter: one of `valid` in either case, or any byte.
    char letter(const char* name, const char* valid);
    double real(const char* name);
    zor_complex_double complex(const char* name);
    template <class T>
    T scalar(const char* name);

    // ---- the model: exactly one of these, after the arguments and before the arrays
    // CBLAS levels 2 and 3: `fortran` names the Fortran-style routine (blank-padded, "DGEMV ") of
    // the functions whose letters go on.
    void cblas(std::initializer_list<Check> checks, const char* fortran = nullptr);
    // LAPACK: `name` is the upper-case name that is reported, blank-padded to six characters.
    void lapack(const char* name, std::initializer_list<Check> checks);
    // LAPACK checks that read the caller's arrays (dtgevc counts the columns its selection needs
    // from S): stated after the arrays, they apply when the checks before them passed.
    void lapack_on_arrays(const char* name, std::initializer_list<Check> checks) {
        if (!error_) lapack(name, checks);
    }
    // No argument checks (CBLAS level 1, the auxiliaries): nothing is ever printed; `quick` says the
    // call must change nothing (N <= 0, say).
    void unchecked(bool quick = false);

    // ---- arrays, after the model
    template <class T>
    T* array(const char* name, std::int64_t count, Use use);
    // n elements at stride |inc| (with increment 0, one element visited n times: the call is skipped
    // when n is too large to be quick all the same).
    template <class T>
    T* vector(const char* name, std::int64_t n, zor_int inc, Use use) {
        T* v = array<T>(name, n <= 0 ? 0 : 1 + (n - 1) * (inc < 0 ? -std::int64_t{inc} : inc), use);
        if (inc == 0) steps(n);
        return v;
    }
    // rows x cols with leading dimension ld, by columns (by rows when `by_rows`).
    template <class T>
    T* matrix(const char* name, std::int64_t rows, std::int64_t cols, zor_int ld, Use use,
              bool by_rows = false) {
        if (by_rows) std::swap(rows, cols);
        return array<T>(name, rows <= 0 || cols <= 0 ? 0 : ld * (cols - 1) + rows, use);
    }
    // A triangle of order n, packed.
    template <class T>
    T* packed(const char* name, std::int64_t n, Use use) {
        return array<T>(name, n <= 0 ? 0 : n * (n + 1) / 2, use);
    }
    // Pivot indices for a routine to read: `n` entries, entry i (one-based) between i and
    // min(i + reach, n), as a factorisation leaves them.
    zor_int* pivots(const char* name, std::int64_t n, std::int64_t reach, Use use);

    // ---- running
    // Runs `call()` (unless its arrays were too large) and checks the printed text, the arrays and
    // the allocations against the model.
    template <class F>
    void run(F&& call) {
        if (!begin()) return;
        call();
        end();
    }
    // The same for a LAPACK export, which gets the address of its info; the info is checked too.
    template <class F>
    void run_lapack(F&& call) {
        zor_int info = kUnsetInfo;
        if (!begin()) return;
        call(&info);
        end();
        check_info(info);
    }
    // Whether the model lets the call compute.
    bool computes() const { return !error_ && !quick_; }
    // Whether the arrays have the sizes the arguments claim (the call is not skipped as too large):
    // only then may a shape fill them with contents of its own.
    bool full_size() const { return computes() && !too_large_; }
    // A further property of the result (checked inside run); fails the input with `what`.
    void require(bool ok, const char* what);

  private:
    static constexpr zor_int kUnsetInfo = 0x7eadbeef;

    struct Array {
        std::string name;
        unsigned char* data;
        std::size_t bytes;
        Use use;
        std::vector<unsigned char> before;
    };

    void log(const char* name, const std::string& value);
    void steps(std::int64_t count);
    unsigned char* allocate(const char* name, std::int64_t count, std::size_t element, Use use);
    void fill(unsigned char* data, std::size_t bytes, std::size_t element);
    bool begin();
    void end();
    void check_info(zor_int info);
    [[noreturn]] void fail(const std::string& what);
    std::string report(int parameter, const char* name) const;

    Input& input_;
    const char* routine_;
    std::string arguments_;
    bool modelled_ = false;
    bool error_ = false;  // an argument error is reported
    bool ended_ = false;  // ... and ends the call before anything is done
    bool quick_ = false;  // nothing to do, nothing to report
    bool lapack_ = false;
    zor_int expected_info_ = 0;
    std::string expected_;
    std::string printed_;
    std::vector<Array> arrays_;
    std::int64_t elements_ = 0;
    bool too_large_ = false;
    std::int64_t tiny_;
    std::uint32_t seed_;
    std::uint32_t poison_;
};

template <>
double Call::scalar<double>(const char* name);
template <>
zor_complex_double Call::scalar<zor_complex_double>(const char* name);

// Before the first input: turns the library's cache of work areas off (each work area then comes
// from malloc, where AddressSanitizer sees its bounds), installs the allocation counter and
// settles what the first message of a process sets up.
void prepare();

// An export and the function that fuzzes it.
struct Export {
    const char* name;
    void (*fuzz)(Call&);
};
std::span<const Export> cblas_exports();
std::span<const Export> lapack_exports();

inline std::int64_t max1(std::int64_t n) {
    return n > 1 ? n : 1;
}
inline std::int64_t min_of(std::int64_t a, std::int64_t b) {
    return a < b ? a : b;
}
inline std::int64_t max_of(std::int64_t a, std::int64_t b) {
    return a > b ? a : b;
}

// Scalars pass by value (real) or by address (complex) to the CBLAS functions.
inline double pass(const double& v) {
    return v;
}
inline const void* pass(const zor_complex_double& v) {
    return &v;
}

}  // namespace zor::fuzz
