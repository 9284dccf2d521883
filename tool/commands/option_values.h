// Options whose values are words of the tool: a usage failure that names the option for any other text.
#pragma once

#include <string>

#include "commands/command_line.h"
#include "imaging/correction.h"
#include "imaging/gain_tables.h"

namespace zerklsc::tool {

BayerPattern pattern_of_option(const std::string& text);
// One level for all planes, or four.
BlackLevel black_level_of_option(const std::string& text);
// A ZERKLSC_ALGORITHM_..., by number or name.
int algorithm_from(const std::string& text);

// --isp, of a command that corrects with tables, and the ISP that it names: without a name, that of the
// tables' algorithm.
Option add_isp_option(Command command, std::string& name);
Isp isp_of_option(const std::string& name, const GainTables& tables);

// Refuses a frame that is not made of whole 2 x 2 Bayer cells.
void check_even(int width, int height);

} // namespace zerklsc::tool
