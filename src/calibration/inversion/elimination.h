// Gauss-Jordan elimination with full pivoting in real arithmetic, compiled for each instruction set.
//
// Most of the work is put off: the last steps stay in a history, and a tile of the matrix sees them when it
// may hold the next pivot or when the history is full. So memory is passed over once for many steps. Every
// element still sees every step in order, and the pivots are those of a search through all elements.
#pragma once

#include <cstddef>
#include <cstdint>

#include "calibration/inversion/pivot.h"
#include "cpu/dispatch.h"

namespace zerklsc {

constexpr int32_t tile_rows = 8;
constexpr int32_t tile_columns = 32;
constexpr int32_t history_steps = 24;

// The matrix and the working memory. What lies beyond its n-th row and column, up to whole tiles, is zero.
template <class T>
struct Elimination {
    int32_t n;
    int32_t tiles_down;
    int32_t tiles_across;
    T* matrix;          // panels of tile_columns columns, one after the other, each row by row
    T* rows;            // history: by tile column, the parts of the pivot rows, scaled
    T* columns;         // history: by tile row, the parts of the pivot columns, as they were before the step
    T* lines;           // two columns of the matrix
    T* bounds;          // by tile: no element that can still be a pivot has a larger magnitude
    T* reach;           // by tile row: the largest magnitudes in the newest pivot column
    uint8_t* applied;   // by tile: how many steps of the history its elements have seen
    PivotPlace* places; // n elements, written: where the pivots were found
};

static_assert(history_steps <= UINT8_MAX);

// Not shared between the instruction sets: each has its own.
namespace {

template <class T>
ptrdiff_t padded_rows(const Elimination<T>& e) {
    return ptrdiff_t{e.tiles_down} * tile_rows;
}

// Row i of the matrix within a panel: tile_columns elements.
template <class T>
T* row_part(const Elimination<T>& e, int32_t i, int32_t panel) {
    return e.matrix + (panel * padded_rows(e) + i) * tile_columns;
}

// The first element of column j; the next one is tile_columns further on.
template <class T>
T* column(const Elimination<T>& e, int32_t j) {
    return row_part(e, 0, j / tile_columns) + j % tile_columns;
}

} // namespace

// Turns the matrix into its inverse with rows and columns still out of place. False for a singular matrix.
ZERKLSC_DECLARE_KERNEL(eliminate_floats, bool(const Elimination<float>& e))
ZERKLSC_DECLARE_KERNEL(eliminate_doubles, bool(const Elimination<double>& e))

} // namespace zerklsc
