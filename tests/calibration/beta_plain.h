// Calibration by the surface fit as it is defined, what lsc2d_calibration_beta() must equal to the bit: dense
// matrices and complex arithmetic.
#pragma once

#include <cstdint>
#include <vector>

#include "zerklsc.h"

namespace zerklsc::plain {

// The four tables of nx x ny nodes, or none where the normal matrix is singular.
std::vector<std::vector<uint16_t>> calibrate_beta(const std::vector<uint16_t>& image, int width, int height,
                                                  int nx, int ny, const lsc2d_calib_param& param);

} // namespace zerklsc::plain
