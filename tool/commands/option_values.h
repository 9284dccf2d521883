// Options whose values are words of the tool: a usage failure that names the option for any other text.
#pragma once

#include <string>

#include "imaging/correction.h"
#include "imaging/gain_tables.h"

namespace zerklsc::tool {

BayerPattern pattern_of_option(const std::string& text);
// One level for all planes, or four.
BlackLevel black_level_of_option(const std::string& text);
// A ZERKLSC_ALGORITHM_..., by number or name.
int algorithm_from(const std::string& text);
Isp isp_from(const std::string& name);

// Refuses a frame that is not made of whole 2 x 2 Bayer cells.
void check_even(int width, int height);

} // namespace zerklsc::tool
