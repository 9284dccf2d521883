// The border of a decoded table.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zerklsc {

// Extrapolates the border of a table with width x height inner nodes. Below three nodes in either direction
// there is nothing to extrapolate from, and the border stays as it is.
void expand_border(uint16_t* table, ptrdiff_t width, ptrdiff_t height);

} // namespace zerklsc
