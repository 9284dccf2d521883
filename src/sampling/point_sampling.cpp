// img_sample
#include <algorithm>
#include <cstddef>

#include "sampling/plane_set.h"
#include "sampling/window_sums.h"
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
    const auto centre_of = [points](ptrdiff_t k) { return WindowCentre{points[k].x, points[k].y}; };
    const Scratch<uint64_t> shared = shared_sums(planes, window, std::max(count, 0), centre_of);
    for (ptrdiff_t k = 0; k < count; ++k) {
        uint64_t own;
        points[k].value = rounded_level(*sums_of(shared, k, planes, window, centre_of(k), &own), window);
    }
    return 0;
}
