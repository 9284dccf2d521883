// What the samplers read: one plane, or the four planes of a frame where they lie in its mosaic.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sampling/pair_sum.h"

namespace zerklsc {

// Sample (x, y) of plane c stands in row interleave * y + c / interleave and column
// interleave * x + c % interleave of the buffer.
struct Field {
    const uint16_t* data;
    int32_t width;  // of each plane
    int32_t height; // of each plane
    ptrdiff_t stride;
    int32_t interleave; // 1 for a packed plane, 2 for a mosaic
    AddPairs* add_pairs;

    int32_t planes() const { return interleave * interleave; }

    // The first sample of plane row y in buffer row `part` of those that share it.
    const uint16_t* row(ptrdiff_t y, int32_t part) const { return data + (y * interleave + part) * stride; }
};

Field plane_field(const uint16_t* plane, int32_t width, int32_t height);

// The planes of a raw frame of width x height samples.
Field mosaic_field(const uint16_t* raw, int32_t width, int32_t height);

// Adds the samples of columns x .. x + columns - 1 of rows y .. y + rows - 1, which lie inside, to the sum of
// each plane.
void add_block(const Field& field, int32_t x, int32_t y, int32_t columns, int32_t rows, uint64_t sums[4]);

} // namespace zerklsc
