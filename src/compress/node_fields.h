// The bit fields of one node's four numbers.
#pragma once

#include <algorithm>
#include <cstdint>

#include "compress/channel_roles.h"

namespace zerklsc {

// A two's complement field of a node word.
struct Field {
    int shift;
    int bits;
};

struct NodeLayout {
    Field a, b, c, d;
};

// Mode 0: the word is what the stream holds, low byte first; bit 23 stays 0.
inline constexpr NodeLayout layout_24_bit = {{0, 6}, {6, 5}, {11, 7}, {18, 5}};

// Mode 1: bits 0-7 are the node's byte in the stream, bits 8-13 the six that share bytes with other nodes.
inline constexpr NodeLayout layout_14_bit = {{0, 4}, {8, 3}, {4, 4}, {11, 3}};

// Of a mode that exists.
constexpr NodeLayout layout_of(uint8_t mode) {
    return mode == mode_14_bit ? layout_14_bit : layout_24_bit;
}

// Saturates: a value beyond the field is stored as the field's end, and what it loses is missing in every
// node further out, since the decoder sums differences outwards.
constexpr uint32_t to_field(int value, Field field) {
    const int limit = 1 << (field.bits - 1);
    const uint32_t mask = (1u << field.bits) - 1;
    return (static_cast<uint32_t>(std::clamp(value, -limit, limit - 1)) & mask) << field.shift;
}

// Sign-extends.
constexpr int16_t from_field(uint32_t word, Field field) {
    const int sign = 1 << (field.bits - 1);
    const uint32_t mask = (1u << field.bits) - 1;
    return static_cast<int16_t>((static_cast<int>(word >> field.shift & mask) ^ sign) - sign);
}

constexpr uint32_t pack_node(const NodeLayout& layout, int a, int b, int c, int d) {
    return to_field(a, layout.a) | to_field(b, layout.b) | to_field(c, layout.c) | to_field(d, layout.d);
}

} // namespace zerklsc
