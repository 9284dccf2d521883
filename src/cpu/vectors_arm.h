// The operations of vectors.h for NEON.
#pragma once

#include <arm_neon.h>

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

template <int lane>
ZERKLSC_SIMD Words every_lane(Words x) {
    const auto v = reinterpret_cast<uint16x8_t>(x);
    return reinterpret_cast<Words>(vdupq_lane_u16(lane < 4 ? vget_low_u16(v) : vget_high_u16(v), lane % 4));
}

ZERKLSC_SIMD int32x2_t neighbour_sums(int32x4_t v) {
    return vpadd_s32(vget_low_s32(v), vget_high_s32(v));
}

ZERKLSC_SIMD Sums pair_dot(Words a, Words b) {
    const auto x = reinterpret_cast<int16x8_t>(a);
    const auto y = reinterpret_cast<int16x8_t>(b);
    const int32x4_t low = vmull_s16(vget_low_s16(x), vget_low_s16(y));
    const int32x4_t high = vmull_s16(vget_high_s16(x), vget_high_s16(y));
    return reinterpret_cast<Sums>(vcombine_s32(neighbour_sums(low), neighbour_sums(high)));
}

ZERKLSC_SIMD SignedWords pack(Sums a, Sums b) {
    const int16x4_t low = vqmovn_s32(reinterpret_cast<int32x4_t>(a));
    const int16x4_t high = vqmovn_s32(reinterpret_cast<int32x4_t>(b));
    return reinterpret_cast<SignedWords>(vcombine_s16(low, high));
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

ZERKLSC_SIMD Words multiply_high(Words a, Words b) {
    const auto x = reinterpret_cast<uint16x8_t>(a);
    const auto y = reinterpret_cast<uint16x8_t>(b);
    const uint16x4_t low = vshrn_n_u32(vmull_u16(vget_low_u16(x), vget_low_u16(y)), 16);
    const uint16x4_t high = vshrn_n_u32(vmull_u16(vget_high_u16(x), vget_high_u16(y)), 16);
    return reinterpret_cast<Words>(vcombine_u16(low, high));
}

constexpr bool multiplies_rounded_at_once = true;
ZERKLSC_SIMD Words multiply_rounded(Words a, Words b) {
    return reinterpret_cast<Words>(
        vqrdmulhq_s16(reinterpret_cast<int16x8_t>(a), reinterpret_cast<int16x8_t>(b)));
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
