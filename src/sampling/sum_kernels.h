// The sums of samples that are compiled for each instruction set.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cpu/dispatch.h"

namespace zerklsc {

// Adds the first and the second samples of `pairs` pairs of columns, `rows` rows `stride` samples apart, to
// sums[0] and sums[1]; at most 2 * max_radius + 1 of either. Nothing outside the pairs is read.
using AddPairs = void(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]);

// sums[i] += entering[i] for i in 0 .. count - 1.
using AddRow = void(uint32_t* sums, const uint16_t* entering, int32_t count);

// sums[i] += entering[i] - leaving[i], for a leaving row that the sums hold.
using ExchangeRow = void(uint32_t* sums, const uint16_t* entering, const uint16_t* leaving, int32_t count);

ZERKLSC_DECLARE_KERNEL(add_pairs, AddPairs)
ZERKLSC_DECLARE_KERNEL(add_row, AddRow)
ZERKLSC_DECLARE_KERNEL(exchange_row, ExchangeRow)

} // namespace zerklsc
