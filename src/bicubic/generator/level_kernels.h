// The passes of the parameter generators along the rows of a frame that are compiled for each instruction
// set.
#pragma once

#include <cstdint>

#include "cpu/dispatch.h"

namespace zerklsc {

// Whether any of `count` samples is above the limit of its parity: limits[0] in even places, limits[1] in odd
// ones.
using AnyAbove = bool(const uint16_t* samples, int32_t count, const uint16_t limits[2]);

// columns[x] += min(samples[2 * x] - black, white) for x in 0 .. count - 1.
using AddLevels = void(int32_t* columns, const uint16_t* samples, int32_t count, int32_t black,
                       int32_t white);

// The same with -= in place of +=.
using RemoveLevels = AddLevels;

ZERKLSC_DECLARE_KERNEL(any_above, AnyAbove)
ZERKLSC_DECLARE_KERNEL(add_levels, AddLevels)
ZERKLSC_DECLARE_KERNEL(remove_levels, RemoveLevels)

} // namespace zerklsc
