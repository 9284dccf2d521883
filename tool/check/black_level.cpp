// check_black_level: where the noise ends
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/checks.h"

namespace zerklsc::tool {
namespace {

// Read noise raises the whole curve, which looks like a lower black level. That of a sensor in use, in
// electrons.
constexpr double usual_read_noise = 12;

// Rounding to whole numbers has a variance of 1 / 12, which no light explains.
constexpr double least_darkest_variance = 0.6;
constexpr double largest_misfit = 0.12;

struct Estimate {
    double off = 0; // stated less found, in samples
    double found = 0;
};

// How far the stated level lies outside of what the noise allows; nothing when the noise does not end at a
// level.
std::optional<Estimate> estimate(const std::vector<NoisePoint>& curve, double stated, Pixels pixels) {
    const auto line = fit_noise_line(curve);
    if (!line || line->misfit > largest_misfit)
        return {};
    const auto [darkest, brightest] = std::ranges::minmax(curve, {}, &NoisePoint::level);
    const double light = brightest.level - line->black;
    if (brightest.level - darkest.level < 0.25 * light || line->black_error > 0.05 * light
        || darkest.variance < least_darkest_variance)
        return {};
    Estimate estimate{stated - line->black, line->black};
    if (std::abs(estimate.off) < 4 * line->black_error)
        estimate.off = 0;
    if (estimate.off > 0 && estimate.off / line->gain < usual_read_noise * usual_read_noise)
        estimate.off = 0;
    // Pixels of unequal response bend the curve, which looks like a higher black level. When a curve that
    // ends at the stated level fits as well, that is the simpler explanation.
    if (pixels == Pixels::unequal && estimate.off < 0
        && fits_as_well(fit_noise_parabola(curve, stated).misfit, line->misfit, curve.size()))
        estimate.off = 0;
    return estimate;
}

// The planes of a sensor share one curve, which together reaches further; where their gains differ, each has
// its own.
std::optional<Estimate> estimate(const FlatCapture& capture,
                                 const std::array<std::vector<NoisePoint>, 4>& curves, Pixels pixels) {
    std::vector<NoisePoint> all;
    for (size_t plane = 0; plane < 4; ++plane)
        for (const NoisePoint& p : curves[plane])
            all.push_back({p.level - capture.black[plane] + capture.black[0], p.variance});
    if (const auto together = fit_noise_line(all); together && together->misfit < 0.04)
        return estimate(all, capture.black[0], pixels);
    std::vector<Estimate> each;
    for (size_t plane = 0; plane < 4; ++plane)
        if (const auto one = estimate(curves[plane], capture.black[plane], pixels))
            each.push_back(*one);
    if (each.empty())
        return {};
    std::ranges::sort(each, {}, [](const Estimate& e) { return std::abs(e.off); });
    return each[each.size() / 2];
}

} // namespace

void check_black_level(const Judgement& judgement) {
    std::array<std::vector<NoisePoint>, 4> curves;
    for (size_t plane = 0; plane < 4; ++plane)
        curves[plane] = judgement.analysis.planes[plane].noise;
    judge_black_level(judgement, curves, Pixels::unequal);
}

void judge_black_level(const Judgement& judgement, const std::array<std::vector<NoisePoint>, 4>& curves,
                       Pixels pixels) {
    const auto found = estimate(judgement.capture, curves, pixels);
    // A processed capture has no such curve, and says nothing about its black level.
    if (!found) {
        judgement.findings.push_back(judgement.limits.not_judged(
            "black-level", "the noise does not grow with the light as that of an unprocessed capture of "
                           "enough samples"));
        return;
    }
    judgement.add("black-level", "", 100 * std::abs(found->off) / judgement.capture.range(0),
                  fmt::format("the noise ends at a level of about {:.0f}: look for the right --black-level",
                              found->found));
}

} // namespace zerklsc::tool
