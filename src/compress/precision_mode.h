// How precisely a stream keeps gains.
#pragma once

#include <cstdint>

namespace zerklsc {

enum PrecisionMode : uint8_t { mode_24_bit = 0, mode_14_bit = 1 };

// How many low bits of a gain the stream leaves out. A mode that does not exist leaves out none.
constexpr int dropped_bits(uint8_t mode) {
    return mode == mode_24_bit ? 4 : mode == mode_14_bit ? 6 : 0;
}

// Unity gain as the anchors of the base plane hold it. A mode that does not exist has that of mode 0,
// although it drops no bits.
constexpr uint16_t unity_offset(uint8_t mode) {
    return mode == mode_14_bit ? 16 : 64;
}

} // namespace zerklsc
