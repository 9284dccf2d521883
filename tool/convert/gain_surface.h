// Gains between the nodes of another program's grid, and beyond them.
#pragma once

#include <functional>
#include <vector>

namespace zerklsc::tool {

// A gain for every place of a frame: x and y are fractions of its sides from edge to edge, and may lie a
// little beyond.
using GainSurface = std::function<double(double x, double y)>;

// Nodes in one direction at equal distances, as fractions of the frame.
struct GridAxis {
    int count = 0;
    double first = 0;
    double spacing = 0;
};

// The gains of the nodes, row by row.
struct GainGrid {
    GridAxis x, y;
    std::vector<double> gains;
};

// The library's bicubic interpolation of the grid within a quadratic border. Beyond the outermost nodes the
// surface goes on as the parabola through its values at the edge, as far inside and twice as far inside.
GainSurface surface_of(GainGrid grid);

} // namespace zerklsc::tool
