// add_grid_options
#include "commands/grid_options.h"

namespace zerklsc::tool {

void add_grid_options(CLI::App& command, CalibrationSettings& settings) {
    command
        .add_option("--step", settings.step, "node spacing in plane samples (half the pixels of the frame)")
        ->check(CLI::Range(smallest_step, largest_step))
        ->capture_default_str();
    command.add_option("--radius", settings.radius, "radius of the averaging window in plane samples")
        ->check(CLI::Range(0, 90))
        ->capture_default_str();
    command
        .add_option("--shading", settings.shading_percent,
                    "correction kept at the corners, percent; 100 corrects fully")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
}

} // namespace zerklsc::tool
