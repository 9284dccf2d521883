// The inner loops of lsc2d_bicubic_correction(), plain enough for the compiler to vectorise at every level.
#include "table/float_correction.h"

#include "frame/gain.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// The row sums of four table rows and the weights of an image row between them.
struct Blend {
    const float* __restrict s0;
    const float* __restrict s1;
    const float* __restrict s2;
    const float* __restrict s3;
    float w0, w1, w2, w3;

    float gain(int32_t x) const { return w0 * s0[x] + w1 * s1[x] + w2 * s2[x] + w3 * s3[x]; }
};

// Cubic weights add up to less than 1.3 in magnitude, so a gain stays below 1.3 * 1.3 * 65535 and this
// product below 64 times that, which is less than 2^23: it fits 32 bits whatever its sign, and as an integer
// it is an exact float.
inline float corrected(uint16_t sample, float gain) {
    return static_cast<float>(sample) * gain_step * gain + 0.5f;
}

// Truncation in place of floor, which is the same where no gain is negative. Says whether that was so.
bool correct_truncating(const uint16_t* __restrict src, uint16_t* __restrict dst, int32_t count,
                        Blend blend) {
    int32_t signs = 0;
    for (int32_t x = 0; x < count; ++x) {
        const float gain = blend.gain(x);
        signs |= __builtin_bit_cast(int32_t, gain);
        dst[x] = static_cast<uint16_t>(static_cast<int32_t>(corrected(src[x], gain)));
    }
    return signs >= 0;
}

void correct_flooring(const uint16_t* __restrict src, uint16_t* __restrict dst, int32_t count, Blend blend) {
    for (int32_t x = 0; x < count; ++x) {
        const float value = corrected(src[x], blend.gain(x));
        const int32_t truncated = static_cast<int32_t>(value);
        dst[x] = static_cast<uint16_t>(truncated - (static_cast<float>(truncated) > value));
    }
}

} // namespace

void sum_nodes(const ColumnTaps& columns, const uint16_t* nodes, float* __restrict sums) {
    const float* const* const c = columns.taps;
    int32_t left = columns.step - columns.phase;
    for (int32_t x = 0; x < columns.count; ++nodes) {
        const float n0 = nodes[0], n1 = nodes[1], n2 = nodes[2], n3 = nodes[3];
        const int32_t stop = left < columns.count - x ? x + left : columns.count;
        for (; x < stop; ++x)
            sums[x] = c[0][x] * n0 + c[1][x] * n1 + c[2][x] * n2 + c[3][x] * n3;
        left = columns.step;
    }
}

// Overshoot makes gains negative beside steep drops only: such a row is done twice.
void correct_row(const uint16_t* src, uint16_t* dst, int32_t count, const float* const sums[4],
                 const float weights[4]) {
    const Blend blend{sums[0], sums[1], sums[2], sums[3], weights[0], weights[1], weights[2], weights[3]};
    if (!correct_truncating(src, dst, count, blend))
        correct_flooring(src, dst, count, blend);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
