// The bit fields of one node's four numbers.
#pragma once

#include <algorithm>
#include <cstdint>

#include "compress/precision_mode.h"
#include "frame/planes.h"

namespace zerklsc {

// A two's complement field of a node word.
struct BitField {
    int shift;
    int bits;
};

// A node's numbers are the gain of Gb, which is the base, and the base less the gain of each other colour.
// The two greens hardly differ: a narrow field is enough for Gr.
using NodeLayout = ByColour<BitField>;

// Mode 0: the word is what the stream holds, low byte first; bit 23 stays 0.
inline constexpr NodeLayout layout_24_bit = {{{0, 6}, {6, 5}, {11, 7}, {18, 5}}};

// Mode 1: bits 0-7 are the node's byte in the stream, bits 8-13 the six that share bytes with other nodes.
inline constexpr NodeLayout layout_14_bit = {{{0, 4}, {8, 3}, {4, 4}, {11, 3}}};

// Of a mode that exists.
constexpr NodeLayout layout_of(uint8_t mode) {
    return mode == mode_14_bit ? layout_14_bit : layout_24_bit;
}

// Saturates: a value beyond the field is stored as the field's end, and what it loses is missing in every
// node further out, since the decoder sums differences outwards.
constexpr uint32_t to_field(int value, BitField field) {
    const int limit = 1 << (field.bits - 1);
    const uint32_t mask = (1u << field.bits) - 1;
    return (static_cast<uint32_t>(std::clamp(value, -limit, limit - 1)) & mask) << field.shift;
}

// Sign-extends.
constexpr int16_t from_field(uint32_t word, BitField field) {
    const int sign = 1 << (field.bits - 1);
    const uint32_t mask = (1u << field.bits) - 1;
    return static_cast<int16_t>((static_cast<int>(word >> field.shift & mask) ^ sign) - sign);
}

} // namespace zerklsc
