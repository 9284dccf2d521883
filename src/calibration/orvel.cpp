// lsc2d_calibration_orvel
#include "calibration/orvel.h"

#include <algorithm>

#include "frame/scratch.h"
#include "sampling/brightest_level.h"
#include "sampling/grid_sampling.h"
#include "sampling/measurement.h"
#include "table/border.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

constexpr int32_t border = 2 * ZERKLSC_BORDER;

struct Buffers {
    Scratch<float> gains;    // one gain per node
    Scratch<float> bordered; // the gains of one channel with their border

    explicit Buffers(const SampleGrid& grid)
        : gains(allocate<float>(grid.columns, grid.rows)),
          bordered(allocate<float>(grid.columns + border, grid.rows + border)) {}

    explicit operator bool() const { return gains != nullptr && bordered != nullptr; }
};

bool allocate_samples(const SampleGrid& grid, NodeSamples& samples) {
    for (Scratch<float>& channel : samples.of)
        channel = allocate<float>(grid.columns, grid.rows);
    return std::all_of(std::begin(samples.of), std::end(samples.of),
                       [](const Scratch<float>& channel) { return channel != nullptr; });
}

bool border_can_be_built(const PlaneSet& planes, const SampleGrid& grid, const lsc2d_calib_param& param) {
    return border_possible({planes.width, planes.height, grid.step_x, grid.step_y}, grid.columns, grid.rows,
                           param.border_mode, param.border_aux);
}

// Samples every channel, turns the levels into gains and the gains into tables. False when there is no
// memory, with no table written.
bool calibrate(const PlaneSet& planes, const Window& window, const SampleGrid& grid,
               const CentreCluster& cluster, const lsc2d_calib_param& param, const NodeSamples& levels,
               const Buffers& buffers, uint16_t** tables) {
    float* const samples[] = {levels.of[0].get(), levels.of[1].get(), levels.of[2].get(), levels.of[3].get()};
    sample_grid(planes, window, grid, samples);
    uint16_t references[ZERKLSC_CHANNELS];
    if (!brightest_levels(planes, window, cluster, references))
        return false;

    const int32_t table_w = grid.columns + border;
    const int32_t table_h = grid.rows + border;
    float* const gains = buffers.gains.get();
    float* const bordered = buffers.bordered.get();
    // An unknown fill mode leaves the border as it is here.
    std::fill_n(bordered, int64_t{table_w} * table_h, 0.0f);
    for (int32_t c = 0; c < ZERKLSC_CHANNELS; ++c) {
        gains_from_samples(samples[c], gains, int64_t{grid.columns} * grid.rows, references[c]);
        update_table_border(gains, bordered, planes.width, planes.height, grid.step_x, grid.step_y,
                            grid.columns, grid.rows, param.border_mode, param.border_aux);
        lsc_table_ftoi(bordered, tables[c], table_w, table_h);
    }
    return true;
}

} // namespace

bool zerklsc::sample_tables(const uint16_t* raw, int32_t width, int32_t height, uint16_t** tables,
                            int32_t table_w, int32_t table_h, const lsc2d_calib_param& param,
                            NodeSamples& samples) {
    if (table_w <= border || table_h <= border)
        return false;
    const Window window = make_window({.filter_type = param.filter_type,
                                       .filter_radius = param.filter_radius,
                                       .boundary_mode = param.boundary_mode,
                                       .sigma = nullptr});
    const PlaneSet planes = mosaic_planes(raw, width, height);
    const SampleGrid grid = {param.grid, param.grid, table_w - border, table_h - border};
    const CentreCluster cluster = centre_cluster(planes.width, planes.height);
    if (!window || !grid_fits(planes, window, grid) || !cluster_fits(planes, window, cluster)
        || !border_can_be_built(planes, grid, param))
        return false;
    const Buffers buffers(grid);
    return buffers && allocate_samples(grid, samples)
           && calibrate(planes, window, grid, cluster, param, samples, buffers, tables);
}

int32_t lsc2d_calibration_orvel(uint16_t* raw, int32_t width, int32_t height, uint16_t** tables,
                                int32_t stride_w, int32_t stride_h, const lsc2d_calib_param* param) {
    NodeSamples samples;
    if (!sample_tables(raw, width, height, tables, stride_w, stride_h, *param, samples))
        return -1;
    // Quirk: the samples stay allocated, so a process that calibrates often grows by them with each call.
    for (Scratch<float>& channel : samples.of)
        static_cast<void>(channel.release());
    return 0;
}
