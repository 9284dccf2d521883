// How bright a plane is, block by block: the numbers that the tool prints about frames.
#pragma once

#include <array>
#include <vector>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// The plane divided into blocks x blocks blocks of (nearly) equal size.
struct PlaneLevels {
    int blocks = 0;
    std::vector<double> means; // of each block, row by row
    double mean = 0;           // of the whole plane

    double centre() const;
    // Top left, top right, bottom left, bottom right.
    std::array<double, 4> corners() const;
    // The mean of the corner blocks as a fraction of the centre block; 0 for a black centre.
    double corner_to_centre() const;
    // The largest deviation of a block from the plane's mean, as a fraction of that; 0 for a black plane.
    double flatness() const;
};

// The block count at which the tool measures where nothing else is said.
constexpr int usual_blocks = 11;

// The frame's black level must have been taken off, and its planes must have at least `blocks` samples each
// way.
PlaneLevels measure_plane(const RawFrame& frame, int plane, int blocks);

// The part of a plane's samples that stand at full scale, before black is taken off.
double clipped_fraction(const RawFrame& frame, int plane);

} // namespace zerklsc::tool
