// isp_blc_process
#include <algorithm>
#include <cstddef>

#include "zerklsc.h"

namespace {

// Takes a level off the samples of even and one off those of odd columns, stopping at 0.
void subtract_row(uint16_t* row, uint16_t even, uint16_t odd, int32_t width) {
    const auto above = [](uint16_t sample, uint16_t level) {
        return static_cast<uint16_t>(std::max(sample, level) - level);
    };
    int32_t x = 0;
    for (; x + 1 < width; x += 2) {
        row[x] = above(row[x], even);
        row[x + 1] = above(row[x + 1], odd);
    }
    if (x < width)
        row[x] = above(row[x], even);
}

} // namespace

void isp_blc_process(uint16_t* raw, const isp_blc_param* param) {
    for (ptrdiff_t y = 0; y < param->height; ++y) {
        const uint8_t* const levels = param->blc + 2 * (y & 1);
        subtract_row(raw + y * param->width, levels[0], levels[1], param->width);
    }
}
