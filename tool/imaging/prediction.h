// What a correction will leave of the shading, through the exact model of the ISP.
#pragma once

#include "imaging/correction.h"
#include "imaging/levels.h"

namespace zerklsc::tool {

// The levels of the planes after `isp` has corrected the frame with the tables. The frame still holds its
// black level, which is known; deeper samples are scaled to 10 bits, as the ISP sees them.
FrameLevels predict_levels(const RawFrame& frame, const GainTables& tables, const std::string& tables_name,
                           Isp isp);

// The least flat plane's flatness.
double worst_flatness(const FrameLevels& levels);

} // namespace zerklsc::tool
