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

// Corrects `count` samples of one image row from the row sums of the four table rows around it.
ZERKLSC_DECLARE_KERNEL(correct_row, void(const uint16_t* src, uint16_t* dst, int32_t count,
                                         const float* const sums[4], const float weights[4]))

} // namespace zerklsc
