// Gauss-Jordan elimination with full pivoting in real arithmetic, compiled for each instruction set.
//
// A step of the elimination changes every element of the matrix, which is larger than the caches. So steps
// are kept pending: the matrix is divided into tiles, and a tile has the pending steps applied when it may
// hold the next pivot, when one of its rows is needed, or when no more steps can be kept. An element still
// sees every step in order, and the pivots are those of a search through all elements.
//
// What lets the search pass over a tile is a bound: none of its elements is larger. A step subtracts from an
// element the product of an element of the pivot's column and one of the pivot's row, so it raises the bound
// by no more than the product of their largest magnitudes. Rounding keeps the order of numbers, so the bound
// holds for the rounded results too.
//
// Where the elements of a pivot's column are 0, a step changes no element but the sign of zeros, which is
// left to the complex form (matrix_inv.cpp), and so is a row that is not finite: such steps are passed over
// where they come before all others that are pending for a tile. Matrices of fits begin with few elements
// that are not 0.
#pragma once

#include <cstddef>
#include <cstdint>

#include "calibration/inversion/pivot.h"
#include "cpu/dispatch.h"

namespace zerklsc {

// A row of a tile fills four cache lines.
constexpr int32_t tile_rows = 4;
template <class T>
constexpr int32_t tile_columns = 256 / int32_t{sizeof(T)};
constexpr int32_t max_pending = 24;

// The matrix and the working memory. A panel holds tile_columns columns, row by row; rows and columns are
// made up to whole tiles with zeros.
template <class T>
struct Elimination {
    int32_t n;
    int32_t tiles;    // of a panel
    int32_t panels;   // of the matrix
    T* matrix;        // panel by panel
    T* pivot_rows;    // for each panel and pending step: the pivot's row, divided by the pivot
    T* pivot_columns; // for each row of tiles and pending step: the pivot's column, as it was before the step
    T* columns;       // two columns of the matrix
    T* bounds;        // for each tile: no element that can still be a pivot has a larger magnitude
    uint32_t* steps;  // for each row of tiles: the pending steps that change it, as bits
    uint8_t* applied; // for each tile: how many of the pending steps it has seen
    Position* pivots; // where each pivot was found
    int32_t step; // how many pivots were found; also the row and the column that the next one is brought to
    int32_t pending; // how many steps are kept
};

static_assert(max_pending < 32);

// Not shared between the instruction sets: each has its own.
namespace {

// The part of a row that lies in a panel.
template <class T>
T* row_part(const Elimination<T>& e, int32_t row, int32_t panel) {
    return e.matrix + (ptrdiff_t{panel} * e.tiles * tile_rows + row) * tile_columns<T>;
}

// The first element of a column; the next one is tile_columns further on.
template <class T>
T* column(const Elimination<T>& e, int32_t j) {
    return row_part(e, 0, j / tile_columns<T>) + j % tile_columns<T>;
}

} // namespace

// Turns the matrix into its inverse with rows and columns still out of place. False for a singular matrix.
ZERKLSC_DECLARE_KERNEL(eliminate_floats, bool(Elimination<float>& e))
ZERKLSC_DECLARE_KERNEL(eliminate_doubles, bool(Elimination<double>& e))

} // namespace zerklsc
