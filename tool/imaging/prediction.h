// What a correction will leave of the shading, through the exact model of the ISP.
#pragma once

#include "imaging/correction.h"
#include "imaging/levels.h"

namespace zerklsc::tool {

// Corrects a frame, which still holds its black level, as `isp` does with the tables: it is then 10 bits
// deep, its black level taken off. Deeper samples are scaled to 10 bits, as the ISP sees them.
void correct_capture(RawFrame& frame, const GainTables& tables, const std::string& tables_name, Isp isp);

// Corrects a frame whose black level `black` has been taken off, to the same result, and has the levels of
// its planes.
FrameLevels predict_levels(RawFrame& light, const BlackLevel& black, const GainTables& tables,
                           const std::string& tables_name, Isp isp);

// Beyond this, corrected captures are visibly not flat.
constexpr double flat_enough = 0.02;

// The least flat plane's flatness.
double worst_flatness(const FrameLevels& levels);

} // namespace zerklsc::tool
