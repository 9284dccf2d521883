// What lsc2d_calibration_orvel() does, with nothing left allocated but what the caller keeps.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "zerklsc.h"

namespace zerklsc {

// The level of each node, by plane number.
struct NodeSamples {
    Scratch<float> of[ZERKLSC_CHANNELS];
};

// False with no table written where the arguments are refused or memory is lacking.
bool sample_tables(const uint16_t* raw, int32_t width, int32_t height, uint16_t** tables, int32_t table_w,
                   int32_t table_h, const lsc2d_calib_param& param, NodeSamples& samples);

} // namespace zerklsc
