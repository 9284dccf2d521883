// The averages around the grid nodes of one channel.
#pragma once

#include <cstdint>

#include "bicubic/generator/geometry.h"
#include "bicubic/generator/colour_plane.h"
#include "frame/scratch.h"
#include "frame/view.h"

namespace zerklsc {

// Twice the margin of the call that is running: a block is one sample wider and higher. It is library-wide by
// design, and a second call would change the blocks of the first: the generators are not reentrant.
extern int32_t doubled_margin;

// Working memory of block_averages().
struct BlockSums {
    Scratch<int32_t> columns;  // one sum per channel column
    Scratch<int64_t> leftward; // the sum of all columns left of each position; one element more
};

// Writes the mean of the block centred on each node, mirrored at the image edges, and returns the largest
// mean, at least 0. A node beyond the last sample is measured at the last sample.
double block_averages(const Channel& channel, const GeneratorGeometry& geometry, const BlockSums& sums,
                      View<double> averages);

// Moves the last average of every row from the last sample, where it was measured, out to its node, and
// prints one line for every result that is not above 0.
void extend_last_nodes(const GeneratorGeometry& geometry, View<double> averages);

} // namespace zerklsc
