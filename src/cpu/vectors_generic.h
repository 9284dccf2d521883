// The operations of vectors.h lane by lane, for any processor and vectors of any length.
#pragma once

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

template <int lane>
ZERKLSC_SIMD Words every_lane(Words x) {
    return Words{} + x[lane];
}

ZERKLSC_SIMD Sums pair_dot(Words a, Words b) {
    Sums sums{};
    for (int32_t i = 0; i < lanes<Words>; ++i) {
        const int32_t product = static_cast<int16_t>(a[i]) * static_cast<int16_t>(b[i]);
        sums[i / 2] =
            static_cast<int32_t>(static_cast<uint32_t>(sums[i / 2]) + static_cast<uint32_t>(product));
    }
    return sums;
}

ZERKLSC_SIMD int16_t saturated(int32_t v) {
    return static_cast<int16_t>(v < INT16_MIN ? INT16_MIN : v > INT16_MAX ? INT16_MAX : v);
}

ZERKLSC_SIMD SignedWords pack(Sums a, Sums b) {
    SignedWords words{};
    for (int32_t i = 0; i < lanes<Sums>; ++i) {
        words[i / 4 * 8 + i % 4] = saturated(a[i]);
        words[i / 4 * 8 + i % 4 + 4] = saturated(b[i]);
    }
    return words;
}

ZERKLSC_SIMD Words interleave(Words a, Words b, int32_t half) {
    Words words{};
    for (int32_t i = 0; i < lanes<Sums>; ++i) {
        words[2 * i] = a[i / 4 * 8 + 4 * half + i % 4];
        words[2 * i + 1] = b[i / 4 * 8 + 4 * half + i % 4];
    }
    return words;
}

ZERKLSC_SIMD Words interleave_low(Words a, Words b) {
    return interleave(a, b, 0);
}

ZERKLSC_SIMD Words interleave_high(Words a, Words b) {
    return interleave(a, b, 1);
}

ZERKLSC_SIMD SignedWords lower(SignedWords a, SignedWords b) {
    return a < b ? a : b;
}

ZERKLSC_SIMD SignedWords higher(SignedWords a, SignedWords b) {
    return a > b ? a : b;
}

// The statement keeps this loop from GCC's vectoriser. Without a vector unit, as on 32-bit ARM at -O2, GCC 12
// packs two lanes into a register and takes the upper half of one 32-bit product for those of both, so that
// 0x9000 * 0x9000 gives 0x5a00 where it stands beside 0x1000 * 0x9000:
//     for (int i = 0; i < 8; ++i)
//         w[i] = (uint16_t)((uint32_t)a[i] * b[i] >> 16);
ZERKLSC_SIMD Words multiply_high(Words a, Words b) {
    Words words{};
    for (int32_t i = 0; i < lanes<Words>; ++i) {
        uint32_t product = uint32_t{a[i]} * b[i];
        asm("" : "+r"(product));
        words[i] = static_cast<uint16_t>(product >> 16);
    }
    return words;
}

constexpr bool multiplies_rounded_at_once = false;

ZERKLSC_SIMD Words saturating_subtract(Words a, Words b) {
    return a > b ? a - b : Words{};
}

ZERKLSC_SIMD bool is_zero(Words a) {
    uint16_t any = 0;
    for (int32_t i = 0; i < lanes<Words>; ++i)
        any = static_cast<uint16_t>(any | a[i]);
    return any == 0;
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
