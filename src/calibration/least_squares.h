// The least-squares system of the surface fit.
#pragma once

#include <cstdint>

#include "calibration/fit_points.h"
#include "calibration/flat_field.h"
#include "calibration/surface.h"
#include "frame/scratch.h"

namespace zerklsc {

// The inner nodes are the unknowns. They are the same combinations of the gains in all four channels, which
// have one matrix and differ in their right-hand sides.
struct System {
    Scratch<double> normal; // unknowns x unknowns
    Scratch<double> right;  // four for each unknown
};

// The raster of fit points: the crossings of the lines, on a grid whose nodes are `step` apart.
struct FitRaster {
    const SurfaceGrid& grid;
    int32_t step;
    const FitLines& columns;
    const FitLines& rows;
};

// The matrix alone, which no frame changes. Null where memory is lacking.
Scratch<double> normal_matrix(const FitRaster& raster);

// With the right-hand sides from the gains at the points. Without either where memory is lacking.
System make_system(const FitRaster& raster, const FlatField& flat);

// The inner nodes of the four channels, one channel after the other, once the matrix is inverted.
void solve(const System& system, const SurfaceGrid& grid, float* inner);

} // namespace zerklsc
