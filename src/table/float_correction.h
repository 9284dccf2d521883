// The parts of lsc2d_bicubic_correction().
#pragma once

#include <cstddef>
#include <cstdint>

#include "cpu/dispatch.h"

namespace zerklsc {

// A plane, its corrected copy, and the gain table over it; both steps are above 0.
struct FloatCorrection {
    const uint16_t* src;
    uint16_t* dst;
    int32_t width, height;
    const uint16_t* table;
    int32_t step_x, step_y;
    ptrdiff_t row_length;
};

// The weights of adjoining columns. The first stands `phase` columns behind its node, the nodes are `step`
// apart.
struct ColumnTaps {
    int32_t count, step, phase;
    const float* taps[4];
};

// Reduces one table row to a row sum for every column; `nodes` is the first tap of the first column.
ZERKLSC_DECLARE_KERNEL(sum_nodes, void(const ColumnTaps& columns, const uint16_t* nodes, float* sums))

// So many rows between the same table rows are corrected together, which is faster than one by one.
inline constexpr int32_t most_rows = 4;

// Neighbouring rows between the same table rows, from one column on; `stride` lies between two rows of each
// plane.
struct RowGroup {
    const uint16_t* src;
    uint16_t* dst;
    ptrdiff_t stride;
    int32_t count, rows; // samples of a row, and rows
    const float* sums[4];
    float weights[most_rows][4];
};

ZERKLSC_DECLARE_KERNEL(correct_rows, void(const RowGroup& group))

} // namespace zerklsc
