// Gains in the fixed point of an ISP type.
#pragma once

#include <cstdint>

#include "zerklsc.h"

namespace zerklsc {

struct GainFormat {
    double unity;
    double highest;
};

// No gains are known for the types above 3: they have the format 0, 0, in which every gain is 0.
GainFormat gain_format(uint8_t isp_type);

constexpr bool has_gain_format(uint8_t isp_type) {
    return isp_type <= ZERKLSC_ISP_TVESSA2;
}

// min(target / measured * unity, highest), truncated. A node that measured 0 takes the highest gain; a target
// or a gain that is below 0 or not a number gives 0.
uint16_t generator_gain(double target, double measured, GainFormat format);

} // namespace zerklsc
