// The brightness that a corrected flat field shall have.
#pragma once

#include <cstdint>

#include "bicubic/generator/colour_plane.h"
#include "zerklsc.h"

namespace zerklsc {

// Flat, or a spherical cap of height z0 + |r| over the image centre.
struct Target {
    bool flat;
    double reference_peak; // largest average of the reference colour
    double centre_x;
    double centre_y;
    double z0;
    double r;
};

// A target that has `peak` at the image centre and `corner_share` of it at the image corners.
Target make_target(const isp_param_tag& param, double corner_share, double peak);

// What a colour shall have at channel position (x, y), given its own largest average. Not a number where the
// cap does not reach so far out.
double target_level(const Target& target, Colour colour, double largest, int32_t x, int32_t y);

} // namespace zerklsc
