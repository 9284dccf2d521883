// How bright the planes of a frame are, place by place: the numbers that the tool prints about frames.
#pragma once

#include <array>
#include <vector>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// The means, or other numbers, of the blocks that a plane is divided into, row by row.
struct BlockMeans {
    int columns = 0;
    int rows = 0;
    std::vector<double> values;

    double at(int column, int row) const { return values[static_cast<size_t>(row * columns + column)]; }
};

// A deviation, as a fraction, and the pixel of the frame in the middle of where it is.
struct Deviation {
    double fraction = 0;
    int x = 0, y = 0;
};

struct PlaneLevels {
    BlockMeans coarse; // as many blocks each way as were asked for
    BlockMeans fine; // about a sixty-fourth of the shorter side each, at least 8 samples; both counts are odd
    double mean = 0; // of the whole plane
    int frame_width = 0, frame_height = 0;

    // Of the fine block in the middle.
    double centre() const;
    // Of the fine blocks in the corners: top left, top right, bottom left, bottom right.
    std::array<double, 4> corners() const;
    // The mean of the corners as a fraction of the centre; 0 for a black centre.
    double corner_to_centre() const;
    // The largest deviation of a coarse block from the plane's mean, as a fraction of that; 0 for a black
    // plane.
    double flatness() const;
    // The fine block that deviates most from the plane's mean.
    Deviation worst() const;
};

using FrameLevels = std::array<PlaneLevels, 4>; // by plane

// The coarse blocks each way where nothing else is said.
constexpr int usual_block_count = 11;
// As many, as far as the frame has so many samples.
int usual_blocks(const RawDescription& frame);

// What is above `black`; the planes must have at least `blocks` samples each way.
FrameLevels measure_planes(const RawFrame& frame, const BlackLevel& black, int blocks);

const PlaneLevels& levels_of(const FrameLevels& levels, BayerPattern pattern, Colour colour);

// How far (colour / green) of each fine block is from that of the centre, as a fraction. Green is the mean of
// both. 0 where the block or the centre is black.
BlockMeans colour_changes(const FrameLevels& levels, BayerPattern pattern, Colour colour);

// The largest of these.
Deviation colour_shading(const FrameLevels& levels, BayerPattern pattern, Colour colour);

// Adds what is above black in row `y` of the frame to the sums of its columns, which belong to two planes in
// turn.
void add_light(const RawFrame& frame, int y, const BlackLevel& black, std::vector<uint32_t>& column_sums);

// The part of each plane's samples that stand at the white level, before black is taken off.
std::array<double, 4> clipped_fractions(const RawFrame& frame);

} // namespace zerklsc::tool
