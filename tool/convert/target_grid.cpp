// corner_points, cell_centres, evaluate
#include "convert/target_grid.h"

#include <algorithm>

#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// The four nodes around a position in one direction, and their weights.
struct Stencil {
    int first; // table column or row
    std::array<double, 4> weights;
};

std::array<double, 4> weights_at(double position, int cell) {
    std::array<double, 4> weights{};
    for (int i = 0; i < 4; ++i)
        weights[static_cast<size_t>(i)] =
            static_cast<double>(get_cubic_coef(static_cast<float>(position - (cell + i - ZERKLSC_BORDER))));
    return weights;
}

// The curve at -`distance`, from the parabola through it at 0, `distance` and twice that.
std::array<double, 4> weights_before_first_node(double distance) {
    const auto at_0 = weights_at(0, 0), at_1 = weights_at(distance, 0), at_2 = weights_at(2 * distance, 0);
    std::array<double, 4> weights{};
    for (size_t i = 0; i < weights.size(); ++i)
        weights[i] = 3 * at_0[i] - 3 * at_1[i] + at_2[i];
    return weights;
}

// `fraction` of a frame's side of `pixels` falls on a plane whose samples are every second pixel, from pixel
// `parity` on. The centre of pixel x is at (x + 0.5) / pixels, so that the edges of the frame are up to three
// quarters of a sample away from the outermost samples.
Stencil stencil_at(double fraction, int pixels, int parity, int step, int table_side) {
    const double position = (fraction * pixels - 0.5 - parity) / 2 / step;
    if (position < 0)
        return {0, weights_before_first_node(std::min(-position, 0.5))};
    const int cell = std::min(static_cast<int>(position), table_side - 4);
    return {cell, weights_at(position, cell)};
}

double gain_at(const GainTables& tables, const std::vector<uint16_t>& gains, const Stencil& x,
               const Stencil& y) {
    double gain = 0;
    for (size_t j = 0; j < 4; ++j)
        for (size_t i = 0; i < 4; ++i) {
            const size_t row = static_cast<size_t>(y.first) + j;
            const size_t column = static_cast<size_t>(x.first) + i;
            gain +=
                y.weights[j] * x.weights[i] * gains[row * static_cast<size_t>(tables.table_width) + column];
        }
    // Between steep nodes the curve can swing below 0, which no gain is.
    return std::max(gain, 1.0) / double{ZERKLSC_UNITY_GAIN};
}

} // namespace

std::vector<double> corner_points(int count) {
    std::vector<double> points;
    for (int i = 0; i < count; ++i)
        points.push_back(static_cast<double>(i) / (count - 1));
    return points;
}

std::vector<double> cell_centres(int count) {
    std::vector<double> points;
    for (int i = 0; i < count; ++i)
        points.push_back((i + 0.5) / count);
    return points;
}

TargetGrid evaluate(const GainTables& tables, const std::vector<double>& x, const std::vector<double>& y) {
    TargetGrid grid{static_cast<int>(x.size()), static_cast<int>(y.size()), {}};
    for (const Colour colour : all_colours) {
        const int plane = plane_of_colour(tables.pattern, colour);
        std::vector<Stencil> columns;
        for (const double fraction : x)
            columns.push_back(
                stencil_at(fraction, tables.raw_width, plane & 1, tables.step, tables.table_width));
        for (const double fraction : y) {
            const Stencil row =
                stencil_at(fraction, tables.raw_height, plane >> 1, tables.step, tables.table_height);
            for (const Stencil& column : columns)
                grid.gains[static_cast<size_t>(colour)].push_back(
                    gain_at(tables, tables.gains[static_cast<size_t>(plane)], column, row));
        }
    }
    return grid;
}

} // namespace zerklsc::tool
