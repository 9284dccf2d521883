// Which table plays which part in the stream, and how precisely its gains are kept.
#pragma once

#include <cstdint>

#include "frame/planes.h"

namespace zerklsc {

// The four numbers of a node. A is the gain of Gb, the base; B, C and D are the base less B, R and Gr.
enum Role { role_a, role_b, role_c, role_d, role_count };

// One of something for each role.
template <class T>
struct ByRole {
    T values[role_count];

    T& operator[](int role) { return values[role]; }
    const T& operator[](int role) const { return values[role]; }
    T* begin() { return values; }
    T* end() { return values + role_count; }
};

// The plane whose table plays a role. Base and D are the two greens of the cell, whose gains hardly differ: a
// narrow field is enough for D.
constexpr int32_t plane_of_role(int role, uint8_t bayer_pattern) {
    constexpr Colour colours[role_count] = {Gb, B, R, Gr};
    return plane_of(colours[role], bayer_pattern);
}

enum PrecisionMode : uint8_t { mode_24_bit = 0, mode_14_bit = 1 };

// How many low bits of a gain the stream leaves out. A mode that does not exist leaves out none.
constexpr int dropped_bits(uint8_t mode) {
    return mode == mode_24_bit ? 4 : mode == mode_14_bit ? 6 : 0;
}

// Unity gain as the base plane's anchors hold it. A mode that does not exist has that of mode 0, although it
// drops no bits.
constexpr uint16_t unity_offset(uint8_t mode) {
    return mode == mode_14_bit ? 16 : 64;
}

} // namespace zerklsc
