// The four colours of a flat field as the parameter generators see them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/planes.h"
#include "frame/view.h"
#include "zerklsc.h"

namespace zerklsc {

constexpr Colour reference_colour = Gb;

// One colour of a frame of even size. Its samples are taken from the frame as they are needed.
struct Channel {
    static constexpr int32_t white = 1023;

    View<const uint16_t> raw;
    int32_t position; // in the Bayer cell
    int32_t black;

    // The first sample of a row; the next ones are two raw samples apart each.
    const uint16_t* row(int32_t y) const { return raw.row(2 * y + (position >> 1)) + (position & 1); }

    // A sample below its black level stays negative, one above white counts as white.
    int32_t level(uint16_t sample) const { return std::min(sample - black, white); }

    int32_t at(int32_t x, int32_t y) const { return level(row(y)[2 * x]); }
};

Channel channel_of(View<const uint16_t> raw, const isp_param_tag& param, Colour colour);

// One line on standard output for every sample above white, in raster order of the frame.
void warn_of_clipped_samples(View<const uint16_t> raw, const isp_param_tag& param);

} // namespace zerklsc
