// bayer_merge_channel
#include <cstddef>

#include "zerklsc.h"

namespace {

// Lays the samples of two planes side by side into the row of the mosaic that they share.
void merge_row(uint16_t* __restrict row, const uint16_t* __restrict even, const uint16_t* __restrict odd,
               int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        row[2 * x] = even[x];
        row[2 * x + 1] = odd[x];
    }
}

} // namespace

int32_t bayer_merge_channel(uint16_t* raw, uint16_t** planes, int32_t width, int32_t height) {
    const int32_t plane_width = width >> 1;
    for (ptrdiff_t y = 0; plane_width > 0 && y < height >> 1; ++y) {
        uint16_t* const row = raw + 2 * y * width;
        const ptrdiff_t from = y * plane_width;
        merge_row(row, planes[0] + from, planes[1] + from, plane_width);
        merge_row(row + width, planes[2] + from, planes[3] + from, plane_width);
    }
    return height < 2 ? plane_width : height >> 1;
}
