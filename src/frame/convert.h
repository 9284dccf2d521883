// The conversions between number types that can go wrong, each under the name of what it means.
#pragma once

#include <cstdint>

namespace zerklsc {

// The low 16 bits of an integer, by intent.
constexpr uint16_t low16(int64_t v) {
    return static_cast<uint16_t>(static_cast<uint64_t>(v) & 0xFFFFu);
}

// The same bits read as two's complement.
constexpr int16_t wrap16(int64_t v) {
    return static_cast<int16_t>(low16(v));
}

// The low 16 bits of floor(v). A value that is not finite or does not fit 64 bits gives 0. The detour over a
// signed 64-bit integer is what makes a negative value wrap the same way on every processor. std::floor() is
// a call where the base has no instruction for it, which takes longer than the rest.
inline uint16_t floor_low16(double v) {
    if (!(v >= -9223372036854775808.0 && v < 9223372036854775808.0))
        return 0;
    const int64_t towards_zero = static_cast<int64_t>(v);
    return low16(towards_zero - (static_cast<double>(towards_zero) > v ? 1 : 0));
}

// floor(v), limited to 0 .. 65535; not a number gives 0.
inline uint16_t floor_saturate16(double v) {
    if (!(v >= 0.0))
        return 0;
    return v < 65535.0 ? static_cast<uint16_t>(v) : uint16_t{65535};
}

} // namespace zerklsc
