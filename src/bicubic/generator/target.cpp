#include "bicubic/generator/target.h"

#include <cmath>

namespace zerklsc {
namespace {

// Shares above this are flat: the sphere through two points of the same height has no end.
constexpr double highest_cap_share = 0.999999;

} // namespace

double SphericalCap::height_at(double x, double y) const {
    const double dx = x - centre_x;
    const double dy = y - centre_y;
    return std::sqrt(radius * radius - dx * dx - dy * dy) + centre_height;
}

// Seen from the side the sphere is a circle through (0, top) and (d, s * top), d being the distance of the
// image corner from the image centre and s the share. Its centre (0, z) is as far from the one as from the
// other:
//   (top - z)^2 = d^2 + (s * top - z)^2
// which, solved for z, is
//   2 * z = d^2 / ((s - 1) * top) + (s + 1) * top
SphericalCap cap_through(double top, double corner_share, const isp_param_tag& param) {
    const double half_w = param.width >> 2; // of a plane
    const double half_h = param.height >> 2;
    const double distance_term = (half_w * half_w + half_h * half_h) / ((corner_share - 1.0) * top);
    const double z = (distance_term + (corner_share + 1.0) * top) / 2.0;
    return {.centre_x = half_w, .centre_y = half_h, .centre_height = z, .radius = z - top};
}

Target make_target(const isp_param_tag& param, double corner_share, double reference_top) {
    return {.flat = corner_share > highest_cap_share,
            .cap = cap_through(reference_top, corner_share, param),
            .reference_top = reference_top};
}

double target_level(const Target& target, Colour colour, double largest, int32_t x, int32_t y) {
    if (target.flat)
        return largest;
    const double level = target.cap.height_at(x, y);
    return colour == reference_colour ? level : level * largest / target.reference_top;
}

} // namespace zerklsc
