// The options that say where and how a calibration measures.
#pragma once

#include <CLI/CLI.hpp>

#include "imaging/calibration.h"

namespace zerklsc::tool {

// --step, --radius and --shading.
void add_grid_options(CLI::App& command, CalibrationSettings& settings);

} // namespace zerklsc::tool
