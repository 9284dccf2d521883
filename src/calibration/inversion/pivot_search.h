// The search for the pivot among tiles that are not up to date.
//
// `end` is the number of steps in the history, k the number of pivots found so far.
#pragma once

#include "calibration/inversion/elimination.h"
#include "calibration/inversion/tile_history.h"
#include "calibration/inversion/tile_kernel.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

template <class N>
N max(N a, N b) {
    return a > b ? a : b;
}

// The largest magnitude among the elements of a tile that can still be pivots.
template <class T>
T active_largest(const Elimination<T>& e, int32_t k, int32_t down, int32_t across) {
    const int32_t i = max(k - down * tile_rows, 0);
    const int32_t j = max(k - across * tile_columns, 0);
    const T* row = row_part(e, down * tile_rows + i, across);
    const T* const last = row_part(e, (down + 1) * tile_rows, across);
    if (j == 0)
        return largest_of_rows(row, last);
    T most = 0;
    for (; row < last; row += tile_columns)
        most = max(most, largest(row + j, row + tile_columns));
    return most;
}

// Brings a tile and its bound up to date; the square of the bound.
template <class T>
T refresh_tile(const Elimination<T>& e, int32_t end, int32_t k, int32_t down, int32_t across) {
    settle_tile(e, end, down, across);
    T& bound = e.bounds[tile(e, down, across)];
    bound = active_largest(e, k, down, across);
    return bound * bound;
}

// The tile that is most likely to hold the largest element.
template <class T>
PivotPlace widest_bound(const Elimination<T>& e, int32_t k) {
    const int32_t top = k / tile_rows;
    PivotPlace place = {top, k / tile_columns};
    T most = e.bounds[tile(e, place.row, place.column)];
    for (int32_t across = place.column; across < e.tiles_across; ++across) {
        const T* const bounds = e.bounds + tile(e, 0, across);
        for (int32_t down = top; down < e.tiles_down; ++down) {
            if (bounds[down] > most) {
                most = bounds[down];
                place = {down, across};
            }
        }
    }
    return place;
}

// Brings up to date all tiles whose elements can have the largest square, which is returned.
template <class T>
T largest_square(const Elimination<T>& e, int32_t end, int32_t k) {
    const PivotPlace likely = widest_bound(e, k);
    T best = refresh_tile(e, end, k, likely.row, likely.column);
    for (int32_t across = k / tile_columns; across < e.tiles_across; ++across) {
        for (int32_t down = k / tile_rows; down < e.tiles_down; ++down) {
            const T bound = e.bounds[tile(e, down, across)];
            if (bound * bound < best)
                continue;
            const T square = refresh_tile(e, end, k, down, across);
            best = square > best ? square : best;
        }
    }
    return best;
}

// The first row of tiles with the largest square in one of them.
template <class T>
int32_t first_with(const Elimination<T>& e, int32_t k, T best) {
    int32_t first = e.tiles_down;
    for (int32_t across = k / tile_columns; across < e.tiles_across; ++across) {
        const T* const bounds = e.bounds + tile(e, 0, across);
        for (int32_t down = k / tile_rows; down < first; ++down)
            if (bounds[down] * bounds[down] == best)
                first = down;
    }
    return first;
}

// The first element in row-major order, from (k, k) on, with the largest square.
template <class T>
Pivot<T> find_pivot(const Elimination<T>& e, int32_t end, int32_t k) {
    const T best = largest_square(e, end, k);
    const int32_t top = first_with(e, k, best) * tile_rows;
    for (int32_t i = max(top, k); i < e.n; ++i) {
        for (int32_t across = k / tile_columns; across < e.tiles_across; ++across) {
            const T bound = e.bounds[tile(e, i / tile_rows, across)];
            if (bound * bound != best)
                continue;
            const T* const part = row_part(e, i, across);
            for (int32_t j = max(k - across * tile_columns, 0); j < tile_columns; ++j)
                if (part[j] * part[j] == best)
                    return {best, {i, across * tile_columns + j}};
        }
    }
    return {T{0}, {k, k}};
}

// What the newest step can add to the elements of each tile. Rounding keeps the order of numbers, so the
// bounds hold for the rounded results.
template <class T>
void raise_bounds(const Elimination<T>& e, int32_t newest, int32_t k) {
    const int32_t top = (k + 1) / tile_rows;
    for (int32_t down = top; down < e.tiles_down; ++down) {
        const T* const part = column_step(e, newest, down * tile_rows);
        e.reach[down] = largest(part + max(k + 1 - down * tile_rows, 0), part + tile_rows);
    }
    for (int32_t across = (k + 1) / tile_columns; across < e.tiles_across; ++across) {
        const T* const part = row_step(e, newest, across * tile_columns);
        const T reach = largest(part + max(k + 1 - across * tile_columns, 0), part + tile_columns);
        T* const bounds = e.bounds + tile(e, 0, across);
        for (int32_t down = top; down < e.tiles_down; ++down)
            bounds[down] += e.reach[down] * reach;
    }
}

} // namespace
} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
