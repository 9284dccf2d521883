// The plain form of lsc2d_bicubic_correction(), which the fast one equals to the bit.
#pragma once

#include "table/float_correction.h"

namespace zerklsc::plain {

void bicubic_correction(const FloatCorrection& job);

} // namespace zerklsc::plain
