// img_sample_grid
#include "sampling/grid_sampling.h"

#include <algorithm>
#include <cstddef>

#include "sampling/window_sums.h"

namespace zerklsc {

int32_t node_position(int32_t i, int32_t step, int32_t n) {
    return static_cast<int32_t>(std::clamp<int64_t>(int64_t{i} * step, 0, int64_t{n} - 1));
}

bool grid_fits(const PlaneSet& planes, const Window& window, const SampleGrid& grid) {
    if (grid.columns < 1 || grid.rows < 1)
        return true;
    return window_fits(window, planes.width, 0, int64_t{planes.width} - 1)
           && window_fits(window, planes.height, 0, int64_t{planes.height} - 1);
}

void sample_grid(const PlaneSet& planes, const Window& window, const SampleGrid& grid,
                 float* const samples[]) {
    const auto centre_of = [&](ptrdiff_t node) {
        return WindowCentre{
            node_position(static_cast<int32_t>(node % grid.columns), grid.step_x, planes.width),
            node_position(static_cast<int32_t>(node / grid.columns), grid.step_y, planes.height)};
    };
    const int64_t nodes = grid.columns < 1 || grid.rows < 1 ? 0 : int64_t{grid.columns} * grid.rows;
    const Scratch<uint64_t> shared = shared_sums(planes, window, nodes, centre_of);
    for (ptrdiff_t node = 0; node < nodes; ++node) {
        uint64_t own[4];
        const uint64_t* const sums = sums_of(shared, node, planes, window, centre_of(node), own);
        for (int32_t c = 0; c < planes.count(); ++c)
            samples[c][node] = mean_level(sums[c], window);
    }
}

} // namespace zerklsc

int32_t img_sample_grid(const uint16_t* plane, float* samples, int32_t width, int32_t height, int32_t step_x,
                        int32_t step_y, int32_t out_w, int32_t out_h, const imfilter_t* filter) {
    using namespace zerklsc;
    const Window window = make_window(*filter);
    const PlaneSet planes = single_plane(plane, width, height);
    const SampleGrid grid = {step_x, step_y, out_w, out_h};
    if (!window || !grid_fits(planes, window, grid))
        return -1;
    sample_grid(planes, window, grid, &samples);
    return 0;
}
