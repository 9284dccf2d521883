// The border of a table of integer gains.
#pragma once

#include <cstdint>

#include "frame/view.h"

namespace zerklsc {

// Extrapolates the border of a bordered table modulo 2^16, columns first, then rows with the corners. Below
// three inner nodes in either direction there is nothing to extrapolate from, and the border stays as it is.
void fill_wrapping_border(View<uint16_t> table);

} // namespace zerklsc
