// check_brightness: whether there is light enough for the noise
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/checks.h"
#include "check/robust.h"

namespace zerklsc::tool {
namespace {

// Light of the darkest corner tile: what the fit explains, or what there is, if that is more.
double corner_light(const Judgement& judgement, size_t plane) {
    const FrameTiles& tiles = judgement.analysis.tiles;
    double darkest = 1e9;
    for (const size_t at : {size_t{0}, tiles.index(tiles.columns - 1, 0), tiles.index(0, tiles.rows - 1),
                            tiles.index(tiles.columns - 1, tiles.rows - 1)})
        darkest =
            std::min(darkest, std::max(static_cast<double>(judgement.analysis.planes[plane].expected[at]),
                                       static_cast<double>(tiles.planes[plane].mean[at])
                                           - judgement.capture.black[plane]));
    return std::max(darkest, 0.05);
}

void check_node_noise(const Judgement& judgement) {
    double worst = 0;
    size_t where = 0;
    // A window of radius r holds (2 r + 1)^2 samples.
    const double samples = std::pow(2.0 * judgement.capture.settings.radius + 1, 2);
    for (size_t plane = 0; plane < 4; ++plane) {
        const double light = corner_light(judgement, plane);
        const double noise =
            sample_noise(judgement.analysis.planes[plane], judgement.capture.black[plane], light)
            / std::sqrt(samples);
        if (noise > worst) {
            worst = noise;
            where = plane;
        }
    }
    judgement.add(
        "node-noise", judgement.capture.colour(where), 100 * worst,
        fmt::format("noise makes the gains of the corners uncertain by +- {:.1f} %: raise the exposure, "
                    "average captures, or give a larger --radius",
                    100 * worst));
}

void check_exposure_level(const Judgement& judgement, double level) {
    Finding finding = judgement.limits.judge(
        "exposure", "", 100 * level,
        "the capture is dark: raise the exposure, or give the right --bits when the samples are less deep");
    // Dark samples of little noise are deep words that hold shallow samples: too few bits are stated, not
    // light.
    const Finding& noise = judgement.findings.back();
    if (finding.verdict == Verdict::refuse && noise.value < 0.45)
        finding.verdict = Verdict::warn;
    judgement.findings.push_back(finding);
}

} // namespace

void check_brightness(const Judgement& judgement) {
    const FlatCapture& capture = judgement.capture;
    double brightest = 0, level = 0, darkest = 1e9, noise = 0;
    size_t dark_plane = 0, noisy_plane = 0;
    for (size_t plane = 0; plane < 4; ++plane) {
        const PlaneAnalysis& p = judgement.analysis.planes[plane];
        const double light = std::max(p.bright, 0.0);
        brightest = std::max(brightest, light);
        level = std::max(level, light / capture.range(plane));
        if (light < darkest) {
            darkest = light;
            dark_plane = plane;
        }
        const double one = sample_noise(p, capture.black[plane], std::max(light, 1e-3));
        if (one > noise) {
            noise = one;
            noisy_plane = plane;
        }
    }
    check_node_noise(judgement);
    check_exposure_level(judgement, level);
    judgement.add(
        "plane-level", capture.colour(dark_plane), brightest > 0 ? 100 * darkest / brightest : 0,
        fmt::format("{} has hardly any light: use a light that holds all colours, or look for a dead plane",
                    capture.colour(dark_plane)));
    judgement.add(
        "noise", capture.colour(noisy_plane), 100 * noise,
        "neighbouring samples have little in common: this is no flat field; look at --width, --endian, "
        "--bits and --black-level");
}

} // namespace zerklsc::tool
