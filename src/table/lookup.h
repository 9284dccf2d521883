// Reading a gain table between its nodes, 4 x 4 nodes at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "table/cubic.h"

namespace zerklsc {

// Where a position lies among the nodes in one direction: between inner nodes `cell` and `cell` + 1. Because
// of the border these are table columns `cell` + 1 and `cell` + 2, and the four taps fall on columns `cell`
// to `cell` + 3.
struct NodeTaps {
    int32_t cell;
    Taps taps;
};

// position >= 0, step >= 1.
inline NodeTaps node_taps(int32_t position, int32_t step) {
    const float fraction = static_cast<float>(position % step) * (1.0f / static_cast<float>(step));
    return {position / step, cubic_taps(fraction)};
}

inline float row_sum(const uint16_t* nodes, const Taps& taps) {
    return taps.c0 * static_cast<float>(nodes[0]) + taps.c1 * static_cast<float>(nodes[1])
           + taps.c2 * static_cast<float>(nodes[2]) + taps.c3 * static_cast<float>(nodes[3]);
}

// The gain at (x, y), still in units of 1/1024: each of the four rows first, then their sums.
inline float lookup(const uint16_t* table, ptrdiff_t row_length, const NodeTaps& x, const NodeTaps& y) {
    const uint16_t* const first = table + y.cell * row_length + x.cell;
    return y.taps.c0 * row_sum(first, x.taps) + y.taps.c1 * row_sum(first + row_length, x.taps)
           + y.taps.c2 * row_sum(first + 2 * row_length, x.taps)
           + y.taps.c3 * row_sum(first + 3 * row_length, x.taps);
}

} // namespace zerklsc
