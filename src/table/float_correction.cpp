// lsc2d_bicubic_correction
#include "frame/convert.h"
#include "table/lookup.h"
#include "zerklsc.h"

namespace {

// The product keeps its low 16 bits: a bright sample under a high gain wraps.
uint16_t corrected(uint16_t sample, float gain) {
    const float product = static_cast<float>(sample) * 0.0009765625f * gain;
    return zerklsc::floor_low16(static_cast<double>(product + 0.5f));
}

} // namespace

void lsc2d_bicubic_correction(const uint16_t* src, uint16_t* dst, int32_t width, int32_t height,
                              const uint16_t* table, int32_t step_x, int32_t step_y, int32_t row_length) {
    using namespace zerklsc;
    if (step_x < 1 || step_y < 1 || row_length < 1)
        return;
    for (int32_t j = 0; j < height; ++j) {
        const Place y = place(j, step_y);
        for (int32_t i = 0; i < width; ++i)
            *dst++ = corrected(*src++, lookup(table, row_length, place(i, step_x), y));
    }
}
