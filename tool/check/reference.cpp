// check_reference
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/robust.h"
#include "check/series.h"

namespace zerklsc::tool {
namespace {

// How a module may sit against the reference: which sides are exchanged.
struct Placement {
    const char* name;
    bool left_right, top_bottom;
};
constexpr std::array<Placement, 4> placements{{{"as it is", false, false},
                                               {"turned by 180 degrees", true, true},
                                               {"mirrored left to right", true, false},
                                               {"mirrored top to bottom", false, true}}};

// The gain between the nodes of a table, at a position from 0 to 1 in both directions.
double gain_at(const GainTables& tables, size_t plane, double x, double y) {
    const double column = x * tables.plane_width() / tables.step + 1,
                 row = y * tables.plane_height() / tables.step + 1;
    const int i = std::clamp(static_cast<int>(column), 0, tables.table_width - 2);
    const int j = std::clamp(static_cast<int>(row), 0, tables.table_height - 2);
    const double fx = column - i, fy = row - j;
    const auto node = [&](int di, int dj) {
        return static_cast<double>(
            tables.gains[plane][static_cast<size_t>((j + dj) * tables.table_width + i + di)]);
    };
    const double top = node(0, 0) + fx * (node(1, 0) - node(0, 0));
    const double bottom = node(0, 1) + fx * (node(1, 1) - node(0, 1));
    return std::max(top + fy * (bottom - top), 1.0);
}

// How far the light times the reference's gain is from being equal: the deviation, and the largest of 98 % of
// the cells.
struct Distance {
    double deviation = 1e9, largest = 1e9;
};

Distance distance_of(const LogCells& cells, const GainTables& tables, size_t plane,
                     const Placement& placement) {
    std::vector<float> corrected;
    for (int j = 0; j < cells.rows; ++j)
        for (int i = 0; i < cells.columns; ++i) {
            const float value = cells.values[static_cast<size_t>(j * cells.columns + i)];
            if (value == no_light)
                continue;
            const double x = (i + 0.5) / cells.columns, y = (j + 0.5) / cells.rows;
            const double gain =
                gain_at(tables, plane, placement.left_right ? 1 - x : x, placement.top_bottom ? 1 - y : y);
            corrected.push_back(value + static_cast<float>(std::log(gain)));
        }
    if (corrected.empty())
        return {};
    const double middle = median_of(corrected);
    Distance distance;
    distance.deviation = deviation_from(corrected, middle); // leaves the absolute deviations
    distance.largest = quantile_of(corrected, 0.98);
    return distance;
}

// Of each plane. By colour: a sensor that is read the other way round has its colours in other planes.
std::array<Distance, 4> distances_of(const Judgement& judgement, const GainTables& reference,
                                     const Placement& placement) {
    std::array<Distance, 4> distances;
    for (size_t plane = 0; plane < 4; ++plane) {
        const Colour colour = colour_of_plane(judgement.capture.pattern, static_cast<int>(plane));
        const auto other = static_cast<size_t>(plane_of_colour(reference.pattern, colour));
        distances[plane] = distance_of(judgement.analysis.planes[plane].cells, reference, other, placement);
    }
    return distances;
}

Distance worst_of(const std::array<Distance, 4>& distances) {
    Distance worst{0, 0};
    for (const Distance& one : distances) {
        worst.deviation = std::max(worst.deviation, one.deviation);
        worst.largest = std::max(worst.largest, one.largest);
    }
    return worst;
}

// A deviation below this is no reason to look for a better fit.
constexpr double noticeable = 0.01;

// How the planes that come far closer to other planes of the reference than to their own are exchanged;
// empty where none do.
std::string exchanged_planes(const Judgement& judgement, const GainTables& reference,
                             const std::array<Distance, 4>& own) {
    std::string what;
    for (size_t plane = 0; plane < 4 && what.empty(); ++plane)
        for (size_t other = 0; other < 4; ++other) {
            const double exchanged =
                distance_of(judgement.analysis.planes[plane].cells, reference, other, placements[0])
                    .deviation;
            const double deviation = own[plane].deviation;
            if (other != plane && deviation > noticeable && exchanged < deviation / 3)
                what = fmt::format("with the plane of {} in the place of {}", judgement.capture.colour(plane),
                                   judgement.capture.colour(other));
        }
    return what;
}

} // namespace

void check_reference(const Judgement& judgement, const GainTables& reference) {
    const std::array<Distance, 4> upright = distances_of(judgement, reference, placements[0]);
    const Distance own = worst_of(upright);
    double best = own.deviation;
    const Placement* best_placement = &placements[0];
    for (size_t i = 1; i < placements.size(); ++i) {
        const double deviation = worst_of(distances_of(judgement, reference, placements[i])).deviation;
        if (deviation < best) {
            best = deviation;
            best_placement = &placements[i];
        }
    }
    const bool is_turned =
        best_placement != &placements[0] && own.deviation > noticeable && best < own.deviation / 2;
    const std::string exchanged = is_turned ? "" : exchanged_planes(judgement, reference, upright);
    const bool misplaced = is_turned || !exchanged.empty();
    const std::string what = exchanged.empty() ? best_placement->name : exchanged;
    judgement.add(
        "reference", "", 100 * (std::exp(own.largest) - 1),
        "the shading is not that of the reference: look for another lens or a lens out of its seat");
    judgement.add(
        "orientation", "", misplaced ? 1 : 0,
        fmt::format("the shading is that of the reference {}: look at how the sensor is read", what));
}

} // namespace zerklsc::tool
