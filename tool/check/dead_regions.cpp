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
                dead.x = static_cast<int>(i % static_cast<size_t>(tiles.columns)) * 2 * tile_side;
                dead.y = static_cast<int>(i / static_cast<size_t>(tiles.columns)) * 2 * tile_side;
            }
        }
        if (dead.tiles > worst.tiles)
            worst = dead;
    }
    return worst;
}

constexpr int corner_side = 5; // plane samples
const std::array<const char*, 4> corner_names{"top left", "top right", "bottom left", "bottom right"};

// The median of the outermost samples of a corner, as a part of the light that the lens leaves there; noise
// counts for the corner.
double corner_part(const Judgement& judgement, size_t plane, size_t corner) {
    const RawFrame& frame = judgement.capture.frame;
    const PlaneAnalysis& p = judgement.analysis.planes[plane];
    const int w = frame.width / 2, h = frame.height / 2;
    const int x0 = (corner & 1) != 0 ? w - corner_side : 0, y0 = (corner & 2) != 0 ? h - corner_side : 0;
    std::vector<float> samples;
    for (int j = 0; j < corner_side; ++j)
        for (int i = 0; i < corner_side; ++i)
            samples.push_back(frame.at(2 * (x0 + i) + static_cast<int>(plane & 1),
                                       2 * (y0 + j) + static_cast<int>(plane >> 1)));
    const double expected =
        std::exp(p.surface.at(u_of(x0 + 2, w, p.cells.aspect), v_of(y0 + 2, h, p.cells.aspect)));
    const double black = judgement.capture.black[plane];
    const double noise = std::sqrt(1.57 * variance_at(p.noise, black + expected)) / corner_side;
    return expected > 0 ? (median_of(samples) - black + 4 * noise) / expected : 0;
}

void check_corners(const Judgement& judgement) {
    double worst = 1e9;
    size_t where = 0, which = 0;
    for (size_t plane = 0; plane < 4; ++plane)
        for (size_t corner = 0; corner < 4; ++corner) {
            const double part = std::min(corner_part(judgement, plane, corner), 1.0);
            if (part < worst) {
                worst = part;
                where = plane;
                which = corner;
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
