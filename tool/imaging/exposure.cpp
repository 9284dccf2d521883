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

// "3.2 %", "100 %", and no more digits than are of use.
std::string brief_percent(double percent) {
    return percent < 9.95 ? fmt::format("{:.2g} %", percent) : fmt::format("{:.0f} %", percent);
}

void check_clipping(const RawFrame& frame, double limit) {
    std::string clipped_channels, noted_channels;
    const auto fractions = clipped_fractions(frame);
    for (const Colour colour : all_colours) {
        const double clipped = 100 * fractions[static_cast<size_t>(plane_of_colour(*frame.pattern, colour))];
        // Fewer than a tenth of the limit are defective pixels.
        std::string& list = clipped > limit ? clipped_channels : noted_channels;
        if (clipped > limit / 10)
            list +=
                fmt::format("{}{} of {}", list.empty() ? "" : ", ", brief_percent(clipped), name_of(colour));
    }
    if (!clipped_channels.empty())
        data_failure("{}: samples are clipped: {} (limit {} %): lower the exposure", frame.name,
                     clipped_channels, limit);
    if (!noted_channels.empty())
        warn(fmt::format("{}: samples are clipped: {}", frame.name, noted_channels));
}

void check_dark_corners(const RawFrame& frame, Colour colour, const PlaneLevels& levels) {
    constexpr std::array names{"top left", "top right", "bottom left", "bottom right"};
    const auto corners = levels.corners();
    const auto darkest = std::ranges::min_element(corners);
    if (*darkest < black_corner)
        data_failure(
            "{}: the {} corner of {} is {:.2f} above the black level, while the centre is {:.0f} above it: "
            "no gain can be measured there: look for what covers it, or give the right black level or bit "
            "depth",
            frame.name, names[static_cast<size_t>(darkest - corners.begin())], name_of(colour), *darkest,
            levels.centre());
}

} // namespace

void check_exposure(const RawFrame& frame, const FrameLevels& levels, double clip_limit) {
    check_clipping(frame, clip_limit);
    double brightest = 0;
    for (const Colour colour : all_colours) {
        const auto plane = static_cast<size_t>(plane_of_colour(*frame.pattern, colour));
        const double range = frame.white_level() - (*frame.black)[plane];
        check_dark_corners(frame, colour, levels[plane]);
        brightest = std::max(brightest, levels[plane].centre() / range);
    }
    if (brightest < dark_centre)
        warn(fmt::format(
            "{}: the brightest channel reaches {:.1f} % of full scale at the centre (expected 20 % or more): "
            "raise the exposure, or give the right bit depth when samples do not have {} bits",
            frame.name, 100 * brightest, frame.bits));
}

} // namespace zerklsc::tool
