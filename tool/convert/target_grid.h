// Gain tables read at the positions of another program's grid.
#pragma once

#include <array>
#include <vector>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// Where the points of a grid are in one direction, as fractions of the raw frame from edge to edge.
std::vector<double> corner_points(int count); // the first and the last on the edges
std::vector<double> cell_centres(int count);  // of `count` equal cells

// A gain for every point and colour, row by row.
struct TargetGrid {
    int columns = 0;
    int rows = 0;
    std::array<std::vector<double>, 4> gains; // by Colour

    const std::vector<double>& of(Colour colour) const { return gains[static_cast<size_t>(colour)]; }
};

// Evaluates the bordered tables by the library's bicubic interpolation at the points. A point beyond the
// outermost samples of a plane is read on the curve of its outermost cell.
TargetGrid evaluate(const GainTables& tables, const std::vector<double>& x, const std::vector<double>& y);

} // namespace zerklsc::tool
