// The options that say where and how a calibration measures.
#pragma once

#include "commands/command_line.h"

#include "imaging/calibration.h"

namespace zerklsc::tool {

constexpr const char* usual_algorithm = "orvel";

// --algorithm, for algorithm_from().
void add_algorithm_option(Command command, std::string& algorithm);

// --step, --radius, --shading and --max-memory.
void add_grid_options(Command command, CalibrationSettings& settings);

// The settings, with the usual step for the frame where none is given.
CalibrationSettings with_step(CalibrationSettings settings, const RawFrame& flat);

// Throws a data failure when the planes of the frame are too small for the options, or the fit of algorithm 3
// takes more memory than they allow; warns when it takes long.
void check_grid_options(const RawFrame& flat, const CalibrationSettings& settings);

} // namespace zerklsc::tool
