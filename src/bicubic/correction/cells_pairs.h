// cells.h in products of pairs of words: each gain takes two.
#pragma once

#include "bicubic/correction/correction.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

using Pixels = Words;
using Columns = Words;
constexpr int32_t pixels_at_once = lanes<Pixels>;
constexpr int32_t columns_at_once = lanes<Columns>;

template <class T>
ZERKLSC_SIMD void advance(T*& pointer, int32_t count) {
    pointer += count;
}

ZERKLSC_SIMD Pixels load_pixels(const uint16_t* from) {
    return load<Pixels>(from);
}

ZERKLSC_SIMD void store_pixels(uint16_t* to, Pixels pixels) {
    store(to, pixels);
}

ZERKLSC_SIMD Pixels first_pixels(int32_t count, Pixels a, Pixels b) {
    return first_lanes(count, a, b);
}

ZERKLSC_SIMD Words limited_gains(Sums low, Sums high) {
    const SignedWords gains = pack(low, high);
    const SignedWords lowest = SignedWords{} + int16_t{ZERKLSC_UNITY_GAIN};
    const SignedWords highest = SignedWords{} + int16_t{ZERKLSC_HIGHEST_GAIN};
    return reinterpret_cast<Words>(lower(higher(gains, lowest), highest));
}

struct RowTaps {
    Words near; // for a and b
    Words far;  // for d and the anchor
};

ZERKLSC_SIMD RowTaps row_taps(const int16_t taps[3]) {
    const int16_t far[2] = {taps[2], ZERKLSC_UNITY_GAIN};
    return {repeated<uint32_t>(taps), repeated<uint32_t>(far)};
}

// The anchor is an unsigned word, and pair_dot() reads its words as signed: anchor - 2^15 goes in, and
// 2^15 * 1024 is added to the sum. A strip holds 2 * gain + 1. Taps sum to 1024, so that the 1 puts half a
// unit on the sum of the horizontal pass: it is rounded without an addition.
ZERKLSC_SIMD Columns blended(const RowTaps& taps, Columns anchor, Columns node_a, Columns node_b,
                             Columns node_d) {
    const Columns a = node_a - anchor;
    const Columns b = node_b - anchor;
    const Columns d = node_d - anchor;
    const uint16_t bias = 0x8000;
    const int32_t rest = bias * ZERKLSC_UNITY_GAIN + 512; // and a half, which rounds
    const Columns e = anchor ^ bias;                      // anchor - bias, modulo 2^16
    const Sums low =
        pair_dot(interleave_low(a, b), taps.near) + pair_dot(interleave_low(d, e), taps.far) + rest;
    const Sums high =
        pair_dot(interleave_high(a, b), taps.near) + pair_dot(interleave_high(d, e), taps.far) + rest;
    return 2 * limited_gains(low >> 10, high >> 10) + 1;
}

// As pair_dot() and pack() want them: words of a pair belong to one pixel, and each 16 bytes of low and high
// make 16 bytes of pixels.
struct alignas(vector_bytes) PixelTaps {
    uint16_t first[2][lanes<Words>];  // for nodes -1 and 0, low and high
    uint16_t second[2][lanes<Words>]; // for nodes +1 and +2
};

ZERKLSC_SIMD void set_taps(PixelTaps& taps, int32_t pixel, const PhaseWeights& weights) {
    const int32_t high = pixel % 8 / 4;
    const int32_t word = 2 * (pixel / 8 * 4 + pixel % 4);
    for (int32_t i = 0; i < 2; ++i) {
        taps.first[high][word + i] = static_cast<uint16_t>(weights.tap[i]);
        taps.second[high][word + i] = static_cast<uint16_t>(weights.tap[2 + i]);
    }
}

// Both strips', the even pixels' first, in every 8 bytes.
struct CellNodes {
    Words first;  // nodes -1 and 0
    Words second; // nodes +1 and +2
};

ZERKLSC_SIMD Words node_pair(const uint16_t* even, const uint16_t* odd) {
    using Pairs = Vector<uint32_t>;
    Pairs is_odd{};
    for (int32_t i = 1; i < lanes<Pairs>; i += 2)
        is_odd[i] = UINT32_MAX;
    const Pairs even_pairs = Pairs{} + load<uint32_t>(even);
    const Pairs odd_pairs = Pairs{} + load<uint32_t>(odd);
    return reinterpret_cast<Words>(is_odd ? odd_pairs : even_pairs);
}

ZERKLSC_SIMD CellNodes cell_nodes(const uint16_t* even, const uint16_t* odd) {
    return {node_pair(even, odd), node_pair(even + 2, odd + 2)};
}

ZERKLSC_SIMD Pixels interpolated(const PixelTaps*& next, const CellNodes& nodes) {
    const PixelTaps& taps = *next++;
    const Sums low = pair_dot(nodes.first, load<Words>(taps.first[0]))
                     + pair_dot(nodes.second, load<Words>(taps.second[0]));
    const Sums high = pair_dot(nodes.first, load<Words>(taps.first[1]))
                      + pair_dot(nodes.second, load<Words>(taps.second[1]));
    return limited_gains(low >> 11, high >> 11);
}

// Where the samples have 10 bits themselves, no bit of the product is lost: samples * 32 and gains are signed
// words, whose product takes one instruction.
constexpr bool ten_bits_are_faster = multiplies_rounded_at_once;

ZERKLSC_SIMD bool have_ten_bits(const Pixels* samples, int32_t count) {
    Words any{};
    for (int32_t i = 0; i < count; ++i)
        any |= samples[i];
    return is_zero(any & static_cast<uint16_t>(~highest_sample));
}

template <bool ten_bits, class W>
ZERKLSC_SIMD W corrected(W samples, W gains) {
    if constexpr (ten_bits) {
        const auto product = reinterpret_cast<SignedWords>(multiply_rounded(samples << 5, gains));
        return reinterpret_cast<Words>(lower(product, SignedWords{} + int16_t{highest_sample}));
    } else {
        const Words low = samples * gains;
        const Words high = multiply_high(samples, gains);
        const Words product = (high << 6) + (((low >> 9) + 1) >> 1);
        return product - saturating_subtract(product, Words{} + highest_sample);
    }
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
