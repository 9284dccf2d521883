// Gains that depend on the distance from a centre alone: the radial form of libcamera's tuning files.
#pragma once

#include <array>
#include <vector>

#include "convert/gain_surface.h"

namespace zerklsc::tool {

// The gain is 1 + sum of k[i] * r^(2 i + 2); r is the distance from the centre over that of the farthest
// corner, both in pixels.
struct RadialGain {
    double centre_x = 0.5, centre_y = 0.5; // fractions of the frame
    std::array<double, 5> k{};
};

GainSurface surface_of(const RadialGain& gain, int width, int height);

// A gain at a place of the frame.
struct GainPoint {
    double x, y, gain;
};

struct RadialFit {
    RadialGain gain;
    double rms = 0, largest = 0; // deviations, as fractions of the gains
};

// The radial gain with the least squares of these deviations, by the method of Levenberg and Marquardt.
RadialFit fit_radial_gain(const std::vector<GainPoint>& points, int width, int height);

} // namespace zerklsc::tool
