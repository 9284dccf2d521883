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
    Scratch<double> normal; // unknowns x unknowns; null where memory is lacking
    Scratch<double> right;  // four for each unknown
};

// From the gains at the crossings of the lines, `step` being the distance of the nodes.
System make_system(const SurfaceGrid& grid, int32_t step, const FitLines& columns, const FitLines& rows,
                   const FlatField& flat);

// The inner nodes of the four channels, one channel after the other, once the matrix is inverted.
void solve(const System& system, const SurfaceGrid& grid, float* inner);

} // namespace zerklsc
