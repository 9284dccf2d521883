// A frame as statistics of small tiles: the one pass over the samples that all checks share.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// A tile is 8 plane samples wide and high; in a frame that would have less than 8 rows or columns of them,
// 4 or 2. What is left over at the right and bottom edge belongs to no tile.
constexpr int largest_tile_side = 8, smallest_tile_side = 2, least_tiles = 8;

// The tiles of one plane, row by row.
struct PlaneTiles {
    std::vector<float> mean;       // of the samples, black level included
    std::vector<float> variance_h; // of the noise, from differences of horizontal neighbours
    std::vector<float> variance_v; // of the noise, from differences of vertical neighbours
    std::vector<uint16_t> darkest; // sample
    std::vector<uint16_t> brightest;
    std::vector<float> row_means;    // of each plane row, over the columns of the tiles
    std::vector<float> column_means; // of each plane column, over the rows of the tiles
};

struct FrameTiles {
    int side = largest_tile_side; // of a tile, in plane samples
    int columns = 0;
    int rows = 0;
    double across = 0, down = 0;      // columns and rows of tiles with what is left over at the edge
    std::array<PlaneTiles, 4> planes; // by plane number

    int tile_samples() const { return side * side; }
    // Of a plane, in all tiles.
    double samples() const { return static_cast<double>(count()) * tile_samples(); }
    size_t count() const { return static_cast<size_t>(columns) * static_cast<size_t>(rows); }
    size_t index(int column, int row) const {
        return static_cast<size_t>(row) * static_cast<size_t>(columns) + static_cast<size_t>(column);
    }
};

// Neighbours are taken in pairs that do not overlap, so that half the mean square of their differences is the
// variance of the noise wherever the light changes slowly (J. von Neumann and others, "The mean square
// successive difference", Annals of Mathematical Statistics 12, 1941). The frame holds at least one tile.
FrameTiles measure_tiles(const RawFrame& frame);

// How often each sample value occurs in the tiles of a plane; every `row_step`-th plane row is counted.
std::vector<uint32_t> histogram_of(const RawFrame& frame, int plane, int row_step);

} // namespace zerklsc::tool
