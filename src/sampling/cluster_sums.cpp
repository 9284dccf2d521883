// The windows of the centre cluster on shared column sums.
#include "sampling/cluster_sums.h"

#include <algorithm>
#include <cstddef>

#include "sampling/column_sums.h"

namespace zerklsc {
namespace {

// Whether the windows around the first and the last of the raster positions lie inside, and none wrapped.
bool lies_inside(int32_t extent, int32_t first, int32_t last, int32_t radius) {
    return extent <= INT16_MAX && first >= radius && last < extent - radius;
}

// The column sums of the planes in buffer row `part` of those that share a plane row, from the left edge of
// the leftmost window to the right edge of the rightmost.
ColumnSums cluster_columns(const Field& field, const Window& window, const CentreCluster& cluster,
                           int32_t part) {
    const int32_t left = cluster.column(0) - window.radius;
    const int32_t right = cluster.column(2 * cluster.columns - 1) + window.radius;
    return ColumnSums(field.row(0, part) + static_cast<ptrdiff_t>(left) * field.interleave,
                      field.stride * field.interleave, (right - left + 1) * field.interleave,
                      2 * window.radius + 1, field.interleave);
}

// Raises the largest sums to those of one row of points.
void raise_to_row(const uint32_t* running, const Window& window, const CentreCluster& cluster,
                  int32_t interleave, uint64_t* most) {
    for (int32_t i = 0; i < 2 * cluster.columns; ++i) {
        const uint32_t* const left = running + (cluster.column(i) - cluster.column(0)) * interleave;
        const uint32_t* const right = left + (2 * window.radius + 1) * interleave;
        for (int32_t c = 0; c < interleave; ++c)
            most[c] = std::max<uint64_t>(most[c], right[c] - left[c]);
    }
}

} // namespace

bool columns_should_be_shared(const Field& field, const Window& window, const CentreCluster& cluster) {
    const int32_t r = window.radius;
    return window.box && r >= cluster.step && r <= most_shared_radius && cluster.points() > 0
           && lies_inside(field.width, cluster.column(0), cluster.column(2 * cluster.columns - 1), r)
           && lies_inside(field.height, cluster.row(0), cluster.row(2 * cluster.rows - 1), r);
}

bool raise_to_cluster(const Field& field, const Window& window, const CentreCluster& cluster,
                      uint64_t most[4]) {
    for (int32_t part = 0; part < field.interleave; ++part) {
        ColumnSums sums = cluster_columns(field, window, cluster, part);
        if (!sums)
            return false;
        for (int32_t j = 0; j < 2 * cluster.rows; ++j) {
            sums.move_to(cluster.row(j) - window.radius);
            raise_to_row(sums.running_sums(), window, cluster, field.interleave,
                         most + field.interleave * part);
        }
    }
    return true;
}

} // namespace zerklsc
