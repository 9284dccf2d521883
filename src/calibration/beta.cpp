// lsc2d_calibration_beta
#include "calibration/beta.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "calibration/fit_points.h"
#include "calibration/flat_field.h"
#include "calibration/inversion/matrix_inv.h"
#include "calibration/least_squares.h"
#include "calibration/surface.h"
#include "frame/convert.h"
#include "frame/scratch.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// Gains of 64 and more wrap around: the table keeps their low 16 bits.
uint16_t table_gain(float gain) {
    return floor_low16(static_cast<double>(gain * 1024.0f + 0.5f));
}

void store_table(const SurfaceGrid& grid, const float* inner, uint16_t* table) {
    // Every node is a sum over all inner nodes, most of them with the weight 0, which a value that is not
    // finite turns into not a number.
    const bool finite =
        std::all_of(inner, inner + grid.inner_count(), [](float node) { return std::isfinite(node); });
    for (int32_t j = 0; j < grid.height; ++j) {
        for (int32_t i = 0; i < grid.width; ++i) {
            const float gain = finite ? node_value(i, j, grid, inner) : 0.0f;
            *table++ = table_gain(gain);
        }
    }
}

bool has_unity_gains(const SurfaceGrid& grid, const float* inner) {
    for (int32_t j = 0; j < grid.height; ++j)
        for (int32_t i = 0; i < grid.width; ++i)
            if (table_gain(node_value(i, j, grid, inner)) != ZERKLSC_UNITY_GAIN)
                return false;
    return true;
}

Fit invert(Scratch<double>& normal, const SurfaceGrid& grid) {
    if (normal == nullptr)
        return Fit::refused;
    switch (invert_matrix(normal.get(), static_cast<int32_t>(grid.inner_count()))) {
    case Inversion::done:
        return Fit::done;
    case Inversion::singular:
        return Fit::singular;
    default:
        return Fit::refused;
    }
}

// The inner nodes of the four channels. Either memory may be lacking.
Fit solve_inner(System& system, const SurfaceGrid& grid, float* inner) {
    if (inner == nullptr)
        return Fit::refused;
    const Fit fit = invert(system.normal, grid);
    if (fit == Fit::done)
        solve(system, grid, inner);
    return fit;
}

Fit calibrate(const FlatField& flat, uint16_t** tables, const SurfaceGrid& grid, int32_t step,
              int32_t start) {
    const FitLines columns = fit_lines(flat.planes.width, step, start);
    const FitLines rows = fit_lines(flat.planes.height, step, start);
    if (check_lines(columns, flat.planes.width, flat.window) != ZERKLSC_OK
        || check_lines(rows, flat.planes.height, flat.window) != ZERKLSC_OK)
        return Fit::refused;
    const FitRaster raster = {grid, step, columns, rows};
    const Scratch<float> inner =
        allocate<float>(ZERKLSC_CHANNELS * static_cast<uint64_t>(grid.inner_count()));
    System system = make_system(raster, flat);
    const Fit fit = solve_inner(system, grid, inner.get());
    if (fit != Fit::done)
        return fit;
    for (int k = 0; k < ZERKLSC_CHANNELS; ++k)
        store_table(grid, inner.get() + k * grid.inner_count(), tables[k]);
    return Fit::done;
}

} // namespace

Fit fit_surface(const uint16_t* image, int32_t width, int32_t height, uint16_t** tables, int32_t nx,
                int32_t ny, const lsc2d_calib_param& param) {
    const SurfaceGrid grid = {nx, ny};
    if (param.grid <= 0 || nx < 4 || ny < 4 || grid.inner_count() > INT32_MAX)
        return Fit::refused;
    const FlatField flat = make_flat_field(
        image, width, height, {param.filter_type, param.filter_radius, param.boundary_mode, nullptr});
    if (!flat.measurable)
        return Fit::refused;
    // The radius of the window is, by intent, also where the first line of fit points stands.
    return calibrate(flat, tables, grid, param.grid, param.filter_radius);
}

Fit try_fit(const SurfaceGrid& grid, int32_t plane_w, int32_t plane_h, const lsc2d_calib_param& param) {
    const FitLines columns = fit_lines(plane_w, param.grid, param.filter_radius);
    const FitLines rows = fit_lines(plane_h, param.grid, param.filter_radius);
    if (columns.at == nullptr || rows.at == nullptr)
        return Fit::refused;
    const Scratch<float> inner =
        allocate<float>(ZERKLSC_CHANNELS * static_cast<uint64_t>(grid.inner_count()));
    System system = unity_system({grid, param.grid, columns, rows});
    const Fit fit = solve_inner(system, grid, inner.get());
    return fit == Fit::done && !has_unity_gains(grid, inner.get()) ? Fit::rounded : fit;
}

} // namespace zerklsc

int32_t lsc2d_calibration_beta(uint16_t* image, int32_t width, int32_t height, uint16_t** tables, int32_t nx,
                               int32_t ny, lsc2d_calib_param* param) {
    using namespace zerklsc;
    const Fit fit = fit_surface(image, width, height, tables, nx, ny, *param);
    if (fit == Fit::singular)
        std::puts("Warning: singular matrix, no solution was found!");
    return fit == Fit::done ? 0 : -1;
}
