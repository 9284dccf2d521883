// lsc_table_ftoi, lsc_table_itof, format_lsc_table
#include <algorithm>

#include "frame/convert.h"
#include "frame/gain.h"
#include "zerklsc.h"

namespace {

// The elements of `h` rows of `w`; a size that is not positive has none.
int64_t element_count(int32_t w, int32_t h) {
    return w > 0 && h > 0 ? int64_t{w} * h : 0;
}

} // namespace

void lsc_table_ftoi(const float* src, uint16_t* dst, int32_t w, int32_t h) {
    const int64_t count = element_count(w, h);
    for (int64_t i = 0; i < count; ++i)
        dst[i] = zerklsc::floor_saturate16(static_cast<double>(src[i] * zerklsc::unity_gain + 0.5f));
}

void lsc_table_itof(const uint16_t* src, float* dst, int32_t w, int32_t h) {
    const int64_t count = element_count(w, h);
    for (int64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(src[i]) * zerklsc::gain_step;
}

void format_lsc_table(uint16_t* table, int32_t w, int32_t h) {
    const int64_t count = element_count(w, h);
    for (int64_t i = 0; i < count; ++i)
        table[i] = std::min(table[i], uint16_t{ZERKLSC_HIGHEST_GAIN});
}
