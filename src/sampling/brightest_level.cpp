// The brightest level of the centre cluster.
#include "sampling/brightest_level.h"

#include <algorithm>
#include <cstddef>

#include "sampling/column_sums.h"
#include "sampling/window_sums.h"

namespace zerklsc {
namespace {

// Raises the largest sums to those of all points, wherever the windows lie.
void search_windows(const PlaneSet& planes, const Window& window, const CentreCluster& cluster,
                    uint64_t max_sums[4]) {
    const auto centre_of = [&](ptrdiff_t k) {
        return WindowCentre{cluster.column(static_cast<int32_t>(k % (2 * cluster.columns))),
                            cluster.row(static_cast<int32_t>(k / (2 * cluster.columns)))};
    };
    const Scratch<uint64_t> shared = shared_sums(planes, window, cluster.points(), centre_of);
    for (ptrdiff_t k = 0; k < cluster.points(); ++k) {
        uint64_t own[4];
        const uint64_t* const sums = sums_of(shared, k, planes, window, centre_of(k), own);
        for (int32_t c = 0; c < planes.count(); ++c)
            max_sums[c] = std::max(max_sums[c], sums[c]);
    }
}

// Whether the windows around the first and the last of the raster positions lie inside, and none wrapped.
bool lies_inside(int32_t extent, int32_t first, int32_t last, int32_t radius) {
    return extent <= INT16_MAX && first >= radius && last < extent - radius;
}

// Whether the windows overlap enough to share their columns, and are boxes inside the plane whose sums fit 32
// bits.
bool columns_should_be_shared(const PlaneSet& planes, const Window& window, const CentreCluster& cluster) {
    const int32_t r = window.radius;
    return window.box && r >= cluster.step && r <= max_shared_radius
           && lies_inside(planes.width, cluster.column(0), cluster.column(2 * cluster.columns - 1), r)
           && lies_inside(planes.height, cluster.row(0), cluster.row(2 * cluster.rows - 1), r);
}

// The column sums of the planes in the buffer rows of one parity, from the left edge of the leftmost window
// to the right edge of the rightmost.
ColumnSums cluster_columns(const PlaneSet& planes, const Window& window, const CentreCluster& cluster,
                           int32_t parity) {
    const int32_t left = cluster.column(0) - window.radius;
    const int32_t right = cluster.column(2 * cluster.columns - 1) + window.radius;
    const int32_t width = (right - left + 1) * planes.interleave;
    ColumnSums sums(width, planes.stride * planes.interleave, 2 * window.radius + 1, planes.interleave);
    sums.start(planes.row(0, parity) + static_cast<ptrdiff_t>(left) * planes.interleave, width);
    return sums;
}

// Raises the largest sums to those of one row of points.
void search_row(const uint32_t* running, const Window& window, const CentreCluster& cluster,
                int32_t interleave, uint64_t* max_sums) {
    for (int32_t i = 0; i < 2 * cluster.columns; ++i) {
        const uint32_t* const left = running + (cluster.column(i) - cluster.column(0)) * interleave;
        const uint32_t* const right = left + (2 * window.radius + 1) * interleave;
        for (int32_t c = 0; c < interleave; ++c)
            max_sums[c] = std::max<uint64_t>(max_sums[c], right[c] - left[c]);
    }
}

// As search_windows(), with the column sums shared between the windows. False when there is no memory for
// them.
bool search_shared_columns(const PlaneSet& planes, const Window& window, const CentreCluster& cluster,
                           uint64_t max_sums[4]) {
    for (int32_t parity = 0; parity < planes.interleave; ++parity) {
        ColumnSums sums = cluster_columns(planes, window, cluster, parity);
        if (!sums)
            return false;
        for (int32_t j = 0; j < 2 * cluster.rows; ++j) {
            sums.move_to(cluster.row(j) - window.radius);
            search_row(sums.running_sums(), window, cluster, planes.interleave,
                       max_sums + planes.interleave * parity);
        }
    }
    return true;
}

} // namespace

bool cluster_fits(const PlaneSet& planes, const Window& window, const CentreCluster& cluster) {
    for (int32_t i = 0; i < 2 * cluster.columns; ++i) {
        if (!window_fits(window, planes.width, cluster.column(i), cluster.column(i)))
            return false;
    }
    for (int32_t j = 0; j < 2 * cluster.rows; ++j) {
        if (!window_fits(window, planes.height, cluster.row(j), cluster.row(j)))
            return false;
    }
    return cluster.points() > 0;
}

// The level rises with the sum, so that the largest sum stands for the brightest point.
bool brightest_levels(const PlaneSet& planes, const Window& window, const CentreCluster& cluster,
                      uint16_t levels[4]) {
    uint64_t max_sums[4] = {};
    if (!columns_should_be_shared(planes, window, cluster))
        search_windows(planes, window, cluster, max_sums);
    else if (!search_shared_columns(planes, window, cluster, max_sums))
        return false;
    for (int32_t c = 0; c < planes.count(); ++c)
        levels[c] = rounded_level(max_sums[c], window);
    return true;
}

} // namespace zerklsc
