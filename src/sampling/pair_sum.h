// Sums of the samples in even and in odd columns, compiled for each instruction set.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cpu/dispatch.h"

namespace zerklsc {

// Adds the first and the second samples of `pairs` pairs of columns, `rows` rows `stride` samples apart, to
// sums[0] and sums[1]; at most 2 * max_radius + 1 of either. Nothing outside the pairs is read.
using AddPairs = void(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]);

ZERKLSC_DECLARE_KERNEL(add_pairs, AddPairs)

} // namespace zerklsc
