// matrix_inv
#include "calibration/inversion/matrix_inv.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "calibration/inversion/complex_inversion.h"
#include "calibration/inversion/elimination.h"
#include "calibration/inversion/elimination_memory.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

bool eliminate(Elimination<float>& e) {
    return ZERKLSC_KERNEL(eliminate_floats)(e);
}

bool eliminate(Elimination<double>& e) {
    return ZERKLSC_KERNEL(eliminate_doubles)(e);
}

// Whether real arithmetic has left the bits that complex arithmetic would have left.
//
// With imaginary parts of zero, a complex product has the real part re1 * re2 - 0 * 0. That is the real
// product, except that subtracting a zero may turn -0 into +0. So as long as all values are finite, the two
// forms can only differ in the signs of zeros; and the sign of a zero changes no sum and no product but those
// that are zeros themselves. A result without a zero is therefore right in every bit.
//
// A value that is not finite makes the imaginary parts NaN, and those reach the real parts of other elements.
// No later step makes a finite value of an element that is not, so a matrix that ends finite was finite all
// along.
//
// A singular matrix has no result, whose zeros could matter.
template <class T>
bool is_exact(const Elimination<T>& e, bool regular) {
    const auto is_exact_value = [regular](T v) { return std::isfinite(v) && (v != T{0} || !regular); };
    for (int32_t i = 0; i < e.n; ++i) {
        for (int32_t j = 0; j < e.n; j += tile_columns<T>) {
            const T* const part = row_part(e, i, j / tile_columns<T>);
            if (!std::all_of(part, part + std::min(tile_columns<T>, e.n - j), is_exact_value))
                return false;
        }
    }
    return true;
}

template <class T>
void copy_in(const T* a, const Elimination<T>& e) {
    for (int32_t i = 0; i < e.n; ++i) {
        for (int32_t j = 0; j < e.n; j += tile_columns<T>) {
            const int32_t count = std::min(tile_columns<T>, e.n - j);
            std::copy_n(a, count, row_part(e, i, j / tile_columns<T>));
            a += count;
        }
    }
}

// Undoes the exchanges of the pivots' rows and columns, last one first.
template <class T>
void copy_out(const Elimination<T>& e, Position* sources, T* a) {
    for (int32_t k = 0; k < e.n; ++k)
        sources[k] = {k, k};
    for (int32_t k = e.n - 1; k >= 0; --k) {
        std::swap(sources[k].row, sources[e.pivots[k].column].row);
        std::swap(sources[k].column, sources[e.pivots[k].row].column);
    }
    for (int32_t i = 0; i < e.n; ++i)
        for (int32_t j = 0; j < e.n; ++j)
            *a++ = column(e, sources[j].column)[ptrdiff_t{sources[i].row} * tile_columns<T>];
}

} // namespace

// Works on a copy, so that complex arithmetic can start anew where real arithmetic may not be exact;
// the copy's memory then holds the imaginary parts.
template <class T>
Inversion invert_matrix(T* a, int32_t n) {
    Workspace<T> w = make_workspace<T>(n);
    if (!w.complete())
        return Inversion::no_memory;
    Elimination<T>& e = w.elimination;
    copy_in(a, e);
    bool regular = eliminate(e);
    if (!is_exact(e, regular))
        regular = invert(ComplexMatrix<T>{a, w.values.get(), n}, w.pivots.get());
    else if (regular)
        copy_out(e, w.sources.get(), a);
    return regular ? Inversion::done : Inversion::singular;
}

template Inversion invert_matrix<float>(float* a, int32_t n);
template Inversion invert_matrix<double>(double* a, int32_t n);

} // namespace zerklsc

template <class T>
int matrix_inv(T* a, int n) {
    if (n <= 0)
        return 0;
    return zerklsc::invert_matrix(a, n) == zerklsc::Inversion::done ? 0 : -1;
}

template int matrix_inv<float>(float* a, int n);
template int matrix_inv<double>(double* a, int n);
