// The matrix inversion in real arithmetic: the steps of complex_inversion.h without the imaginary parts,
// which stay zero for as long as every value is finite.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "calibration/pivot.h"

namespace zerklsc {

// An n x n matrix, row by row.
template <class T>
struct RealMatrix {
    T* data;
    int32_t n;

    T* row(int32_t i) const { return data + static_cast<size_t>(i) * static_cast<size_t>(n); }
    size_t count() const { return static_cast<size_t>(n) * static_cast<size_t>(n); }

    void swap_rows(int32_t i, int32_t k) const {
        if (i != k)
            std::swap_ranges(row(i), row(i) + n, row(k));
    }

    void swap_columns(int32_t j, int32_t k) const {
        for (int32_t i = 0; i < n && j != k; ++i)
            std::swap(row(i)[j], row(i)[k]);
    }
};

// The first element in row-major order, from (k, k) on, with the largest square.
template <class T>
Pivot<T> find_pivot(const RealMatrix<T>& a, int32_t k) {
    Pivot<T> best{T{0}, {k, k}};
    for (int32_t i = k; i < a.n; ++i) {
        const T* const row = a.row(i);
        for (int32_t j = k; j < a.n; ++j)
            if (row[j] * row[j] > best.magnitude)
                best = {row[j] * row[j], {i, j}};
    }
    return best;
}

// One step of the elimination, with the pivot at (k, k) and its square d. The reciprocal is taken as re / (re
// * re), which is not always the same number as 1 / re.
template <class T>
void eliminate(const RealMatrix<T>& a, int32_t k, T d) {
    T* const pivot_row = a.row(k);
    const T pivot = pivot_row[k] / d;
    for (int32_t j = 0; j < a.n; ++j)
        pivot_row[j] *= pivot;
    pivot_row[k] = pivot;
    for (int32_t i = 0; i < a.n; ++i) {
        if (i == k)
            continue;
        T* const row = a.row(i);
        const T factor = row[k];
        for (int32_t j = 0; j < a.n; ++j)
            row[j] -= pivot_row[j] * factor;
        row[k] = -(factor * pivot);
    }
}

// Inverts `a` in place; `order` has room for n pivots. False for a singular matrix.
template <class T>
bool invert(const RealMatrix<T>& a, PivotPlace* order) {
    for (int32_t k = 0; k < a.n; ++k) {
        const Pivot<T> pivot = find_pivot(a, k);
        if (pivot.magnitude == T{0})
            return false;
        order[k] = pivot.place;
        a.swap_rows(k, pivot.place.row);
        a.swap_columns(k, pivot.place.column);
        eliminate(a, k, pivot.magnitude);
    }
    for (int32_t k = a.n - 1; k >= 0; --k) {
        a.swap_rows(k, order[k].column);
        a.swap_columns(k, order[k].row);
    }
    return true;
}

// Whether what invert() left in `a` and returned as `regular` has the bits that complex arithmetic gives.
// Real arithmetic can differ in the signs of zeros alone, and those change nothing but other zeros, unless
// some value was not finite: then that is still to be seen, because such a value never turns into a finite
// one again. The elements of a singular matrix are of no interest.
template <class T>
bool settled(const RealMatrix<T>& a, bool regular) {
    return std::all_of(a.data, a.data + a.count(),
                       [regular](T v) { return std::isfinite(v) && (v != T{0} || !regular); });
}

} // namespace zerklsc
