// A bitmap font for the labels of pictures.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zerklsc::tool {

// Letters are 5 x 7 dots; two more rows hold what hangs below the line. Bit 4 of a row is its leftmost dot.
constexpr int glyph_columns = 5;
constexpr int glyph_rows = 9;
using Glyph = std::array<uint8_t, glyph_rows>;

// The glyph of a printable ASCII character; that of '?' for any other.
const Glyph& glyph_of(char c);

} // namespace zerklsc::tool
