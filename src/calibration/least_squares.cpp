#include "calibration/least_squares.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zerklsc {
namespace {

constexpr int channels = ZERKLSC_CHANNELS;

Scratch<AxisTaps> line_taps(const FitLines& lines, int32_t step, int32_t nodes) {
    Scratch<AxisTaps> taps = allocate<AxisTaps>(static_cast<uint64_t>(lines.count));
    const float per_step = 1.0f / static_cast<float>(step);
    if (taps != nullptr)
        std::transform(lines.begin(), lines.end(), taps.get(),
                       [=](int16_t at) { return axis_taps(at, per_step, nodes); });
    return taps;
}

// Zeros where the memory is to be had.
Scratch<double> allocate_zeros(uint64_t count) {
    Scratch<double> zeros = allocate<double>(count);
    if (zeros != nullptr)
        std::fill_n(zeros.get(), count, 0.0);
    return zeros;
}

// Calls visit(column, row, weights) for every point, row by row. False without memory.
template <class Visit>
bool for_each_point(const FitRaster& raster, const Visit& visit) {
    const Scratch<AxisTaps> column_taps = line_taps(raster.columns, raster.step, raster.grid.width);
    const Scratch<AxisTaps> row_taps = line_taps(raster.rows, raster.step, raster.grid.height);
    if (column_taps == nullptr || row_taps == nullptr)
        return false;
    const AxisTaps* y = row_taps.get();
    for (const int16_t row : raster.rows) {
        const AxisTaps* x = column_taps.get();
        for (const int16_t column : raster.columns)
            visit(column, row, design_row(*x++, *y, raster.grid));
        ++y;
    }
    return true;
}

// From gains_of(column, row, gains).
template <class GainsOf>
System system_of(const FitRaster& raster, const GainsOf& gains_of) {
    const uint64_t unknowns = static_cast<uint64_t>(raster.grid.inner_count());
    System system = {allocate_zeros(unknowns * unknowns), allocate_zeros(channels * unknowns)};
    if (system.normal == nullptr || system.right == nullptr)
        return {};
    const auto add = [&](int16_t column, int16_t row, const DesignRow& weights) {
        float gains[channels];
        gains_of(column, row, gains);
        add_to_normal_matrix(weights, raster.grid, system.normal.get());
        add_to_right_sides(weights, raster.grid, gains, system.right.get());
    };
    return for_each_point(raster, add) ? std::move(system) : System{};
}

} // namespace

System make_system(const FitRaster& raster, const FlatField& flat) {
    return system_of(raster,
                     [&](int16_t column, int16_t row, float* gains) { gains_at(flat, column, row, gains); });
}

System unity_system(const FitRaster& raster) {
    return system_of(raster, [](int16_t, int16_t, float* gains) { std::fill_n(gains, channels, 1.0f); });
}

// The products are taken in double precision, the sums kept in single precision, and each waits for the one
// before: several rows of the inverse are taken at a time.
void solve(const System& system, const SurfaceGrid& grid, float* inner) {
    constexpr ptrdiff_t at_once = 4;
    const ptrdiff_t unknowns = static_cast<ptrdiff_t>(grid.inner_count());
    for (ptrdiff_t m = 0; m < unknowns; m += at_once) {
        const ptrdiff_t rows = std::min(at_once, unknowns - m);
        const double* inverse[at_once];
        for (ptrdiff_t i = 0; i < at_once; ++i)
            inverse[i] = system.normal.get() + (m + std::min(i, rows - 1)) * unknowns;
        float sums[at_once][channels] = {};
        for (ptrdiff_t l = 0; l < unknowns; ++l)
            for (ptrdiff_t i = 0; i < at_once; ++i)
                for (int k = 0; k < channels; ++k)
                    sums[i][k] = static_cast<float>(static_cast<double>(sums[i][k])
                                                    + inverse[i][l] * system.right.get()[channels * l + k]);
        for (ptrdiff_t i = 0; i < rows; ++i)
            for (int k = 0; k < channels; ++k)
                inner[k * unknowns + m + i] = sums[i][k];
    }
}

} // namespace zerklsc
