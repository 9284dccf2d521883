// analyse
#include "check/analysis.h"

#include <algorithm>
#include <cmath>

#include "check/robust.h"

namespace zerklsc::tool {
namespace {

constexpr int most_cells = 40;
// A tile darker than this part of the bright ones is not fitted.
constexpr double least_fitted = 0.01;

struct Span {
    int begin, end;
};

Span span_of(int count, int parts, int i) {
    return {count * i / parts, count * (i + 1) / parts};
}

float cell_value(const FrameTiles& tiles, const std::vector<float>& means, double black, double darkest,
                 Span columns, Span rows, std::vector<float>& scratch) {
    scratch.clear();
    for (int j = rows.begin; j < rows.end; ++j)
        for (int i = columns.begin; i < columns.end; ++i)
            scratch.push_back(means[tiles.index(i, j)]);
    const double light = median_of(scratch) - black;
    return light > darkest ? static_cast<float>(std::log(light)) : no_light;
}

LogCells cells_of(const FrameTiles& tiles, const std::vector<float>& means, double black, double darkest,
                  double aspect) {
    LogCells cells;
    const int side = std::max(1, (std::max(tiles.columns, tiles.rows) + most_cells - 1) / most_cells);
    cells.columns = tiles.columns / side;
    cells.rows = tiles.rows / side;
    cells.aspect = aspect;
    // Cells are not all as many tiles wide; the middle of one is where its tiles are.
    const auto middle = [](Span span) { return (span.begin + span.end - 1) / 2.0; };
    for (int i = 0; i < cells.columns; ++i)
        cells.u.push_back(u_of(middle(span_of(tiles.columns, cells.columns, i)), tiles.across, aspect));
    for (int j = 0; j < cells.rows; ++j)
        cells.v.push_back(v_of(middle(span_of(tiles.rows, cells.rows, j)), tiles.down, aspect));
    std::vector<float> scratch;
    for (int j = 0; j < cells.rows; ++j)
        for (int i = 0; i < cells.columns; ++i)
            cells.values.push_back(cell_value(tiles, means, black, darkest,
                                              span_of(tiles.columns, cells.columns, i),
                                              span_of(tiles.rows, cells.rows, j), scratch));
    return cells;
}

void subtract_surface(PlaneAnalysis& plane) {
    const LogCells& cells = plane.cells;
    size_t at = 0;
    for (int j = 0; j < cells.rows; ++j)
        for (int i = 0; i < cells.columns; ++i, ++at) {
            const double fitted = plane.surface.at(cells.u_at(i), cells.v_at(j));
            const double value = static_cast<double>(cells.values[at]);
            plane.cell_rest.push_back(static_cast<float>(
                cells.values[at] == no_light ? 0 : std::exp(std::clamp(value - fitted, -5.0, 5.0)) - 1));
        }
}

// The surface at the tiles: linear between points that are a few tiles apart where there are many.
void expect_tiles(const FrameTiles& tiles, double aspect, PlaneAnalysis& plane) {
    const int apart = tiles.columns > 100 ? 4 : 1;
    const int w = tiles.columns / apart + 2, h = tiles.rows / apart + 2;
    std::vector<float> nodes;
    for (int j = 0; j < h; ++j)
        for (int i = 0; i < w; ++i)
            nodes.push_back(static_cast<float>(std::exp(std::clamp(
                plane.surface.at(u_of(i * apart, tiles.across, aspect), v_of(j * apart, tiles.down, aspect)),
                -30.0, 30.0))));
    plane.expected.resize(tiles.count());
    for (int row = 0; row < tiles.rows; ++row) {
        const float fy = static_cast<float>(row % apart) / static_cast<float>(apart);
        const float* const top = &nodes[static_cast<size_t>(row / apart * w)];
        for (int column = 0; column < tiles.columns; ++column) {
            const float fx = static_cast<float>(column % apart) / static_cast<float>(apart);
            const float* const at = top + column / apart;
            const float upper = at[0] + fx * (at[1] - at[0]);
            const float lower = at[w] + fx * (at[w + 1] - at[w]);
            plane.expected[tiles.index(column, row)] = upper + fy * (lower - upper);
        }
    }
}

void analyse_plane(const FrameTiles& tiles, const PlaneTiles& plane_tiles, double black, double aspect,
                   PlaneAnalysis& plane) {
    plane.tile_side = tiles.side;
    plane.noise = photon_transfer(plane_tiles, tiles.side);
    std::vector<float> means = plane_tiles.mean;
    plane.bright = quantile_of(means, 0.9) - black;
    plane.cells =
        cells_of(tiles, plane_tiles.mean, black, std::max(least_fitted * plane.bright, 1e-3), aspect);
    plane.surface = fit_lens_surface(plane.cells);
    subtract_surface(plane);
    expect_tiles(tiles, aspect, plane);
    plane.rest.resize(tiles.count());
    for (size_t i = 0; i < plane.rest.size(); ++i)
        plane.rest[i] =
            (plane_tiles.mean[i] - static_cast<float>(black)) / std::max(plane.expected[i], 1e-3F) - 1;
    const double per_cell = double(tiles.columns) / plane.cells.columns * tiles.rows / plane.cells.rows;
    // The median's efficiency is 2 / pi; the darker half of the frame is noisier than its middle.
    plane.cell_noise = tile_noise(plane, black, plane.bright / 2) * std::sqrt(1.57 / per_cell);
}

} // namespace

double sample_noise(const PlaneAnalysis& plane, double black, double light) {
    return std::sqrt(std::max(variance_at(plane.noise, light + black), 0.0)) / std::max(light, 1e-3);
}

double tile_noise(const PlaneAnalysis& plane, double black, double light) {
    return sample_noise(plane, black, light) / plane.tile_side;
}

Analysis analyse(const RawFrame& frame, const BlackLevel& black) {
    Analysis analysis;
    analysis.tiles = measure_tiles(frame);
    for (size_t plane = 0; plane < 4; ++plane)
        analyse_plane(analysis.tiles, analysis.tiles.planes[plane], black[plane],
                      double(frame.height) / frame.width, analysis.planes[plane]);
    return analysis;
}

} // namespace zerklsc::tool
