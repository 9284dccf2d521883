// The brightness that a corrected flat field shall have.
#pragma once

#include <cstdint>

#include "frame/planes.h"
#include "zerklsc.h"

namespace zerklsc {

// The other colours follow this one.
constexpr Colour reference_colour = Gb;

// The top of a sphere over a plane: brightness is height, and the sphere's centre lies straight below the
// centre of the image.
struct SphericalCap {
    double centre_x;
    double centre_y;
    double centre_height;
    double radius; // centre height - top height: below 0 for a centre below the top, as usual

    // Not a number where the sphere does not reach so far out.
    double height_at(double x, double y) const;
};

// The cap that is `top` high at the image centre and `corner_share` times as high at the image corners.
SphericalCap cap_through(double top, double corner_share, const isp_param_tag& param);

struct Target {
    bool flat;            // every colour keeps its own largest average everywhere
    SphericalCap cap;     // otherwise: of the reference colour
    double reference_top; // largest average of the reference colour, the top of the cap
};

// A target whose corners keep `corner_share` of the centre, for the reference colour's largest average.
Target make_target(const isp_param_tag& param, double corner_share, double reference_top);

// What a colour shall have at position (x, y) of its plane, given its own largest average. Not a number where
// the cap does not reach.
double target_level(const Target& target, Colour colour, double largest, int32_t x, int32_t y);

} // namespace zerklsc
