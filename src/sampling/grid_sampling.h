// Levels of a field at the nodes of a grid.
#pragma once

#include <cstdint>

#include "sampling/plane_set.h"
#include "sampling/window.h"

namespace zerklsc {

struct SampleGrid {
    int32_t step_x;
    int32_t step_y;
    int32_t columns;
    int32_t rows;
};

// The position of node i of a direction, moved onto the nearest sample of 0 .. n - 1.
int32_t node_position(int32_t i, int32_t step, int32_t n);

// Whether the windows around all nodes can be read. A grid without nodes asks for nothing.
bool grid_fits(const PlaneSet& planes, const Window& window, const SampleGrid& grid);

// Writes the mean level of each plane around each node, row by row: samples[c] of plane c.
void sample_grid(const PlaneSet& planes, const Window& window, const SampleGrid& grid,
                 float* const samples[]);

} // namespace zerklsc
