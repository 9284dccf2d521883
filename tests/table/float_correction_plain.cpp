// lsc2d_bicubic_correction(), one table lookup per sample.
#include "table/float_correction_plain.h"

#include "frame/convert.h"
#include "frame/gain.h"
#include "table/lookup.h"

namespace zerklsc::plain {
namespace {

// The product keeps its low 16 bits: a bright sample under a high gain wraps.
uint16_t corrected(uint16_t sample, float gain) {
    const float product = static_cast<float>(sample) * gain_step * gain;
    return floor_low16(static_cast<double>(product + 0.5f));
}

} // namespace

void bicubic_correction(const FloatCorrection& job) {
    const uint16_t* src = job.src;
    uint16_t* dst = job.dst;
    for (int32_t j = 0; j < job.height; ++j) {
        const NodeTaps y = node_taps(j, job.step_y);
        for (int32_t i = 0; i < job.width; ++i)
            *dst++ = corrected(*src++, lookup(job.table, job.row_length, node_taps(i, job.step_x), y));
    }
}

} // namespace zerklsc::plain
