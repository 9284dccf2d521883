// expand_lsc_table_c2 (unsigned 16-bit tables)
#include "table/wrapping_border.h"

#include <cstddef>

#include "frame/convert.h"
#include "table/extrapolation.h"
#include "zerklsc.h"

namespace zerklsc {

// The border continues the parabola through the nearest three nodes. Where a table falls so steeply that the
// parabola goes below 0, the value wraps and a caller meets a large gain in the border.
void fill_wrapping_border(View<uint16_t> table) {
    constexpr int32_t needed = 3 + 2 * ZERKLSC_BORDER;
    if (table.width < needed || table.height < needed)
        return;
    extrapolate_border(table, [](const uint16_t* edge, ptrdiff_t inward) {
        return low16(3 * (edge[0] - edge[inward]) + edge[2 * inward]);
    });
}

} // namespace zerklsc

void expand_lsc_table_c2(unsigned short* table, int width, int height) {
    using namespace zerklsc;
    constexpr int32_t border = 2 * ZERKLSC_BORDER;
    if (width >= 0 && height >= 0 && width <= INT32_MAX - border && height <= INT32_MAX - border)
        fill_wrapping_border(packed_view(table, width + border, height + border));
}
