// The plane of one colour of a flat field, as the parameter generators see it.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/planes.h"
#include "frame/view.h"
#include "zerklsc.h"

namespace zerklsc {

// The highest level that counts: the ISP works on 10 bits.
constexpr int32_t white_level = 1023;

// The samples are taken from the frame, whose size is even, as they are needed.
struct ColourPlane {
    View<const uint16_t> raw;
    int32_t number; // the plane's
    int32_t black;

    // The first sample of a row; the next ones are two raw samples apart each.
    const uint16_t* row(int32_t y) const { return raw.row(2 * y + (number >> 1)) + (number & 1); }

    // A sample below its black level stays negative, one above white counts as white.
    int32_t level(uint16_t sample) const { return std::min(sample - black, white_level); }

    int32_t at(int32_t x, int32_t y) const { return level(row(y)[2 * x]); }
};

// The pattern in the record exists.
inline ColourPlane colour_plane(View<const uint16_t> raw, const isp_param_tag& param, Colour colour) {
    const int32_t number = plane_of(colour, param.bayer_pattern);
    return {raw, number, param.blc[number]};
}

} // namespace zerklsc
