// check_dead_regions: masked corners, areas without light, gains that reach the highest
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/checks.h"
#include "check/robust.h"

namespace zerklsc::tool {
namespace {

struct Dead {
    int tiles = 0;
    size_t plane = 0;
    int x = 0, y = 0; // of the first, in pixels
};

// Tiles with less than a fifth of the light that the lens leaves, or with none that noise would not explain.
Dead dead_tiles(const Judgement& judgement) {
    const FrameTiles& tiles = judgement.analysis.tiles;
    Dead worst;
    for (size_t plane = 0; plane < 4; ++plane) {
        const PlaneAnalysis& p = judgement.analysis.planes[plane];
        const auto black = static_cast<float>(judgement.capture.black[plane]);
        const float least = static_cast<float>(std::max(p.bright / 100, 1e-3));
        Dead dead;
        dead.plane = plane;
        for (size_t i = 0; i < tiles.count(); ++i) {
            const float light = tiles.planes[plane].mean[i] - black;
            if (light >= least && light >= p.expected[i] / 5)
                continue;
            if (dead.tiles++ == 0) {
                dead.x = static_cast<int>(i % static_cast<size_t>(tiles.columns)) * 2 * tiles.side;
                dead.y = static_cast<int>(i / static_cast<size_t>(tiles.columns)) * 2 * tiles.side;
            }
        }
        if (dead.tiles > worst.tiles)
            worst = dead;
    }
    return worst;
}

constexpr int corner_side = 5; // plane samples
// A corner with the part `correctable` of the brightest light can be corrected, whatever darkens it: it
// counts as much as the usual limit at least.
constexpr double correctable = 0.25, warned_only = 0.6;
const std::array<const char*, 4> corner_names{"top left", "top right", "bottom left", "bottom right"};

struct Reach {
    int begin, end;
};

// The samples whose columns and rows lie so many plane samples away from the sides of the corner.
std::vector<float> corner_samples(const RawFrame& frame, size_t plane, size_t corner, Reach across,
                                  Reach down) {
    const int w = frame.width / 2, h = frame.height / 2;
    std::vector<float> samples;
    for (int j = down.begin; j < down.end; ++j)
        for (int i = across.begin; i < across.end; ++i) {
            const int x = (corner & 1) != 0 ? w - 1 - i : i, y = (corner & 2) != 0 ? h - 1 - j : j;
            samples.push_back(
                frame.at(2 * x + static_cast<int>(plane & 1), 2 * y + static_cast<int>(plane >> 1)));
        }
    return samples;
}

// What the surface says of the plane sample that is `inward` samples away from both sides of the corner.
double expected_in_corner(const RawFrame& frame, const PlaneAnalysis& plane, size_t corner, int inward) {
    const int w = frame.width / 2, h = frame.height / 2;
    const int x = (corner & 1) != 0 ? w - 1 - inward : inward,
              y = (corner & 2) != 0 ? h - 1 - inward : inward;
    return std::exp(std::clamp(
        plane.surface.at(u_of(x, w, plane.cells.aspect), v_of(y, h, plane.cells.aspect)), -30.0, 30.0));
}

// The median of the outermost samples of a corner, as a part of the light that the lens leaves there; noise
// counts for the corner.
double corner_part(const Judgement& judgement, size_t plane, size_t corner) {
    const RawFrame& frame = judgement.capture.frame;
    const PlaneAnalysis& p = judgement.analysis.planes[plane];
    std::vector<float> samples = corner_samples(frame, plane, corner, {0, corner_side}, {0, corner_side});
    const double expected = expected_in_corner(frame, p, corner, corner_side / 2);
    const double black = judgement.capture.black[plane];
    const double noise = std::sqrt(1.57 * variance_at(p.noise, black + expected)) / corner_side;
    const double light = median_of(samples) - black + 4 * noise;
    // A barrel vignettes the corners more steeply than any smooth surface does.
    return std::max(
        light / expected,
        std::min(light / std::max(p.bright, 1e-3) * (refused_corner / 100) / correctable, warned_only));
}

// A mask of a few pixels darkens the outermost sample of a corner in every plane. Along both sides of the
// frame there is light beside it: else it is a dead line.
double outermost_part(const Judgement& judgement, size_t corner) {
    double part = 0, variance = 0, along = 1e9;
    for (size_t plane = 0; plane < 4; ++plane) {
        const RawFrame& frame = judgement.capture.frame;
        const PlaneAnalysis& p = judgement.analysis.planes[plane];
        const double black = judgement.capture.black[plane];
        std::vector<float> around = corner_samples(frame, plane, corner, {2, 7}, {2, 7});
        std::vector<float> across = corner_samples(frame, plane, corner, {2, 7}, {0, 1});
        std::vector<float> down = corner_samples(frame, plane, corner, {0, 1}, {2, 7});
        const double light = std::max(median_of(around) - black, 1e-3);
        const double sample = static_cast<double>(corner_samples(frame, plane, corner, {0, 1}, {0, 1})[0]);
        // In a small frame, much of the lens's fall-off lies between the two.
        const double fall =
            expected_in_corner(frame, p, corner, 0) / std::max(expected_in_corner(frame, p, corner, 4), 1e-3);
        const double expected = light * std::clamp(fall, 0.5, 1.0);
        part += std::clamp((sample - black) / expected, 0.0, 1.0) / 4;
        variance += std::pow(sample_noise(p, black, expected) / 4, 2);
        along = std::min({along, (median_of(across) - black) / light, (median_of(down) - black) / light});
    }
    return along > 0.5 ? part + 4 * std::sqrt(variance) : 1;
}

void check_corners(const Judgement& judgement) {
    double worst = 1e9;
    size_t where = 0, which = 0;
    for (size_t corner = 0; corner < 4; ++corner) {
        const double outermost = outermost_part(judgement, corner);
        for (size_t plane = 0; plane < 4; ++plane) {
            const double part = std::min({corner_part(judgement, plane, corner), outermost, 1.0});
            if (part < worst) {
                worst = part;
                where = plane;
                which = corner;
            }
        }
    }
    judgement.add(
        "corner", judgement.capture.colour(where), 100 * worst,
        fmt::format("the {} corner is masked or shaded: look for a lens hood, a holder or a misplaced lens",
                    corner_names[which]));
}

// The gain of the windows of nodes is that of tiles of about the same size.
void check_gains(const Judgement& judgement) {
    double worst = 1;
    size_t where = 0;
    for (size_t plane = 0; plane < 4; ++plane) {
        const PlaneAnalysis& p = judgement.analysis.planes[plane];
        std::vector<float> light = judgement.analysis.tiles.planes[plane].mean;
        const double dark = std::max(quantile_of(light, 0.0005) - judgement.capture.black[plane], 1e-3);
        const double gain = std::max(p.bright, 0.0) / dark;
        if (gain > worst) {
            worst = gain;
            where = plane;
        }
    }
    judgement.add(
        "gain", judgement.capture.colour(where), std::min(worst, 9999.0),
        "gains end at 16: the darkest part of the frame cannot be corrected; look for a mask, or for a lens "
        "that does not cover the sensor");
}

} // namespace

void check_dead_regions(const Judgement& judgement) {
    const Dead dead = dead_tiles(judgement);
    judgement.add(
        "dead-area", judgement.capture.colour(dead.plane), dead.tiles,
        fmt::format("there is no light at x {}, y {}: look for a mask, a lens that does not cover the "
                    "sensor, or a defect",
                    dead.x, dead.y));
    check_corners(judgement);
    check_gains(judgement);
}

} // namespace zerklsc::tool
