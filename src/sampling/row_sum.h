// Sums of the rows of a window, column by column, compiled for each instruction set.
#pragma once

#include <cstdint>

#include "cpu/dispatch.h"

namespace zerklsc {

// sums[i] += entering[i] for i in 0 .. count - 1.
using AddRow = void(uint32_t* sums, const uint16_t* entering, int32_t count);

// sums[i] += entering[i] - leaving[i], for a leaving row that the sums hold.
using ExchangeRow = void(uint32_t* sums, const uint16_t* entering, const uint16_t* leaving, int32_t count);

ZERKLSC_DECLARE_KERNEL(add_row, AddRow)
ZERKLSC_DECLARE_KERNEL(exchange_row, ExchangeRow)

} // namespace zerklsc
