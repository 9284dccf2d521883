// The centre of the grid, where the differences start.
#pragma once

#include <cstdint>

#include "compress/precision_mode.h"

namespace zerklsc {

// The centre indices of a direction: one if its size is odd, two neighbours if it is even.
struct Centre {
    int32_t first;
    int32_t last;
};

constexpr Centre centre_of(int32_t size) {
    return {(size - 1) / 2, size / 2};
}

// Whether the decoder returns the lower half of the rows too low.
constexpr bool has_lowered_half(int32_t width, int32_t height) {
    return width % 2 == 1 && height % 2 == 0;
}

// What the decoder adds to the anchors of a centre row. With an odd width and an even height it takes unity
// gain from the lower anchors a second time instead of giving it back, so that a caller meets the lower half
// of every table 2 * unity_offset() too low. The format is defined by this: other decoders do it too, and a
// stream must give the same gains everywhere.
constexpr int decoded_unity_offset(int32_t row, int32_t width, int32_t height, uint8_t mode) {
    const bool lowered = has_lowered_half(width, height) && row == centre_of(height).last;
    return lowered ? -unity_offset(mode) : unity_offset(mode);
}

} // namespace zerklsc
