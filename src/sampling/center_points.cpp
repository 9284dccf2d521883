// init_center_points, release_center_points, get_pixel_maximum
#include "sampling/center_points.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "frame/scratch.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// How many points, `step` apart, a tenth of an extent has room for.
int32_t points_in_tenth(int32_t extent, int32_t step) {
    const float room = static_cast<float>(extent) * 0.1f / static_cast<float>(step);
    return static_cast<int32_t>(std::floor(room));
}

} // namespace

CentreCluster centre_cluster(int32_t width, int32_t height) {
    const int32_t w = std::max(width, 0);
    const int32_t h = std::max(height, 0);
    const int32_t step = std::max(1, std::min(w, h) >> 7);
    return {w / 2, h / 2, step, points_in_tenth(w, step), points_in_tenth(h, step)};
}

} // namespace zerklsc

int32_t init_center_points(int32_t width, int32_t height, pix_point** points, int32_t* count) {
    const zerklsc::CentreCluster cluster = zerklsc::centre_cluster(width, height);
    if (cluster.points() > INT32_MAX)
        return -1;
    zerklsc::Scratch<pix_point> list = zerklsc::allocate<pix_point>(static_cast<uint64_t>(cluster.points()));
    if (list == nullptr)
        return -1;
    ptrdiff_t k = 0;
    // Rows without a point can be so many that passing over them takes seconds.
    const int32_t rows = cluster.columns == 0 ? 0 : 2 * cluster.rows;
    for (int32_t j = 0; j < rows; ++j) {
        for (int32_t i = 0; i < 2 * cluster.columns; ++i, ++k) {
            list[static_cast<size_t>(k)].x = cluster.column(i);
            list[static_cast<size_t>(k)].y = cluster.row(j);
        }
    }
    *count = static_cast<int32_t>(cluster.points());
    *points = list.release();
    return 0;
}

void release_center_points(pix_point* points) {
    std::free(points);
}

int32_t get_pixel_maximum(const pix_point* points, int32_t count) {
    int32_t brightest = 0;
    for (int32_t k = 1; k < count; ++k) {
        if (points[k].value > points[brightest].value)
            brightest = k;
    }
    return brightest;
}
