// cubic_1D, with a weight block and with the fixed table
#include "bicubic/correction/cubic_1d.h"

#include <algorithm>

#include "frame/convert.h"

namespace zerklsc {
namespace {

PhaseWeights from_row(const int16_t row[3], bool mirrored) {
    const auto rest = static_cast<int16_t>(low16(ZERKLSC_UNITY_GAIN - row[0] - row[1] - row[2]));
    if (mirrored)
        return {{rest, row[2], row[1], row[0]}, 0};
    return {{row[0], row[1], row[2], rest}, 3};
}

// The sum has 10 fractional bits more than a gain.
uint16_t rounded_gain(int32_t sum) {
    if (sum > ZERKLSC_HIGHEST_GAIN << 10)
        return ZERKLSC_HIGHEST_GAIN;
    // The hardware never darkens a pixel: what falls below unity is unity, even between nodes that are below
    // it.
    if (sum < ZERKLSC_UNITY_GAIN << 10)
        return ZERKLSC_UNITY_GAIN;
    return static_cast<uint16_t>((sum + 512) >> 10);
}

} // namespace

PhaseWeights programmed_phase(const lnc_bicubic_weight_t_64_tag& weights, int32_t phase, int32_t step) {
    const bool mirrored = step / 2 < phase;
    const int32_t row = mirrored ? step - phase : phase;
    return from_row(weights.weights[std::clamp(row, 0, highest_step / 2)], mirrored);
}

PhaseWeights fixed_phase(int32_t phase, int32_t step) {
    const int32_t multiple = step == 0 ? 0 : fixed_phases / step;
    const int32_t k = low16(int64_t{multiple} * phase);
    const bool mirrored = k > fixed_phases / 2;
    return from_row(fixed_weights[mirrored ? std::max(fixed_phases - k, 0) : k], mirrored);
}

uint16_t cubic(const uint16_t gains[4], const PhaseWeights& weights) {
    const uint16_t anchor = gains[weights.anchor];
    uint32_t sum = uint32_t{anchor} << 10;
    for (int i = 0; i < 4; ++i) {
        const auto difference = static_cast<int16_t>(low16(gains[i] - anchor));
        sum += static_cast<uint32_t>(difference * weights.tap[i]);
    }
    return rounded_gain(static_cast<int32_t>(sum));
}

} // namespace zerklsc

unsigned short cubic_1D(unsigned short p0, unsigned short p1, unsigned short p2, unsigned short p3,
                        unsigned short phase, unsigned short step, lnc_bicubic_weight_t_64_tag* weights) {
    const uint16_t gains[4] = {p0, p1, p2, p3};
    return zerklsc::cubic(gains, zerklsc::programmed_phase(*weights, phase, step));
}

unsigned short cubic_1D(unsigned short p0, unsigned short p1, unsigned short p2, unsigned short p3,
                        unsigned short phase, unsigned short step) {
    const uint16_t gains[4] = {p0, p1, p2, p3};
    return zerklsc::cubic(gains, zerklsc::fixed_phase(phase, step));
}
