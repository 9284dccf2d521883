// check_exposure
#include "imaging/exposure.h"

#include <algorithm>

#include <fmt/format.h>

#include "failure.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

// Below this part of the range at the centre of the brightest channel, noise and rounding show in the gains.
constexpr double dark_centre = 0.2;
// Corners this little above black hold no gain.
constexpr double black_corner = 1.0;

void check_clipping(const RawFrame& frame, BayerPattern pattern, double limit) {
    for (const Colour colour : all_colours) {
        const double clipped = 100 * clipped_fraction(frame, plane_of_colour(pattern, colour));
        if (clipped > limit)
            data_failure("{}: {:.2g} % of the {} samples are clipped (limit {} %): lower the exposure",
                         frame.name, clipped, name_of(colour), limit);
        // Fewer than this are defective pixels.
        if (clipped > limit / 10)
            warn(fmt::format("{}: {:.2g} % of the {} samples are clipped", frame.name, clipped,
                             name_of(colour)));
    }
}

void check_dark_corners(const RawFrame& frame, Colour colour, const PlaneLevels& levels) {
    const double darkest = std::ranges::min(levels.corners());
    if (darkest < black_corner)
        data_failure(
            "{}: a corner of {} is {:.2f} above the black level, which holds no gain: raise the exposure, or "
            "give the right --black-level or --bits",
            frame.name, name_of(colour), darkest);
}

} // namespace

void check_exposure(const RawFrame& frame, BayerPattern pattern, const BlackLevel& black, double clip_limit) {
    check_clipping(frame, pattern, clip_limit);
    RawFrame light = frame;
    subtract_black(light, black);
    const int blocks = std::min(usual_blocks, std::min(frame.width, frame.height) / 2);
    double brightest = 0;
    for (const Colour colour : all_colours) {
        const int plane = plane_of_colour(pattern, colour);
        const PlaneLevels levels = measure_plane(light, plane, blocks);
        check_dark_corners(frame, colour, levels);
        brightest =
            std::max(brightest, levels.centre() / (frame.white_level() - black[static_cast<size_t>(plane)]));
    }
    if (brightest < dark_centre)
        warn(fmt::format(
            "{}: the brightest channel reaches {:.1f} % of full scale at the centre (expected 20 % or more): "
            "raise the exposure, or give the right --bits when samples are not {} bits deep",
            frame.name, 100 * brightest, frame.bits));
}

} // namespace zerklsc::tool
