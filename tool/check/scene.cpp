// check_scene: what a lens and even light cannot explain
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/checks.h"
#include "check/robust.h"

namespace zerklsc::tool {
namespace {

struct Area {
    double height = 0; // a fraction
    size_t plane = 0;
    int x = 0, y = 0; // percent of the frame
};

// The median of a cell and its eight neighbours.
float median_around(const LogCells& cells, const std::vector<float>& rest, int column, int row) {
    std::vector<float> values;
    for (int j = std::max(row - 1, 0); j <= std::min(row + 1, cells.rows - 1); ++j)
        for (int i = std::max(column - 1, 0); i <= std::min(column + 1, cells.columns - 1); ++i)
            values.push_back(rest[static_cast<size_t>(j * cells.columns + i)]);
    return static_cast<float>(median_of(values));
}

// The column or row whose middle is nearest.
int nearest(const std::vector<double>& middles, double at) {
    const auto nearer = [at](double a, double b) { return std::abs(a - at) < std::abs(b - at); };
    return static_cast<int>(std::ranges::min_element(middles, nearer) - middles.begin());
}

// The same as far from the optical centre as (u, v), or as the frame reaches, on the way to another corner.
float median_towards(const PlaneAnalysis& plane, double u, double v, double corner_u, double corner_v) {
    const auto& centre = plane.surface.centre;
    const double reach = std::hypot(corner_u - centre[0], corner_v - centre[1]);
    const double part = std::min(std::hypot(u - centre[0], v - centre[1]) / reach, 1.0);
    return median_around(plane.cells, plane.cell_rest,
                         nearest(plane.cells.u, centre[0] + part * (corner_u - centre[0])),
                         nearest(plane.cells.v, centre[1] + part * (corner_v - centre[1])));
}

// The same without what a barrel vignettes: that darkens the other corners too, if not as much.
float around_without_barrel(const PlaneAnalysis& plane, int column, int row) {
    const LogCells& cells = plane.cells;
    const float around = median_around(cells, plane.cell_rest, column, row);
    const double u = cells.u_at(column), v = cells.v_at(row);
    if (around >= 0 || !beyond_barrel(u, v))
        return around;
    const double own_u = u < 0 ? cells.u.front() : cells.u.back(),
                 other_u = cells.u.front() + cells.u.back() - own_u;
    const double own_v = v < 0 ? cells.v.front() : cells.v.back(),
                 other_v = cells.v.front() + cells.v.back() - own_v;
    std::vector<float> others{median_towards(plane, u, v, other_u, own_v),
                              median_towards(plane, u, v, own_u, other_v),
                              median_towards(plane, u, v, other_u, other_v)};
    return std::min(around - 2 * std::min(static_cast<float>(median_of(others)), 0.0F), 0.0F);
}

// The largest median of five cells in a row, of the four directions through a cell: a ring or a streak of
// flare may be narrower than three cells. 0 where no direction has five.
float median_along(const LogCells& cells, const std::vector<float>& rest, int column, int row) {
    constexpr int reach = 2;
    float largest = 0;
    std::vector<float> values;
    for (const auto [dx, dy] : {std::array{1, 0}, std::array{0, 1}, std::array{1, 1}, std::array{1, -1}}) {
        const int i = column - reach * dx, j = row - reach * dy, last_i = column + reach * dx,
                  last_j = row + reach * dy;
        if (i < 0 || last_i >= cells.columns || std::min(j, last_j) < 0 || std::max(j, last_j) >= cells.rows)
            continue;
        values.clear();
        for (int k = -reach; k <= reach; ++k)
            values.push_back(rest[static_cast<size_t>((row + k * dy) * cells.columns + column + k * dx)]);
        largest = std::max(largest, static_cast<float>(median_of(values)));
    }
    return largest;
}

// Where lenses differ most from a smooth surface.
bool near_edge(const LogCells& cells, int column, int row) {
    const int reach = std::max(std::max(cells.columns, cells.rows) / 10, 1);
    return std::min({column, row, cells.columns - 1 - column, cells.rows - 1 - row}) < reach;
}

struct Areas {
    Area shadow, flare;
};

Areas areas_of(const Judgement& judgement, const std::vector<float>& rows) {
    Areas areas;
    for (size_t plane = 0; plane < 4; ++plane) {
        const PlaneAnalysis& p = judgement.analysis.planes[plane];
        const LogCells& cells = p.cells;
        for (int j = 0; j < cells.rows; ++j)
            for (int i = 0; i < cells.columns; ++i) {
                if (in_corner(cells.u_at(i), cells.v_at(j)))
                    continue;
                const float around = around_without_barrel(p, i, j);
                const float highest = std::max(around, median_along(cells, p.cell_rest, i, j));
                const double at = static_cast<double>(around < 0 ? around : highest)
                                  - static_cast<double>(rows.empty() ? 0 : rows[static_cast<size_t>(j)]);
                double height = std::max(std::abs(at) - 3 * p.cell_noise, 0.0);
                Area& area = at < 0 ? areas.shadow : areas.flare;
                if (at > 0 && near_edge(cells, i, j))
                    height /= 3;
                if (height > area.height)
                    area = {height, plane, 100 * (2 * i + 1) / (2 * cells.columns),
                            100 * (2 * j + 1) / (2 * cells.rows)};
            }
    }
    return areas;
}

// How far each row of tiles lies off the surface, the planes taken together.
std::vector<float> row_profile(const Analysis& analysis) {
    std::vector<float> profile, row;
    for (int j = 0; j < analysis.tiles.rows; ++j) {
        float sum = 0;
        for (const PlaneAnalysis& plane : analysis.planes) {
            const auto begin = plane.rest.begin() + j * analysis.tiles.columns;
            row.assign(begin, begin + analysis.tiles.columns);
            sum += static_cast<float>(median_of(row)) / 4;
        }
        profile.push_back(sum);
    }
    return profile;
}

// The rows' deviation, the outermost few left out: a dead line is no flicker.
double height_of(std::vector<float> profile) {
    for (float& value : profile)
        value = std::abs(value);
    return quantile_of(profile, 0.97);
}

// Rows that go up and down again and again are flicker; once is a shadow.
int turns_of(const std::vector<float>& profile, double height) {
    int turns = 0, side = 0;
    for (const float value : profile) {
        const int now = static_cast<double>(value) > height / 4    ? 1
                        : static_cast<double>(value) < -height / 4 ? -1
                                                                   : 0;
        if (now != 0 && now != side) {
            turns += side != 0 ? 1 : 0;
            side = now;
        }
    }
    return turns;
}

// The profile at the cells' rows.
std::vector<float> at_cells(const std::vector<float>& profile, int rows) {
    std::vector<float> result, part;
    const int count = static_cast<int>(profile.size());
    for (int j = 0; j < rows; ++j) {
        part.assign(profile.begin() + count * j / rows, profile.begin() + count * (j + 1) / rows);
        result.push_back(static_cast<float>(median_of(part)));
    }
    return result;
}

// The deviation of blocks of 2 x 2 tiles from the surface beyond what noise makes.
double texture_of(const Judgement& judgement, size_t plane, const std::vector<float>& profile) {
    const FrameTiles& tiles = judgement.analysis.tiles;
    const PlaneAnalysis& p = judgement.analysis.planes[plane];
    const double black = judgement.capture.black[plane];
    const DeviationTable deviations(p.noise, judgement.capture.frame.full_scale());
    // Each block in units of its own noise.
    std::vector<float> blocks;
    for (int j = 0; j + 1 < tiles.rows; j += 2)
        for (int i = 0; i + 1 < tiles.columns; i += 2) {
            const size_t at = tiles.index(i, j), below = tiles.index(i, j + 1);
            const float rows = (profile[static_cast<size_t>(j)] + profile[static_cast<size_t>(j) + 1]) / 2;
            const float light = std::max(p.expected[at], 0.01F);
            const float noise =
                deviations.at(light + static_cast<float>(black)) / static_cast<float>(2 * tiles.side) / light;
            blocks.push_back(((p.rest[at] + p.rest[at + 1] + p.rest[below] + p.rest[below + 1]) / 4 - rows)
                             / noise);
        }
    const double times = deviation_from(blocks, 0);
    const double noise = tile_noise(p, black, 0.7 * p.bright) / 2;
    return noise * std::sqrt(std::max(times * times - 1.1, 0.0));
}

double grain_of(const Judgement& judgement, size_t plane) {
    const auto& noise = judgement.analysis.planes[plane].noise;
    return response_of(noise, judgement.capture.black[plane]);
}

// How much more rows differ than columns do, or the other way round: neighbours of an image are alike in both
// directions, those of an image with rows of another length are not.
void check_structure(const Judgement& judgement) {
    double worst = 1;
    size_t where = 0;
    std::vector<float> ratios;
    // Three deviations of the median of so many roots of ratios, each of two variances from half of a tile's
    // samples.
    const FrameTiles& all = judgement.analysis.tiles;
    const double chance =
        std::exp(3 * 1.25 * std::sqrt(2.0 / all.tile_samples() / static_cast<double>(all.count())));
    for (size_t plane = 0; plane < 4; ++plane) {
        const PlaneTiles& tiles = judgement.analysis.tiles.planes[plane];
        ratios.clear();
        for (size_t i = 0; i < tiles.mean.size(); ++i) {
            // Without noise, what is left of the light's slope must not count.
            const float light = judgement.analysis.planes[plane].expected[i];
            const float least = 0.1F + 2e-5F * light * light;
            ratios.push_back((tiles.variance_v[i] + least) / (tiles.variance_h[i] + least));
        }
        const double ratio = std::sqrt(median_of(ratios));
        const double larger = std::max(ratio, 1 / std::max(ratio, 1e-3)) / chance;
        if (larger > worst) {
            worst = larger;
            where = plane;
        }
    }
    judgement.add("structure", judgement.capture.colour(where), worst,
                  "rows and columns do not differ alike: look at --width and --height, and for row noise");
}

// In fewer tiles, what a soft shadow or a coarse texture does is not told from what a lens does.
constexpr size_t fewest_tiles = 400;

// One that shows in a small frame is there; that none shows means nothing.
void add_if_large_enough(const Judgement& judgement, const std::string& name, const std::string& plane,
                         double value, const std::string& advice) {
    Finding finding = judgement.limits.judge(name, plane, value, advice);
    if (finding.verdict == Verdict::pass && judgement.analysis.tiles.count() < fewest_tiles)
        finding =
            judgement.limits.not_judged(name, "the frame is too small to tell it from a lens's shading");
    judgement.findings.push_back(finding);
}

void check_textures(const Judgement& judgement, const std::vector<float>& profile) {
    double texture = 0, grain = 1e9;
    size_t where = 0;
    for (size_t plane = 0; plane < 4; ++plane) {
        const double found = texture_of(judgement, plane, profile);
        if (found > texture) {
            texture = found;
            where = plane;
        }
        // A pattern in front of the sensor is in all planes; noise that bends the curve of one is not.
        grain = std::min(grain, grain_of(judgement, plane));
    }
    add_if_large_enough(judgement, "texture", judgement.capture.colour(where), 100 * texture,
                        "the frame has a texture: use a plain diffuser, out of focus, and check --width");
    if (judgement.analysis.planes[0].noise.size() < fewest_noise_points) {
        judgement.findings.push_back(
            judgement.limits.not_judged("grain", "the frame is too small to tell how its noise grows"));
        return;
    }
    judgement.add("grain", "", 100 * grain,
                  "the samples have a fine pattern: use a diffuser out of focus, or take several captures");
}

} // namespace

void check_scene(const Judgement& judgement) {
    const std::vector<float> profile = row_profile(judgement.analysis);
    const PlaneAnalysis& first = judgement.analysis.planes[0];
    const double noise = 2 * tile_noise(first, judgement.capture.black[0], first.bright / 2)
                         / std::sqrt(judgement.analysis.tiles.columns);
    const bool periodic = turns_of(profile, height_of(profile)) >= 5;
    const double flicker = periodic ? std::max(height_of(profile) - 2 * noise, 0.0) : 0;
    const auto rows = periodic ? at_cells(profile, first.cells.rows) : std::vector<float>();
    const auto [shadow, flare] = areas_of(judgement, rows);
    add_if_large_enough(
        judgement, "shadow", judgement.capture.colour(shadow.plane), 100 * shadow.height,
        fmt::format("something shades the frame at {} % of its width, {} % of its height: remove it",
                    shadow.x, shadow.y));
    judgement.add(
        "flare", judgement.capture.colour(flare.plane), 100 * flare.height,
        fmt::format("extra light falls at {} % of the width, {} % of the height: shield the lens from it",
                    flare.x, flare.y));
    judgement.add(
        "flicker", "", 100 * flicker,
        "rows differ in brightness: use a light without flicker, or whole periods of it as exposure");
    check_structure(judgement);
    check_textures(judgement, periodic ? profile : std::vector<float>(profile.size()));
}

} // namespace zerklsc::tool
