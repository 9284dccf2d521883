// bayer_split_channel
#include <cstddef>

#include "zerklsc.h"

namespace {

// Takes a row of the mosaic apart into the two planes that share it.
void split_row(const uint16_t* __restrict row, uint16_t* __restrict even, uint16_t* __restrict odd,
               int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        even[x] = row[2 * x];
        odd[x] = row[2 * x + 1];
    }
}

} // namespace

void bayer_split_channel(const uint16_t* raw, uint16_t** planes, int32_t width, int32_t height) {
    const int32_t plane_width = width >> 1;
    if (plane_width < 1)
        return;
    for (ptrdiff_t y = 0; y < height >> 1; ++y) {
        const uint16_t* const row = raw + 2 * y * width;
        const ptrdiff_t to = y * plane_width;
        split_row(row, planes[0] + to, planes[1] + to, plane_width);
        split_row(row + width, planes[2] + to, planes[3] + to, plane_width);
    }
}
