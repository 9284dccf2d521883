// cells.h word by word, a Bayer pair at once: its pixels share their taps.
#pragma once

#if defined(__ARM_FEATURE_SIMD32)
#include <arm_acle.h>
#endif

#include "bicubic/correction/correction.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

struct Pixels {
    uint32_t even, odd;
};
using Columns = uint16_t;
constexpr int32_t pixels_at_once = 2;
constexpr int32_t columns_at_once = 1;

template <class T>
ZERKLSC_SIMD void advance(T*& pointer, int32_t count) {
    pointer += count;
}

ZERKLSC_SIMD Pixels load_pixels(const uint16_t* from) {
    return {from[0], from[1]};
}

ZERKLSC_SIMD void store_pixels(uint16_t* to, Pixels pixels) {
    to[0] = static_cast<uint16_t>(pixels.even);
    to[1] = static_cast<uint16_t>(pixels.odd);
}

ZERKLSC_SIMD Pixels first_pixels(int32_t, Pixels a, Pixels b) {
    return {a.even, b.odd};
}

// v limited to 0 .. 2^bits - 1.
template <int bits>
ZERKLSC_SIMD uint32_t limited(int32_t v) {
#if defined(__ARM_FEATURE_SIMD32)
    return __usat(v, bits);
#else
    constexpr int32_t highest = (1 << bits) - 1;
    return static_cast<uint32_t>(v < 0 ? 0 : v > highest ? highest : v);
#endif
}

// From a sum with half a unit, which rounds.
ZERKLSC_SIMD uint32_t limited_gain(int32_t sum) {
    static_assert(ZERKLSC_HIGHEST_GAIN == (1 << 14) - 1);
    constexpr uint32_t lowest = ZERKLSC_UNITY_GAIN;
    const uint32_t gain = limited<14>(sum >> 10);
    return gain < lowest ? lowest : gain;
}

struct RowTaps {
    int32_t a, b, d;
};

ZERKLSC_SIMD RowTaps row_taps(const int16_t taps[3]) {
    return {taps[0], taps[1], taps[2]};
}

// A word of a larger number, read as signed.
ZERKLSC_SIMD int32_t signed_word(uint32_t v) {
    return static_cast<int16_t>(static_cast<uint16_t>(v));
}

ZERKLSC_SIMD Columns blended(const RowTaps& taps, uint32_t anchor, uint32_t a, uint32_t b, uint32_t d) {
    const int32_t rounded = static_cast<int32_t>(anchor * ZERKLSC_UNITY_GAIN + 512);
    return static_cast<Columns>(limited_gain(rounded + signed_word(a - anchor) * taps.a
                                             + signed_word(b - anchor) * taps.b
                                             + signed_word(d - anchor) * taps.d));
}

// Two signed words.
using WordPair = uint32_t;

// `sum` and the products of both words.
ZERKLSC_SIMD int32_t pair_dot(WordPair a, WordPair b, int32_t sum) {
#if defined(__ARM_FEATURE_SIMD32)
    return __smlad(static_cast<int16x2_t>(a), static_cast<int16x2_t>(b), sum);
#else
    return signed_word(a) * signed_word(b) + signed_word(a >> 16) * signed_word(b >> 16) + sum;
#endif
}

struct FourWords {
    WordPair first, second;
};
using PixelTaps = FourWords; // for nodes -1 to +2

ZERKLSC_SIMD void set_taps(PixelTaps& taps, int32_t, const PhaseWeights& weights) {
    taps = load<FourWords>(weights.tap);
}

struct CellNodes {
    FourWords even, odd;
};

ZERKLSC_SIMD CellNodes cell_nodes(const uint16_t* even, const uint16_t* odd) {
    return {load<FourWords>(even), load<FourWords>(odd)};
}

ZERKLSC_SIMD uint32_t interpolated_side(FourWords taps, FourWords nodes) {
    return limited_gain(pair_dot(nodes.first, taps.first, pair_dot(nodes.second, taps.second, 512)));
}

ZERKLSC_SIMD Pixels interpolated(const PixelTaps*& next, const CellNodes& nodes) {
    const PixelTaps& taps = *next++;
    return {interpolated_side(taps, nodes.even), interpolated_side(taps, nodes.odd)};
}

constexpr bool ten_bits_are_faster = false;

ZERKLSC_SIMD bool have_ten_bits(const Pixels*, int32_t) {
    return false;
}

ZERKLSC_SIMD uint32_t corrected_side(uint32_t sample, uint32_t gain) {
    static_assert(highest_sample == (1 << 10) - 1);
    return limited<10>(static_cast<uint16_t>((sample * gain + 512) >> 10));
}

template <bool ten_bits>
ZERKLSC_SIMD Pixels corrected(Pixels samples, Pixels gains) {
    return {corrected_side(samples.even, gains.even), corrected_side(samples.odd, gains.odd)};
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
