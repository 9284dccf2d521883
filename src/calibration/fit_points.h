// Where the surface fit measures the planes: a raster of columns and rows that is denser along the edges.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "sampling/window.h"
#include "zerklsc_driver.h"

namespace zerklsc {

// The columns, or the rows, of the raster.
struct FitLines {
    Scratch<int16_t> at; // null where the list was refused or could not be allocated
    int32_t count;       // 0 where it was refused

    const int16_t* begin() const { return at.get(); }
    const int16_t* end() const { return at.get() + count; }
};

// The lines of a plane of `extent` samples: every eighth of a step from `start` up to `step`, every half step
// from there to the centre, the centre, and all but the centre mirrored. Refused where a list would never end
// because the eighth or the half is 0. Positions have 16 bits; where the step is longer than the plane,
// mirrored lines may lie before the plane's first sample.
FitLines fit_lines(int32_t extent, int32_t step, int32_t start);

// Whether the lines are there and the windows around them can be read on a plane of that extent; otherwise
// ZERKLSC_BAD_STEP, ZERKLSC_BAD_RADIUS or ZERKLSC_NO_MEMORY.
zerklsc_status check_lines(const FitLines& lines, int32_t extent, const Window& window);

} // namespace zerklsc
