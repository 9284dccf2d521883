// The vertical pass: the gains of the grid columns around a row of the frame.
#pragma once

#include <cstddef>

#include "bicubic/correction/cells.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
// A row is corrected in blocks of so many cells, so that the strip between the passes has a size.
constexpr int32_t max_cells = 128;
constexpr int32_t block_columns = max_cells + 3 + columns_at_once;

// Gains of neighbouring grid columns on a row of the frame.
using Strip = uint16_t[block_columns];

static int32_t smaller_of(int32_t a, int32_t b) {
    return a < b ? a : b;
}

// Four grid rows from one column on: in the table, or a copy where whole vectors would leave it.
struct Nodes {
    const uint16_t* row[4];
    uint16_t copy[4][block_columns];
};

// Whether the table has all of `count` nodes from one on.
static bool has_nodes(const Correction& c, int64_t first, int32_t count) {
    return first >= 0 && first + count <= int64_t{c.table_w} * c.table_h;
}

// Copies `count` nodes and fills up a vector. Where the steps name nodes outside the table they go one by
// one.
static void copy_nodes(const Correction& c, int32_t plane, int32_t column, int32_t row, int32_t count,
                       uint16_t* copy) {
    const int64_t first = int64_t{row} * c.table_w + column;
    store(copy, Columns{});
    if (has_nodes(c, first, count))
        __builtin_memcpy(copy, c.table[plane] + first, static_cast<size_t>(count) * sizeof *copy);
    else
        for (int32_t i = 0; i < count; ++i)
            copy[i] = node(c, plane, column + i, row);
}

static void find_nodes(const Correction& c, int32_t plane, int32_t column, int32_t row, int32_t count,
                       Nodes& nodes) {
    const int32_t whole = count < columns_at_once ? columns_at_once : count;
    for (int32_t i = 0; i < 4; ++i) {
        const int64_t first = int64_t{row + i} * c.table_w + column;
        const bool in_table = has_nodes(c, first, whole);
        if (!in_table)
            copy_nodes(c, plane, column, row + i, count, nodes.copy[i]);
        nodes.row[i] = in_table ? c.table[plane] + first : nodes.copy[i];
    }
}

static void blend_rows(const Nodes& nodes, int32_t count, const PhaseWeights& weights, uint16_t* strip) {
    const int32_t other = weights.anchor == 0 ? 1 : 0;
    const RowTaps taps = row_taps(weights.tap + other);
    const uint16_t* const anchor = nodes.row[weights.anchor];
    const uint16_t* const a = nodes.row[other];
    const uint16_t* const b = nodes.row[other + 1];
    const uint16_t* const d = nodes.row[other + 2];
    const int32_t last = count < columns_at_once ? 0 : count - columns_at_once;
    for (int32_t next = 0; next < count; next += columns_at_once) {
        const int32_t i = smaller_of(next, last);
        store(strip + i, blended(taps, load<Columns>(anchor + i), load<Columns>(a + i), load<Columns>(b + i),
                                 load<Columns>(d + i)));
    }
}

// Fills the strips of both pixels of a Bayer pair with `count` grid columns.
static void fill_strips(const Correction& c, const RowPosition& row, int32_t column, int32_t count,
                        Strip strips[2]) {
    for (int32_t side = 0; side < 2; ++side) {
        const int32_t plane = 2 * row.parity + side;
        Nodes nodes;
        find_nodes(c, plane, column, row.first.cell, count, nodes);
        blend_rows(nodes, count, c.phases[row.first.phase], strips[side]);
        const int32_t kept = column < 4 ? 4 - column : 0;
        if (row.refill.cell != row.first.cell && kept < count) {
            find_nodes(c, plane, column + kept, row.refill.cell, count - kept, nodes);
            blend_rows(nodes, count - kept, c.phases[row.refill.phase], strips[side] + kept);
        }
    }
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
