// bicubic_lnc_param_gen_halvane
#include <algorithm>
#include <cmath>
#include <limits>

#include "bicubic/generator/job.h"
#include "bicubic/generator/colour_plane.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

constexpr int32_t patch_side = 50;
constexpr double patch_share = 0.0004; // 1 / 50^2

double patch_mean(const Channel& channel, int32_t left, int32_t top) {
    int32_t sum = 0;
    for (int32_t y = top; y < top + patch_side; ++y)
        for (int32_t x = left; x < left + patch_side; ++x)
            sum += channel.at(x, y);
    return sum * patch_share;
}

// How bright the corners of a channel are, the centre being 1. Not a number when the centre is black.
double corner_ratio(const Channel& channel, const GeneratorGeometry& geometry) {
    const int32_t right = geometry.width - patch_side;
    const int32_t bottom = geometry.height - patch_side;
    const double centre =
        patch_mean(channel, geometry.width / 2 - patch_side / 2, geometry.height / 2 - patch_side / 2);
    if (centre == 0.0)
        return std::numeric_limits<double>::quiet_NaN();
    const double corners = patch_mean(channel, 0, 0) + patch_mean(channel, right, 0)
                           + patch_mean(channel, 0, bottom) + patch_mean(channel, right, bottom);
    return corners * 0.25 / centre;
}

// The smallest of the four; 0 as soon as one of them is not a number.
double smallest_ratio(const double ratios[4]) {
    double smallest = ratios[0];
    for (int32_t k = 0; k < 4; ++k) {
        if (std::isnan(ratios[k]))
            return 0.0;
        smallest = std::min(smallest, ratios[k]);
    }
    return smallest;
}

// Between the measured ratio (0 percent asked for) and a flat image (100 percent).
double blended_share(double measured, double requested) {
    const double q = (0.999999999999999 - measured) * requested + measured;
    if (q > 0.9999999)
        return 0.9999999;
    return q >= 0.01 ? q : 0.01;
}

} // namespace

int32_t bicubic_lnc_param_gen_halvane(uint16_t* raw, isp_param_tag* param) {
    GeneratorJob job{};
    if (!prepare(raw, param, job))
        return -1;
    if (job.geometry.width < patch_side || job.geometry.height < patch_side)
        return -1;
    warn_of_clipped_samples(job.raw, *param);
    double ratios[4];
    for (const Colour colour : {Gb, B, R, Gr})
        ratios[colour] = corner_ratio(channel_of(job.raw, *param, colour), job.geometry);
    param->corner_ratio = 16.0 * smallest_ratio(ratios);
    fill_tables(job, *param, blended_share(ratios[reference_colour], requested_share(*param)),
                LastNodes::extended);
    return 0;
}
