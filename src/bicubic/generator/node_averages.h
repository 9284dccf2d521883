// How bright a plane is around each node of the grid.
#pragma once

#include <cstdint>

#include "bicubic/generator/colour_plane.h"
#include "bicubic/generator/geometry.h"
#include "frame/scratch.h"
#include "frame/view.h"

namespace zerklsc {

// Working memory of measure_nodes(). A node's block is 2 * margin + 1 samples wide and high.
struct BlockSums {
    Scratch<int32_t> columns; // of each plane column: its sum over the rows of the blocks
    Scratch<int64_t> left_of; // of each plane column: the sum of the columns left of it; one element more
};

// False when the memory cannot be had.
bool allocate_sums(const GeneratorGeometry& geometry, BlockSums& sums);

// Writes the mean of the block centred on each node, mirrored at the image edges, and returns the largest
// mean, at least 0. A node beyond the last sample is measured at the last sample.
double measure_nodes(const ColourPlane& plane, const GeneratorGeometry& geometry, const BlockSums& sums,
                     View<double> averages);

// Moves the last average of every row from the last sample, where it was measured, out to its node. Returns
// how many of the results are not above 0.
int32_t extend_last_nodes(const GeneratorGeometry& geometry, View<double> averages);

} // namespace zerklsc
