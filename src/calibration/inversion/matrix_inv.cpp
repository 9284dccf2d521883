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

bool eliminate(const Elimination<float>& e) {
    return ZERKLSC_KERNEL(eliminate_floats)(e);
}

bool eliminate(const Elimination<double>& e) {
    return ZERKLSC_KERNEL(eliminate_doubles)(e);
}

// Whether the elimination left the bits that complex arithmetic leaves. Real arithmetic can differ in the
// signs of zeros alone, and those change nothing but other zeros, unless some value was not finite: then that
// is still to be seen, because no such value turns into a finite one again. The elements of a singular matrix
// are of no interest.
template <class T>
bool settled(const Elimination<T>& e, bool regular) {
    const auto fine = [regular](T v) { return std::isfinite(v) && (v != T{0} || !regular); };
    for (int32_t i = 0; i < e.n; ++i) {
        for (int32_t j = 0; j < e.n; j += tile_columns) {
            const T* const part = row_part(e, i, j / tile_columns);
            if (!std::all_of(part, part + std::min(tile_columns, e.n - j), fine))
                return false;
        }
    }
    return true;
}

template <class T>
void copy_in(const T* a, const Elimination<T>& e) {
    for (int32_t i = 0; i < e.n; ++i) {
        for (int32_t j = 0; j < e.n; j += tile_columns) {
            const int32_t count = std::min(tile_columns, e.n - j);
            std::copy_n(a, count, row_part(e, i, j / tile_columns));
            a += count;
        }
    }
}

// Undoes the exchanges of the pivots' rows and columns, last one first.
template <class T>
void copy_out(const Elimination<T>& e, PivotPlace* sources, T* a) {
    for (int32_t k = 0; k < e.n; ++k)
        sources[k] = {k, k};
    for (int32_t k = e.n - 1; k >= 0; --k) {
        std::swap(sources[k].row, sources[e.places[k].column].row);
        std::swap(sources[k].column, sources[e.places[k].row].column);
    }
    for (int32_t i = 0; i < e.n; ++i)
        for (int32_t j = 0; j < e.n; ++j)
            *a++ = column(e, sources[j].column)[ptrdiff_t{sources[i].row} * tile_columns];
}

} // namespace

// Works on a copy, so that complex arithmetic can start anew where real arithmetic does not settle the bits;
// the copy's memory then holds the imaginary parts.
template <class T>
Inversion invert_matrix(T* a, int32_t n) {
    const Workspace<T> w = make_workspace<T>(n);
    if (!w.complete())
        return Inversion::no_memory;
    const Elimination<T>& e = w.elimination;
    copy_in(a, e);
    bool regular = eliminate(e);
    if (!settled(e, regular))
        regular = invert(ComplexMatrix<T>{a, w.values.get(), n}, w.places.get());
    else if (regular)
        copy_out(e, w.places.get() + n, a);
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
