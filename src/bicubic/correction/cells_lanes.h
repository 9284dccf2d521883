// cells.h in products of vectors by one word. Even and odd pixels stand apart, so that the taps of a phase
// serve both.
#pragma once

#include <arm_neon.h>

#include "bicubic/correction/correction.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

using Pixels = uint16x8x2_t; // the even ones, the odd ones
using Columns = uint16x8_t;
constexpr int32_t pixels_at_once = 16;
constexpr int32_t columns_at_once = 8;

// NEON's loads take no offset, but move their pointer on for nothing. GCC 12 lets them where it cannot add up
// constants.
template <class T>
ZERKLSC_SIMD void advance(T*& pointer, int32_t count) {
    pointer += count;
    asm("" : "+r"(pointer));
}

ZERKLSC_SIMD Pixels load_pixels(const uint16_t* from) {
    return vld2q_u16(from);
}

ZERKLSC_SIMD void store_pixels(uint16_t* to, const Pixels& pixels) {
    vst2q_u16(to, pixels);
}

ZERKLSC_SIMD uint16x8_t first_of_side(int32_t count, uint16x8_t a, uint16x8_t b) {
    return reinterpret_cast<uint16x8_t>(
        first_lanes(count, reinterpret_cast<Words>(a), reinterpret_cast<Words>(b)));
}

ZERKLSC_SIMD Pixels first_pixels(int32_t count, const Pixels& a, const Pixels& b) {
    return {
        {first_of_side((count + 1) / 2, a.val[0], b.val[0]), first_of_side(count / 2, a.val[1], b.val[1])}};
}

// Two vectors by 1024, rounded, in one: saturated or their low words. By vcombine GCC 12 would compute the
// halves in other registers and copy them.
ZERKLSC_SIMD int16x8_t saturated_quotients(int32x4_t low, int32x4_t high) {
#if defined(__aarch64__)
    return vqrshrn_high_n_s32(vqrshrn_n_s32(low, 10), high, 10);
#else
    asm("vqrshrn.s32 %e0, %q0, #10\n\tvqrshrn.s32 %f0, %q1, #10" : "+&w"(low) : "w"(high));
    return vreinterpretq_s16_s32(low);
#endif
}

ZERKLSC_SIMD uint16x8_t low_quotients(uint32x4_t low, uint32x4_t high) {
#if defined(__aarch64__)
    return vrshrn_high_n_u32(vrshrn_n_u32(low, 10), high, 10);
#else
    asm("vrshrn.i32 %e0, %q0, #10\n\tvrshrn.i32 %f0, %q1, #10" : "+&w"(low) : "w"(high));
    return vreinterpretq_u16_u32(low);
#endif
}

ZERKLSC_SIMD uint16x8_t limited_gains(int32x4_t low, int32x4_t high) {
    const int16x8_t gains = saturated_quotients(low, high);
    const int16x8_t lowest = vdupq_n_s16(ZERKLSC_UNITY_GAIN);
    const int16x8_t highest = vdupq_n_s16(ZERKLSC_HIGHEST_GAIN);
    return vreinterpretq_u16_s16(vminq_s16(vmaxq_s16(gains, lowest), highest));
}

using RowTaps = int16x4_t;

ZERKLSC_SIMD RowTaps row_taps(const int16_t taps[3]) {
    const int16_t row[4] = {taps[0], taps[1], taps[2]};
    return vld1_s16(row);
}

ZERKLSC_SIMD int32x4_t blended_half(RowTaps taps, uint16x4_t anchor, int16x4_t a, int16x4_t b, int16x4_t d) {
    const int32x4_t sums = vreinterpretq_s32_u32(vshll_n_u16(anchor, 10));
    return vmlal_lane_s16(vmlal_lane_s16(vmlal_lane_s16(sums, a, taps, 0), b, taps, 1), d, taps, 2);
}

ZERKLSC_SIMD Columns blended(RowTaps taps, Columns anchor, Columns a, Columns b, Columns d) {
    const int16x8_t from_a = vreinterpretq_s16_u16(vsubq_u16(a, anchor));
    const int16x8_t from_b = vreinterpretq_s16_u16(vsubq_u16(b, anchor));
    const int16x8_t from_d = vreinterpretq_s16_u16(vsubq_u16(d, anchor));
    return limited_gains(blended_half(taps, vget_low_u16(anchor), vget_low_s16(from_a), vget_low_s16(from_b),
                                      vget_low_s16(from_d)),
                         blended_half(taps, vget_high_u16(anchor), vget_high_s16(from_a),
                                      vget_high_s16(from_b), vget_high_s16(from_d)));
}

struct alignas(16) PixelTaps {
    int16_t tap[4][8]; // for nodes -1 to +2
};

ZERKLSC_SIMD void set_taps(PixelTaps& taps, int32_t pixel, const PhaseWeights& weights) {
    for (int32_t i = 0; i < 4; ++i)
        taps.tap[i][pixel / 2] = weights.tap[i];
}

struct CellNodes {
    int16x4_t even, odd;
};

ZERKLSC_SIMD CellNodes cell_nodes(const uint16_t* even, const uint16_t* odd) {
    return {vreinterpret_s16_u16(vld1_u16(even)), vreinterpret_s16_u16(vld1_u16(odd))};
}

ZERKLSC_SIMD uint16x8_t interpolated_side(const int16x8_t taps[4], int16x4_t nodes) {
    int32x4_t low = vmull_lane_s16(vget_low_s16(taps[0]), nodes, 0);
    int32x4_t high = vmull_lane_s16(vget_high_s16(taps[0]), nodes, 0);
    low = vmlal_lane_s16(low, vget_low_s16(taps[1]), nodes, 1);
    high = vmlal_lane_s16(high, vget_high_s16(taps[1]), nodes, 1);
    low = vmlal_lane_s16(low, vget_low_s16(taps[2]), nodes, 2);
    high = vmlal_lane_s16(high, vget_high_s16(taps[2]), nodes, 2);
    low = vmlal_lane_s16(low, vget_low_s16(taps[3]), nodes, 3);
    high = vmlal_lane_s16(high, vget_high_s16(taps[3]), nodes, 3);
    return limited_gains(low, high);
}

ZERKLSC_SIMD Pixels interpolated(const PixelTaps*& taps, const CellNodes& nodes) {
    int16x8_t tap[4];
    const int16_t* from = taps->tap[0];
    for (int16x8_t& t : tap) {
        t = vld1q_s16(from);
        advance(from, 8);
    }
    taps = reinterpret_cast<const PixelTaps*>(from);
    return {{interpolated_side(tap, nodes.even), interpolated_side(tap, nodes.odd)}};
}

// A rounding shift that narrows keeps just the low 16 bits: to know that samples have ten bits would gain
// nothing.
constexpr bool ten_bits_are_faster = false;

ZERKLSC_SIMD bool have_ten_bits(const Pixels*, int32_t) {
    return false;
}

ZERKLSC_SIMD uint16x8_t corrected_side(uint16x8_t samples, uint16x8_t gains) {
    const uint32x4_t low = vmull_u16(vget_low_u16(samples), vget_low_u16(gains));
    const uint32x4_t high = vmull_u16(vget_high_u16(samples), vget_high_u16(gains));
    return vminq_u16(low_quotients(low, high), vdupq_n_u16(highest_sample));
}

template <bool ten_bits>
ZERKLSC_SIMD Pixels corrected(const Pixels& samples, const Pixels& gains) {
    return {{corrected_side(samples.val[0], gains.val[0]), corrected_side(samples.val[1], gains.val[1])}};
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
