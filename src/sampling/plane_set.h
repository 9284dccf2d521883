// What the samplers read: one plane, or the four planes of a frame where they lie in its mosaic.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sampling/sum_kernels.h"

namespace zerklsc {

// Sample (x, y) of plane c stands in row interleave * y + c / interleave and column interleave * x + c %
// interleave of the buffer.
struct PlaneSet {
    const uint16_t* data;
    int32_t width;  // of each plane
    int32_t height; // of each plane
    ptrdiff_t stride;
    int32_t interleave; // 1 for a packed plane, 2 for a mosaic
    AddPairs* add_pairs;

    int32_t count() const { return interleave * interleave; }

    // The first sample of plane row y in the buffer row of that parity, of those that hold it.
    const uint16_t* row(ptrdiff_t y, int32_t parity) const {
        return data + (y * interleave + parity) * stride;
    }
};

PlaneSet single_plane(const uint16_t* plane, int32_t width, int32_t height);

// The planes of a raw frame of width x height samples.
PlaneSet mosaic_planes(const uint16_t* raw, int32_t width, int32_t height);

// A run of columns of a run of rows, all of which lie inside.
struct Block {
    int32_t x, y, columns, rows;
};

// Adds `weight` times the samples of the block to the sum of each plane.
void add_block(const PlaneSet& planes, const Block& block, uint64_t weight, uint64_t sums[4]);

} // namespace zerklsc
