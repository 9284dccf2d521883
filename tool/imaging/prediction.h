// What a correction will leave of the shading, through the exact model of the ISP.
#pragma once

#include "imaging/correction.h"
#include "imaging/levels.h"

namespace zerklsc::tool {

// The frame after `isp` has corrected it with the tables, 10 bits deep, its black level taken off. `frame`
// still holds its black level, which is known; deeper samples are scaled to 10 bits, as the ISP sees them.
RawFrame correct_capture(RawFrame frame, const GainTables& tables, const std::string& tables_name, Isp isp);

// The levels of its planes.
FrameLevels predict_levels(const RawFrame& frame, const GainTables& tables, const std::string& tables_name,
                           Isp isp);

// Beyond this, corrected captures are visibly not flat.
constexpr double flat_enough = 0.02;

// The least flat plane's flatness.
double worst_flatness(const FrameLevels& levels);

} // namespace zerklsc::tool
