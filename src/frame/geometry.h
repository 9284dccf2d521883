// How many nodes the ISPs lay over a plane; lsc2d_grid_samples() and lsc2d_table_size() are the rule of one.
#pragma once

#include <cstdint>

namespace zerklsc {

// The nodes up to the last sample, counted from that sample: where the size is one more than a whole number
// of cells this is one node less than lsc2d_grid_samples() has. The division truncates: a size of 0 has 2
// nodes, or 0 at a step of 1. The step is above 0.
constexpr int32_t nodes_to_last_sample(int32_t size, int32_t step) {
    const int32_t last = size - 1;
    return last / step + (last % step == 0 ? 1 : 2);
}

} // namespace zerklsc
