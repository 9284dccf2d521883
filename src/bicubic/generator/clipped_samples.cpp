#include "bicubic/generator/clipped_samples.h"

#include <cstdio>

namespace zerklsc {
namespace {

const char* clipped_line(Colour colour) {
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

void print_clipped_samples(View<const uint16_t> raw, const isp_param_tag& param) {
    for_each_clipped_sample(raw, param, [&param](int32_t plane) {
        std::puts(clipped_line(plane_colours[param.bayer_pattern][plane]));
    });
}

} // namespace zerklsc
