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

// Its right-hand sides are of the gains at the points; no frame changes its matrix. Without either where
// memory is lacking.
System make_system(const FitRaster& raster, const FlatField& flat);

// The same with gains of 1, as a frame of one level has them.
System unity_system(const FitRaster& raster);

// The inner nodes of the four channels, one channel after the other, once the matrix is inverted.
void solve(const System& system, const SurfaceGrid& grid, float* inner);

} // namespace zerklsc
