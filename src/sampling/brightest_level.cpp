// The brightest level of the centre cluster.
#include <algorithm>

#include "sampling/center_points.h"
#include "sampling/cluster_sums.h"

namespace zerklsc {

bool cluster_fits(const Field& field, const Window& window, const CentreCluster& cluster) {
    if (cluster.points() == 0)
        return true;
    for (int32_t i = 0; i < 2 * cluster.columns; ++i) {
        if (!window_fits(window, field.width, cluster.column(i), cluster.column(i)))
            return false;
    }
    for (int32_t j = 0; j < 2 * cluster.rows; ++j) {
        if (!window_fits(window, field.height, cluster.row(j), cluster.row(j)))
            return false;
    }
    return true;
}

namespace {

// Window by window, wherever the windows lie.
void raise_to_points(const Field& field, const Window& window, const CentreCluster& cluster,
                     uint64_t most[4]) {
    for (int32_t j = 0; j < 2 * cluster.rows; ++j) {
        for (int32_t i = 0; i < 2 * cluster.columns; ++i) {
            uint64_t sums[4];
            sum_window(field, window, cluster.column(i), cluster.row(j), sums);
            for (int32_t c = 0; c < field.planes(); ++c)
                most[c] = std::max(most[c], sums[c]);
        }
    }
}

} // namespace

// The level rises with the sum, so that the largest sum stands for the brightest point.
bool brightest_levels(const Field& field, const Window& window, const CentreCluster& cluster,
                      uint16_t levels[4]) {
    uint64_t most[4] = {};
    if (!columns_should_be_shared(field, window, cluster))
        raise_to_points(field, window, cluster, most);
    else if (!raise_to_cluster(field, window, cluster, most))
        return false;
    for (int32_t c = 0; c < field.planes(); ++c)
        levels[c] = rounded_level(most[c], window);
    return true;
}

} // namespace zerklsc
