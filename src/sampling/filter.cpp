// img_filter
#include <cstddef>

#include "sampling/window.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

// The sum of a plane's samples under the window around `centre`, at their plain positions.
uint64_t sum_at(const uint16_t* centre, ptrdiff_t stride, const Window& window) {
    uint64_t sum = 0;
    for (int32_t dy = -window.radius; dy <= window.radius; ++dy) {
        const int32_t reach = window.reach_of(dy);
        for (int32_t dx = -reach; dx <= reach; ++dx)
            sum += centre[dy * stride + dx];
    }
    return sum;
}

} // namespace

// s1 is both the row stride and the number of rows, s2 the number of columns: callers pass width and height
// of a square plane, or choose the covered region with them.
int32_t img_filter(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2, const imfilter_t* filter) {
    // The boundary mode is not consulted: the caller provides the margin.
    imfilter_t plain = *filter;
    plain.boundary_mode = ZERKLSC_BOUNDARY_CLAMP;
    const Window window = make_window(plain);
    if (!window)
        return -1;
    for (ptrdiff_t row = 0; row < s1; ++row) {
        for (ptrdiff_t column = 0; column < s2; ++column) {
            const ptrdiff_t at = row * s1 + column;
            dst[at] = rounded_level(sum_at(src + at, s1, window), window);
        }
    }
    return 0;
}
