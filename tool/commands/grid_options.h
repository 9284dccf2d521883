// The options that say where and how a calibration measures.
#pragma once

#include "commands/command_line.h"

#include "imaging/calibration.h"

namespace zerklsc::tool {

// --step, --radius, --shading and --max-memory.
void add_grid_options(Command command, CalibrationSettings& settings);

// Throws a data failure when the planes of the frame are too small for the options, or the fit of algorithm 3
// takes more memory than they allow; warns when it takes long.
void check_grid_options(const RawFrame& flat, const CalibrationSettings& settings);

} // namespace zerklsc::tool
