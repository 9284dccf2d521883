// The options that say where and how a calibration measures.
#pragma once

#include "commands/command_line.h"

#include "imaging/calibration.h"

namespace zerklsc::tool {

// --step, --radius and --shading.
void add_grid_options(Command command, CalibrationSettings& settings);

} // namespace zerklsc::tool
