// Gains from measured levels.
#pragma once

#include <cstdint>

namespace zerklsc {

// gains[k] = reference / samples[k]. A sample below 1 counts as 1, so that a black node gets the reference.
void gains_from_samples(const float* samples, float* gains, int64_t count, uint16_t reference);

} // namespace zerklsc
