// Defects, dead lines and dust are put in order before gains are averaged.
#pragma once

#include "check/outliers.h"
#include "imaging/gain_tables.h"

namespace zerklsc::tool {

KeptOut count_of(const Outliers& outliers);

// Replaces what stands out in the frame, which is the one that was analysed: a dead line by the mean of the
// nearest good lines at its sides, a defective sample by the median of the samples around it, and the light
// of dusty tiles is raised to what the tiles around the dust have of the lens's surface. All other samples
// stay as they are.
void keep_out(const Outliers& outliers, const Analysis& analysis, const BlackLevel& black, RawFrame& frame);

} // namespace zerklsc::tool
