// The history of the elimination: how tiles, rows and columns catch up with it.
//
// `end` is the number of steps that the history holds.
#pragma once

#include "calibration/inversion/elimination.h"
#include "calibration/inversion/tile_kernel.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// Which one of the tiles, for what is kept by tile.
template <class T>
ptrdiff_t tile(const Elimination<T>& e, int32_t down, int32_t across) {
    return across * ptrdiff_t{e.tiles_down} + down;
}

// Element j of the pivot row of step t; the rest of its part of the row follows.
template <class T>
T* row_step(const Elimination<T>& e, int32_t t, int32_t j) {
    const ptrdiff_t across = j / tile_columns;
    return e.rows + (across * history_steps + t) * tile_columns + j % tile_columns;
}

// Element i of the pivot column of step t; the rest of its part of the column follows.
template <class T>
T* column_step(const Elimination<T>& e, int32_t t, int32_t i) {
    const ptrdiff_t down = i / tile_rows;
    return e.columns + (down * history_steps + t) * tile_rows + i % tile_rows;
}

template <class T>
void settle_tile(const Elimination<T>& e, int32_t end, int32_t down, int32_t across) {
    uint8_t& applied = e.applied[tile(e, down, across)];
    const int32_t seen = applied;
    if (seen < end)
        update_tile(row_part(e, down * tile_rows, across), row_step(e, seen, across * tile_columns),
                    column_step(e, seen, down * tile_rows), end - seen);
    applied = static_cast<uint8_t>(end);
}

// After this the history can be started anew.
template <class T>
void settle_matrix(const Elimination<T>& e, int32_t end) {
    for (int32_t across = 0; across < e.tiles_across; ++across) {
        for (int32_t down = 0; down < e.tiles_down; ++down) {
            settle_tile(e, end, down, across);
            e.applied[tile(e, down, across)] = 0;
        }
    }
}

// Brings row i up to date ahead of its tiles. Zeros in the history keep them from applying its steps again.
template <class T>
void settle_row(const Elimination<T>& e, int32_t end, int32_t i) {
    for (int32_t across = 0; across < e.tiles_across; ++across) {
        const int32_t seen = e.applied[tile(e, i / tile_rows, across)];
        update_line<tile_columns>(row_part(e, i, across), row_step(e, seen, across * tile_columns),
                                  column_step(e, seen, i), tile_rows, end - seen);
    }
    for (int32_t t = 0; t < end; ++t)
        *column_step(e, t, i) = T{0};
}

// Copies column j and brings the copy up to date. It is to replace a column: zeros in the history keep the
// tiles from applying its steps again.
template <class T>
void take_column(const Elimination<T>& e, int32_t end, int32_t j, T* line) {
    const T* from = column(e, j);
    for (int32_t down = 0; down < e.tiles_down; ++down) {
        T* const part = line + down * tile_rows;
        for (int32_t i = 0; i < tile_rows; ++i, from += tile_columns)
            part[i] = *from;
        const int32_t seen = e.applied[tile(e, down, j / tile_columns)];
        update_line<tile_rows>(part, column_step(e, seen, down * tile_rows), row_step(e, seen, j),
                               tile_columns, end - seen);
    }
    for (int32_t t = 0; t < end; ++t)
        *row_step(e, t, j) = T{0};
}

} // namespace
} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
