#include "calibration/surface.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "zerklsc.h"

namespace zerklsc {
namespace {

// One node of a row or column as a combination of two inner ones, in ascending order.
struct Tie {
    int32_t inner[2];
    float weight[2];
};

Tie tie(int32_t node, int32_t nodes) {
    const int32_t last = nodes - 3;
    if (node == 0)
        return {{0, 1}, {2.0f, -1.0f}};
    if (node == nodes - 1)
        return {{last - 1, last}, {-1.0f, 2.0f}};
    return {{node - 1, node - 1}, {1.0f, 0.0f}};
}

// Adds the weight b of one node to those of the inner nodes that it is tied to.
void add_node(double b, const Tie& x, const Tie& y, DesignRow& row) {
    for (int q = 0; q < 2; ++q)
        for (int p = 0; p < 2; ++p)
            row.weight[y.inner[q] - row.y][x.inner[p] - row.x] +=
                b * static_cast<double>(y.weight[q] * x.weight[p]);
}

} // namespace

AxisTaps axis_taps(int32_t position, float per_step, int32_t nodes) {
    const float at = static_cast<float>(position) * per_step + 1.0f;
    AxisTaps taps;
    taps.first = std::clamp(static_cast<int32_t>(std::floor(at)) - 1, 0, nodes - 4);
    for (int t = 0; t < 4; ++t)
        taps.weight[t] = get_cubic_coef(at - static_cast<float>(taps.first + t));
    return taps;
}

DesignRow design_row(const AxisTaps& x, const AxisTaps& y, const SurfaceGrid& grid) {
    DesignRow row = {};
    row.x = std::max(x.first - 1, 0);
    row.y = std::max(y.first - 1, 0);
    row.columns = std::min(4, grid.inner_width() - row.x);
    row.rows = std::min(4, grid.inner_height() - row.y);
    for (int q = 0; q < 4; ++q)
        for (int p = 0; p < 4; ++p)
            add_node(static_cast<double>(x.weight[p]) * static_cast<double>(y.weight[q]),
                     tie(x.first + p, grid.width), tie(y.first + q, grid.height), row);
    return row;
}

void add_to_normal_matrix(const DesignRow& row, const SurfaceGrid& grid, double* normal) {
    const ptrdiff_t width = grid.inner_width();
    const ptrdiff_t unknowns = static_cast<ptrdiff_t>(grid.inner_count());
    const ptrdiff_t first = row.y * width + row.x;
    for (int q = 0; q < row.rows; ++q)
        for (int p = 0; p < row.columns; ++p)
            for (int s = 0; s < row.rows; ++s) {
                double* const to = normal + (first + q * width + p) * unknowns + first + s * width;
                for (int r = 0; r < row.columns; ++r)
                    to[r] += row.weight[q][p] * row.weight[s][r];
            }
}

void add_to_right_sides(const DesignRow& row, const SurfaceGrid& grid, const float* gains, double* right) {
    for (int q = 0; q < row.rows; ++q) {
        double* to = right + ((row.y + q) * ptrdiff_t{grid.inner_width()} + row.x) * ZERKLSC_CHANNELS;
        for (int p = 0; p < row.columns; ++p)
            for (int k = 0; k < ZERKLSC_CHANNELS; ++k)
                *to++ += row.weight[q][p] * static_cast<double>(gains[k]);
    }
}

float node_value(int32_t i, int32_t j, const SurfaceGrid& grid, const float* inner) {
    const Tie x = tie(i, grid.width);
    const Tie y = tie(j, grid.height);
    float sum = 0.0f;
    for (int q = 0; q < 2; ++q)
        for (int p = 0; p < 2; ++p)
            sum +=
                (y.weight[q] * x.weight[p]) * inner[ptrdiff_t{y.inner[q]} * grid.inner_width() + x.inner[p]];
    return sum;
}

} // namespace zerklsc
