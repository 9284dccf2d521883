#include "calibration/inversion/elimination.h"

#include "calibration/inversion/pivot_search.h"
#include "calibration/inversion/tile_history.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// `end` is the number of steps in the history, k the number of pivots found so far.

template <class T>
void swap_rows(const Elimination<T>& e, int32_t i, int32_t k) {
    for (int32_t across = 0; across < e.tiles_across; ++across) {
        T* const a = row_part(e, i, across);
        T* const b = row_part(e, k, across);
        for (int32_t j = 0; j < tile_columns; ++j) {
            const T v = a[j];
            a[j] = b[j];
            b[j] = v;
        }
        T& bound = e.bounds[tile(e, i / tile_rows, across)];
        bound = max(bound, e.bounds[tile(e, k / tile_rows, across)]);
    }
}

// Writes the old column k to the place of column j.
template <class T>
void move_column(const Elimination<T>& e, const T* line, int32_t j, int32_t k) {
    T* to = column(e, j);
    for (int32_t i = 0; i < e.n; ++i, to += tile_columns)
        *to = line[i];
    for (int32_t down = 0; down < e.tiles_down; ++down) {
        T& bound = e.bounds[tile(e, down, j / tile_columns)];
        bound = max(bound, e.bounds[tile(e, down, k / tile_columns)]);
    }
}

// Exchanges rows and columns so that the pivot comes to (k, k). Column k, up to date, is returned and not
// written.
template <class T>
const T* bring_pivot(const Elimination<T>& e, int32_t end, int32_t k, const PivotPlace& place) {
    settle_row(e, end, k);
    if (place.row != k) {
        settle_row(e, end, place.row);
        swap_rows(e, place.row, k);
    }
    T* const line = e.lines;
    take_column(e, end, place.column, line);
    if (place.column != k) {
        T* const moved = e.lines + padded_rows(e);
        take_column(e, end, k, moved);
        move_column(e, moved, place.column, k);
    }
    return line;
}

// Adds the step of the pivot at (k, k), whose square is d, to the history. `line` is column k.
template <class T>
void add_step(const Elimination<T>& e, int32_t end, int32_t k, const T* line, T d) {
    // Not always the same number as 1 / line[k].
    const T pivot = line[k] / d;
    T* replaced = column(e, k);
    for (int32_t i = 0; i < e.n; ++i, replaced += tile_columns) {
        *column_step(e, end, i) = line[i];
        *replaced = -(line[i] * pivot);
    }
    for (int32_t across = 0; across < e.tiles_across; ++across) {
        T* const part = row_part(e, k, across);
        T* const step = row_step(e, end, across * tile_columns);
        for (int32_t j = 0; j < tile_columns; ++j)
            step[j] = part[j] *= pivot;
    }
    column(e, k)[ptrdiff_t{k} * tile_columns] = pivot;
    // The pivot's own row and column are not changed by its step.
    *row_step(e, end, k) = T{0};
    *column_step(e, end, k) = T{0};
}

template <class T>
bool eliminate(const Elimination<T>& e) {
    int32_t end = 0;
    int32_t k = 0;
    for (; k < e.n; ++k) {
        const Pivot<T> pivot = find_pivot(e, end, k);
        if (pivot.magnitude == T{0})
            break;
        e.places[k] = pivot.place;
        const T* const line = bring_pivot(e, end, k, pivot.place);
        add_step(e, end, k, line, pivot.magnitude);
        raise_bounds(e, end, k);
        if (++end == history_steps) {
            settle_matrix(e, end);
            end = 0;
        }
    }
    settle_matrix(e, end);
    return k == e.n;
}

} // namespace

bool eliminate_floats(const Elimination<float>& e) {
    return eliminate(e);
}

bool eliminate_doubles(const Elimination<double>& e) {
    return eliminate(e);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
