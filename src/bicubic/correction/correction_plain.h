#pragma once

#include "bicubic/correction/correction.h"

namespace zerklsc {

// The correction pixel by pixel, as the hardware does it: the form that every faster one equals to the bit.
void correct_plain(const Correction& correction);

} // namespace zerklsc
