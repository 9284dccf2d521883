#include "calibration/least_squares.h"

#include <algorithm>
#include <cstddef>

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

} // namespace

System make_system(const SurfaceGrid& grid, int32_t step, const FitLines& columns, const FitLines& rows,
                   const FlatField& flat) {
    const uint64_t unknowns = static_cast<uint64_t>(grid.inner_count());
    const Scratch<AxisTaps> column_taps = line_taps(columns, step, grid.width);
    const Scratch<AxisTaps> row_taps = line_taps(rows, step, grid.height);
    System system = {allocate_zeros(unknowns * unknowns), allocate_zeros(channels * unknowns)};
    if (column_taps == nullptr || row_taps == nullptr || system.normal == nullptr || system.right == nullptr)
        return {};
    const AxisTaps* y = row_taps.get();
    for (const int16_t row : rows) {
        const AxisTaps* x = column_taps.get();
        for (const int16_t column : columns) {
            float gains[channels];
            gains_at(flat, column, row, gains);
            const DesignRow weights = design_row(*x++, *y, grid);
            add_to_normal_matrix(weights, grid, system.normal.get());
            add_to_right_sides(weights, grid, gains, system.right.get());
        }
        ++y;
    }
    return system;
}

// The products are taken in double precision, the sums kept in single precision.
void solve(const System& system, const SurfaceGrid& grid, float* inner) {
    const ptrdiff_t unknowns = static_cast<ptrdiff_t>(grid.inner_count());
    for (ptrdiff_t m = 0; m < unknowns; ++m) {
        const double* const inverse = system.normal.get() + m * unknowns;
        const double* right = system.right.get();
        float sums[channels] = {};
        for (ptrdiff_t l = 0; l < unknowns; ++l)
            for (float& sum : sums)
                sum = static_cast<float>(static_cast<double>(sum) + inverse[l] * *right++);
        for (int k = 0; k < channels; ++k)
            inner[k * unknowns + m] = sums[k];
    }
}

} // namespace zerklsc
