#include "bicubic/generator/colour_plane.h"

#include <cstdio>

namespace zerklsc {
namespace {

const char* clipped_warning(Colour colour) {
    switch (colour) {
    case Gb:
        return "Warning:Gb channel data of raw image maybe wrong ";
    case B:
        return "Warning:B channel data of raw image maybe wrong ";
    case R:
        return "Warning:R channel data of raw image maybe wrong ";
    default:
        return "Warning:Gr channel data of raw image maybe wrong ";
    }
}

} // namespace

Channel channel_of(View<const uint16_t> raw, const isp_param_tag& param, Colour colour) {
    const int32_t position = plane_of(colour, param.bayer_pattern);
    return {raw, position, param.blc[position]};
}

void warn_of_clipped_samples(View<const uint16_t> raw, const isp_param_tag& param) {
    for (int32_t y = 0; y < raw.height; ++y) {
        const uint16_t* const row = raw.row(y);
        for (int32_t x = 0; x < raw.width; ++x) {
            const int32_t position = plane_at(x, y);
            if (row[x] - param.blc[position] > Channel::white)
                std::puts(clipped_warning(plane_colours[param.bayer_pattern][position]));
        }
    }
}

} // namespace zerklsc
