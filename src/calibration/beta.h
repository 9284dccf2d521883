// What lsc2d_calibration_beta() does, without a word printed.
#pragma once

#include <cstdint>

#include "calibration/surface.h"
#include "zerklsc.h"

namespace zerklsc {

// Rounded: not even a frame of one level would have unity gain at every node. Refused: the arguments, or for
// want of memory.
enum class Fit { done, rounded, singular, refused };

// Writes the tables only when it is done; does not look for rounding.
Fit fit_surface(const uint16_t* image, int32_t width, int32_t height, uint16_t** tables, int32_t nx,
                int32_t ny, const lsc2d_calib_param& param);

// What becomes of such a fit, whatever the frame. Takes the memory and, but for the
// measuring, the time of the fit. The step and the lines of fit points are accepted.
Fit try_fit(const SurfaceGrid& grid, int32_t plane_w, int32_t plane_h, const lsc2d_calib_param& param);

} // namespace zerklsc
