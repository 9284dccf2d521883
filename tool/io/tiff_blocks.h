// Samples of a DNG in whole words, in strips or tiles wherever they stand in the file.
#pragma once

#include <cstdint>
#include <vector>

#include "io/dng_mosaic.h"

namespace zerklsc::tool {

// A rectangle of the mosaic, in samples.
struct SampleArea {
    uint64_t left, top, width, height;
};

// How many strips hold the mosaic; 0 where it is in tiles, or in nothing.
uint32_t strip_count(const DngMosaic& mosaic);

// Whether the mosaic is in strips of which each begins where the one before ends.
bool is_in_one_piece(DngMosaic& mosaic);

// A data failure where the lossless JPEG of the one strip or of a tile promises more samples than that has: a
// decoder would go through all of them.
void check_jpeg_sizes(DngMosaic& mosaic);

// The 16-bit samples of an area, row by row; a data failure where strips or tiles do not cover the mosaic, or
// end behind the file.
std::vector<uint16_t> read_blocks(InputFile& file, DngMosaic& mosaic, const SampleArea& area);

} // namespace zerklsc::tool
