// The plain form of lsc2d_calibration_orvel(), which equals it to the bit.
#pragma once

#include <cstdint>
#include <vector>

#include "zerklsc.h"

namespace zerklsc::plain {

// The four planes of a frame, one after the other.
std::vector<uint16_t> planes_of(const uint16_t* raw, int32_t width, int32_t height);

// As lsc2d_calibration_orvel(), for arguments that it does not refuse: splits the frame into four planes,
// samples each tap by tap, and leaves nothing allocated.
void calibrate_orvel(const uint16_t* raw, int32_t width, int32_t height, uint16_t** tables, int32_t stride_w,
                     int32_t stride_h, const lsc2d_calib_param& param);

} // namespace zerklsc::plain
