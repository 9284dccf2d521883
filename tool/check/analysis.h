// What all checks of one capture look at.
#pragma once

#include <array>
#include <vector>

#include "check/lens_surface.h"
#include "check/noise.h"
#include "check/tiles.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

struct PlaneAnalysis {
    int tile_side = largest_tile_side;
    std::vector<NoisePoint> noise;
    LogCells cells;      // of the light above black
    double bright = 0;   // light of the brightest tenth of the tiles
    LensSurface surface; // of the cells
    std::vector<float>
        cell_rest;         // what the surface leaves of each cell, a fraction; 0 where there is no light
    double cell_noise = 0; // the deviation of that which noise explains
    std::vector<float> expected; // light of each tile by the surface
    std::vector<float> rest;     // what that leaves of each tile, as a fraction
};

struct Analysis {
    FrameTiles tiles;
    std::array<PlaneAnalysis, 4> planes;
};

// The frame still holds its black level, and at least 8 x 8 tiles.
Analysis analyse(const RawFrame& frame, const BlackLevel& black);

// The noise of a sample and of a tile's mean, as a fraction of the light.
double sample_noise(const PlaneAnalysis& plane, double black, double light);
double tile_noise(const PlaneAnalysis& plane, double black, double light);

} // namespace zerklsc::tool
