#include "bicubic/generator/gains.h"

#include <algorithm>

namespace zerklsc {

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

} // namespace zerklsc
