// The plain form of lsc2d_calibration_orvel(), which equals it to the bit.
#pragma once

#include <cstdint>

#include "zerklsc.h"

namespace zerklsc::plain {

// As lsc2d_calibration_orvel(), for arguments that it does not refuse: splits the frame into four planes,
// samples each tap by tap, and leaves nothing allocated. False when there is no memory.
bool calibrate_orvel(const uint16_t* raw, int32_t width, int32_t height, uint16_t** tables, int32_t stride_w,
                     int32_t stride_h, const lsc2d_calib_param& param);

} // namespace zerklsc::plain
