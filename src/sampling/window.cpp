// The averaging window: its shape and its sums.
#include "sampling/window.h"

#include "sampling/boundary.h"
#include "sampling/mask.h"

namespace zerklsc {
namespace {

bool is_acceptable(const imfilter_t& filter) {
    return has_weights(filter) && filter.filter_radius >= 0 && filter.filter_radius <= max_radius
           && (filter.boundary_mode == ZERKLSC_BOUNDARY_MIRROR
               || filter.boundary_mode == ZERKLSC_BOUNDARY_CLAMP);
}

// Finds the reach of every row; returns the number of taps of weight 1. The reach never grows from one row to
// the next further out.
int64_t measure_reach(const imfilter_t& filter, int32_t* reach) {
    const TapWeight weight(filter);
    int64_t taps = 0;
    int64_t dx = filter.filter_radius;
    for (int64_t dy = 0; dy <= filter.filter_radius; ++dy) {
        while (dx >= 0 && weight.at(dx * dx + dy * dy) == 0)
            --dx;
        reach[dy] = static_cast<int32_t>(dx);
        taps += (2 * dx + 1) * (dx < 0 ? 0 : dy == 0 ? 1 : 2);
    }
    return taps;
}

// Adds the samples of the rows top .. bottom, all of which reach equally far.
void add_band(const PlaneSet& planes, int32_t mode, int64_t top, int64_t bottom, int64_t left, int64_t right,
              uint64_t sums[4]) {
    if (left >= 0 && right < planes.width && top >= 0 && bottom < planes.height) {
        const auto whole = [](int64_t v) { return static_cast<int32_t>(v); };
        return add_block(planes, {whole(left), whole(top), whole(right - left + 1), whole(bottom - top + 1)},
                         1, sums);
    }
    const Runs columns = tap_runs(planes.width, left, right, mode);
    for (const Run& row : tap_runs(planes.height, top, bottom, mode)) {
        for (const Run& column : columns)
            add_block(planes, {column.first, row.first, column.count, row.count},
                      static_cast<uint64_t>(column.weight) * static_cast<uint64_t>(row.weight), sums);
    }
}

} // namespace

Window make_window(const imfilter_t& filter) {
    Window window;
    if (!is_acceptable(filter))
        return window;
    window.radius = filter.filter_radius;
    window.boundary_mode = filter.boundary_mode;
    window.box = filter.filter_type == ZERKLSC_FILTER_BOX;
    window.reach = allocate<int32_t>(static_cast<uint64_t>(filter.filter_radius) + 1);
    if (window.reach == nullptr)
        return window;
    window.taps = measure_reach(filter, window.reach.get());
    if (window.taps == 0)
        window.reach.reset();
    else
        window.scale = 1.0f / static_cast<float>(window.taps);
    return window;
}

bool window_fits(const Window& window, int32_t n, int64_t first, int64_t last) {
    return taps_fit(n, first - window.radius, last + window.radius, window.boundary_mode);
}

void sum_window(const PlaneSet& planes, const Window& window, int64_t x, int64_t y, uint64_t sums[4]) {
    for (int32_t c = 0; c < planes.count(); ++c)
        sums[c] = 0;
    const int32_t r = window.radius;
    if (window.box) {
        add_band(planes, window.boundary_mode, y - r, y + r, x - r, x + r, sums);
        return;
    }
    for (int32_t dy = -r; dy <= r; ++dy) {
        const int32_t reach = window.reach_of(dy);
        if (reach >= 0)
            add_band(planes, window.boundary_mode, y + dy, y + dy, x - reach, x + reach, sums);
    }
}

} // namespace zerklsc
