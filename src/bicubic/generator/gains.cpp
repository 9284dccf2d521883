#include "bicubic/generator/gains.h"

#include <algorithm>

#include "frame/convert.h"

namespace zerklsc {
namespace {

// The quadratic through three neighbours, one node on. A negative result wraps in 16 bits.
uint16_t continued(uint16_t nearest, uint16_t next, uint16_t third) {
    return low16(3 * nearest - 3 * next + third);
}

} // namespace

GainFormat gain_format(uint8_t isp_type) {
    switch (isp_type) {
    case 0:
        return {256.0, 1024.0};
    case 1:
        return {1024.0, 4095.0};
    case 2:
    case ZERKLSC_ISP_TVESSA2:
        return {1024.0, 16383.0};
    default:
        return {0.0, 0.0};
    }
}

uint16_t generator_gain(double target, double measured, GainFormat format) {
    if (measured == 0.0)
        return static_cast<uint16_t>(format.highest);
    const double wanted = target > 0.0 ? target : 0.0;
    const double gain = wanted / measured * format.unity;
    if (!(gain >= 0.0))
        return 0;
    return static_cast<uint16_t>(std::min(gain, format.highest));
}

// Columns first, then rows over the full width: a corner continues its border column.
void extrapolate_border(View<uint16_t> table) {
    const int32_t right = table.width - 1;
    for (int32_t y = 1; y < table.height - 1; ++y) {
        uint16_t* const row = table.row(y);
        row[0] = continued(row[1], row[2], row[3]);
        row[right] = continued(row[right - 1], row[right - 2], row[right - 3]);
    }
    const int32_t bottom = table.height - 1;
    for (int32_t x = 0; x < table.width; ++x) {
        table.at(x, 0) = continued(table.at(x, 1), table.at(x, 2), table.at(x, 3));
        table.at(x, bottom) =
            continued(table.at(x, bottom - 1), table.at(x, bottom - 2), table.at(x, bottom - 3));
    }
}

// A border that fell below 0 has wrapped to a large number and becomes the highest gain: the hardware rejects
// nothing, this limit decides what it gets.
void limit_table(View<uint16_t> table) {
    for (int32_t y = 0; y < table.height; ++y) {
        uint16_t* const row = table.row(y);
        for (int32_t x = 0; x < table.width; ++x)
            row[x] = std::min(row[x], uint16_t{ZERKLSC_HIGHEST_GAIN});
    }
}

} // namespace zerklsc
