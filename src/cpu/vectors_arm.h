// The operations of vectors.h for NEON.
#pragma once

#include <arm_neon.h>

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

template <int lane>
ZERKLSC_SIMD Words every_lane(Words x) {
    const auto v = reinterpret_cast<uint16x8_t>(x);
    return reinterpret_cast<Words>(vdupq_lane_u16(lane < 4 ? vget_low_u16(v) : vget_high_u16(v), lane % 4));
}

ZERKLSC_SIMD Words interleave_low(Words a, Words b) {
    return reinterpret_cast<Words>(
        vzipq_u16(reinterpret_cast<uint16x8_t>(a), reinterpret_cast<uint16x8_t>(b)).val[0]);
}

ZERKLSC_SIMD Words interleave_high(Words a, Words b) {
    return reinterpret_cast<Words>(
        vzipq_u16(reinterpret_cast<uint16x8_t>(a), reinterpret_cast<uint16x8_t>(b)).val[1]);
}

ZERKLSC_SIMD SignedWords lower(SignedWords a, SignedWords b) {
    return reinterpret_cast<SignedWords>(
        vminq_s16(reinterpret_cast<int16x8_t>(a), reinterpret_cast<int16x8_t>(b)));
}

ZERKLSC_SIMD SignedWords higher(SignedWords a, SignedWords b) {
    return reinterpret_cast<SignedWords>(
        vmaxq_s16(reinterpret_cast<int16x8_t>(a), reinterpret_cast<int16x8_t>(b)));
}

ZERKLSC_SIMD Words saturating_subtract(Words a, Words b) {
    return reinterpret_cast<Words>(
        vqsubq_u16(reinterpret_cast<uint16x8_t>(a), reinterpret_cast<uint16x8_t>(b)));
}

ZERKLSC_SIMD bool is_zero(Words a) {
    const auto v = reinterpret_cast<uint64x2_t>(a);
    return (vgetq_lane_u64(v, 0) | vgetq_lane_u64(v, 1)) == 0;
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
