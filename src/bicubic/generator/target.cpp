#include "bicubic/generator/target.h"

#include <cmath>

namespace zerklsc {

Target make_target(const isp_param_tag& param, double corner_share, double peak) {
    const double p = corner_share;
    const double c = peak;
    const double a = param.height >> 2;
    const double b = param.width >> 2;
    const double k = (b * b + a * a) / ((p - 1.0) * c);
    const double z0 = (k + (p + 1.0) * c) / 2.0;
    return {.flat = p > 0.999999, .reference_peak = c, .centre_x = b, .centre_y = a, .z0 = z0, .r = z0 - c};
}

double target_level(const Target& target, Colour colour, double largest, int32_t x, int32_t y) {
    if (target.flat)
        return largest;
    const double dx = x - target.centre_x;
    const double dy = y - target.centre_y;
    const double level = std::sqrt(target.r * target.r - dx * dx - dy * dy) + target.z0;
    return colour == reference_colour ? level : level * largest / target.reference_peak;
}

} // namespace zerklsc
