#include "bayer/mosaic_plain.h"

#include <cstddef>

namespace zerklsc::plain {
namespace {

// Calls work(raw index, plane number, plane index) for every pixel of a frame of even size.
template <class Work>
void each_pixel(int32_t width, int32_t height, Work work) {
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            work(ptrdiff_t{y} * width + x, (x & 1) + 2 * (y & 1), ptrdiff_t{y / 2} * (width / 2) + x / 2);
}

} // namespace

void split_channel(const uint16_t* raw, uint16_t* const* planes, int32_t width, int32_t height) {
    each_pixel(width, height, [=](ptrdiff_t i, int32_t c, ptrdiff_t k) { planes[c][k] = raw[i]; });
}

void merge_channel(uint16_t* raw, const uint16_t* const* planes, int32_t width, int32_t height) {
    each_pixel(width, height, [=](ptrdiff_t i, int32_t c, ptrdiff_t k) { raw[i] = planes[c][k]; });
}

void subtract_black(uint16_t* raw, const isp_blc_param& param) {
    each_pixel(param.width, param.height, [raw, &param](ptrdiff_t i, int32_t c, ptrdiff_t) {
        const int32_t above = raw[i] - param.blc[c];
        raw[i] = static_cast<uint16_t>(above > 0 ? above : 0);
    });
}

} // namespace zerklsc::plain
