// The fixed point of the gain tables.
#pragma once

#include "zerklsc.h"

namespace zerklsc {

inline constexpr float unity_gain = float{ZERKLSC_UNITY_GAIN};

// One step of a gain in a table. It is a power of two: multiplying with it loses nothing.
inline constexpr float gain_step = 1.0f / unity_gain;
static_assert(gain_step == 0x1p-10f);

} // namespace zerklsc
