// Numbers about the four planes of a frame, as a table for people or JSON for programs.
#pragma once

#include <string>
#include <vector>

#include "imaging/bayer_pattern.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// The frame's pattern; RGGB with a warning when it is not known.
BayerPattern pattern_or_warning(const RawFrame& frame);

// One line about a frame: size, pattern, depth and black level.
std::string describe(const RawFrame& frame, BayerPattern pattern, const BlackLevel& black);

// Lines of cells, each column as wide as it needs to be; all columns but the first stand to the right.
std::string text_table(const std::vector<std::vector<std::string>>& rows);

// A fraction as "38.21 %".
std::string percent(double fraction);

// A number with four digits after the point, for JSON.
double rounded(double value);

} // namespace zerklsc::tool
