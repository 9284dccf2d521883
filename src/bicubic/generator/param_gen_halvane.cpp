// bicubic_lnc_param_gen_halvane, zerklsc_generate_halvane
#include <algorithm>
#include <cmath>
#include <limits>

#include "bicubic/generator/calls.h"
#include "bicubic/generator/colour_plane.h"
#include "bicubic/generator/target.h"
#include "zerklsc_driver.h"

namespace {

using namespace zerklsc;

constexpr int32_t patch_side = 50;
constexpr double patch_share = 0.0004; // 1 / 50^2

// As prepare(), and for this generator's patches.
zerklsc_status prepare_patches(const uint16_t* raw, const isp_param_tag* param, GeneratorJob& job) {
    const zerklsc_status status = prepare(raw, param, job);
    if (status != ZERKLSC_OK)
        return status;
    const bool room = job.geometry.width >= patch_side && job.geometry.height >= patch_side;
    return room ? ZERKLSC_OK : ZERKLSC_PLANE_TOO_SMALL;
}

double patch_mean(const ColourPlane& plane, int32_t left, int32_t top) {
    int32_t sum = 0;
    for (int32_t y = top; y < top + patch_side; ++y)
        for (int32_t x = left; x < left + patch_side; ++x)
            sum += plane.at(x, y);
    return sum * patch_share;
}

// How bright the corners of a plane are, the centre being 1. Not a number when the centre is black.
double corner_ratio(const ColourPlane& plane, const GeneratorGeometry& geometry) {
    const int32_t right = geometry.width - patch_side;
    const int32_t bottom = geometry.height - patch_side;
    const double centre =
        patch_mean(plane, geometry.width / 2 - patch_side / 2, geometry.height / 2 - patch_side / 2);
    if (centre == 0.0)
        return std::numeric_limits<double>::quiet_NaN();
    const double corners = patch_mean(plane, 0, 0) + patch_mean(plane, right, 0)
                           + patch_mean(plane, 0, bottom) + patch_mean(plane, right, bottom);
    return corners * 0.25 / centre;
}

// The smallest of those that are finite, 0 when none is.
double smallest_ratio(const double (&ratios)[ZERKLSC_CHANNELS]) {
    double smallest = std::numeric_limits<double>::infinity();
    for (const double ratio : ratios)
        if (std::isfinite(ratio))
            smallest = std::min(smallest, ratio);
    return std::isfinite(smallest) ? smallest : 0.0;
}

// Between the measured ratio (0 percent asked for) and a flat image (100 percent).
double blended_share(double measured, double requested) {
    const double q = (0.999999999999999 - measured) * requested + measured;
    if (q > 0.9999999)
        return 0.9999999;
    return q >= 0.01 ? q : 0.01;
}

GeneratorFindings generate(const GeneratorJob& job, isp_param_tag& param) {
    double ratios[ZERKLSC_CHANNELS]; // by colour
    for (const Colour colour : {Gb, B, R, Gr})
        ratios[colour] = corner_ratio(colour_plane(job.raw, param, colour), job.geometry);
    param.corner_ratio = 16.0 * smallest_ratio(ratios);
    const double share = blended_share(ratios[reference_colour], requested_share(param));
    return fill_tables(job, param, share, LastNodes::extended);
}

} // namespace

int32_t bicubic_lnc_param_gen_halvane(uint16_t* raw, isp_param_tag* param) {
    return generate_and_print(raw, param, prepare_patches, generate);
}

zerklsc_status zerklsc_generate_halvane(const uint16_t* raw, isp_param_tag* param, zerklsc_report* report) {
    return generate_and_report(raw, param, report, prepare_patches, generate);
}
