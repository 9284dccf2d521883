// img_filter
#include <cstddef>

#include "sampling/column_sums.h"
#include "sampling/window.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

// The region of a plane that is filtered; taps are read at their plain positions around it.
struct Region {
    const uint16_t* src;
    uint16_t* dst;
    int32_t rows; // and samples from one row to the next
    int32_t columns;
};

// The sum of a plane's samples under the window around `centre`.
uint64_t sum_at(const uint16_t* centre, ptrdiff_t stride, const Window& window) {
    uint64_t sum = 0;
    for (int32_t dy = -window.radius; dy <= window.radius; ++dy) {
        const int32_t reach = window.reach_of(dy);
        for (int32_t dx = -reach; dx <= reach; ++dx)
            sum += centre[dy * stride + dx];
    }
    return sum;
}

void filter_by_windows(const Region& region, const Window& window) {
    for (ptrdiff_t row = 0; row < region.rows; ++row) {
        for (ptrdiff_t column = 0; column < region.columns; ++column) {
            const ptrdiff_t at = row * region.rows + column;
            region.dst[at] = rounded_level(sum_at(region.src + at, region.rows, window), window);
        }
    }
}

// Small boxes share the sums of their columns.
bool columns_can_be_shared(const Region& region, const Window& window) {
    return window.box && window.radius <= max_shared_radius && region.rows > 0 && region.columns > 0
           && region.columns < INT32_MAX - 2 * max_shared_radius;
}

bool filter_by_columns(const Region& region, const Window& window) {
    const int32_t side = 2 * window.radius + 1;
    ColumnSums sums(region.src - window.radius, region.rows, region.columns + side - 1, side, 1);
    if (!sums)
        return false;
    for (int32_t row = 0; row < region.rows; ++row) {
        sums.move_to(row - window.radius);
        const uint32_t* const running = sums.running_sums();
        uint16_t* const dst = region.dst + static_cast<ptrdiff_t>(row) * region.rows;
        for (int32_t column = 0; column < region.columns; ++column)
            dst[column] = rounded_level(running[column + side] - running[column], window);
    }
    return true;
}

} // namespace

// s1 is both the row stride and the number of rows, s2 the number of columns: callers pass width and height
// of a square plane, or choose the covered region with them.
int32_t img_filter(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2, const imfilter_t* filter) {
    // The boundary mode is not consulted: the caller provides the margin.
    imfilter_t any_boundary = *filter;
    any_boundary.boundary_mode = ZERKLSC_BOUNDARY_CLAMP;
    const Window window = make_window(any_boundary);
    const Region region = {src, dst, s1, s2};
    if (!window)
        return -1;
    if (columns_can_be_shared(region, window))
        return filter_by_columns(region, window) ? 0 : -1;
    filter_by_windows(region, window);
    return 0;
}
