#include "bicubic/generator/colour_plane.h"

#include <cstdio>

namespace zerklsc {
namespace {

// By pattern and position in the cell.
constexpr Colour bayer_cells[4][4] = {{Gr, R, B, Gb}, {R, Gr, Gb, B}, {B, Gb, Gr, R}, {Gb, B, R, Gr}};

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

Colour colour_at(uint8_t bayer_pattern, int32_t position) {
    return bayer_cells[bayer_pattern][position];
}

Channel channel_of(View<const uint16_t> raw, const isp_param_tag& param, Colour colour) {
    int32_t position = 0;
    while (colour_at(param.bayer_pattern, position) != colour)
        ++position;
    return {raw, position, param.blc[position]};
}

void warn_of_clipped_samples(View<const uint16_t> raw, const isp_param_tag& param) {
    for (int32_t y = 0; y < raw.height; ++y) {
        const uint16_t* const row = raw.row(y);
        for (int32_t x = 0; x < raw.width; ++x) {
            const int32_t position = (x & 1) + 2 * (y & 1);
            if (row[x] - param.blc[position] > Channel::white)
                std::puts(clipped_warning(colour_at(param.bayer_pattern, position)));
        }
    }
}

} // namespace zerklsc
