// img_sample
#include "sampling/plane_set.h"
#include "sampling/window.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

bool points_fit(const PlaneSet& planes, const Window& window, const pix_point* points, int32_t count) {
    for (int32_t k = 0; k < count; ++k) {
        if (!window_fits(window, planes.width, points[k].x, points[k].x)
            || !window_fits(window, planes.height, points[k].y, points[k].y))
            return false;
    }
    return true;
}

} // namespace

int32_t img_sample(const uint16_t* plane, pix_point* points, int32_t count, int32_t width, int32_t height,
                   const imfilter_t* filter) {
    const Window window = make_window(*filter);
    const PlaneSet planes = single_plane(plane, width, height);
    if (!window || !points_fit(planes, window, points, count))
        return -1;
    for (int32_t k = 0; k < count; ++k) {
        uint64_t sum[4];
        sum_window(planes, window, points[k].x, points[k].y, sum);
        points[k].value = rounded_level(sum[0], window);
    }
    return 0;
}
