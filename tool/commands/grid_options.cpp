// add_grid_options
#include "commands/grid_options.h"

namespace zerklsc::tool {

void add_grid_options(Command command, CalibrationSettings& settings) {
    command.option("--step", settings.step, "node spacing in plane samples (half the pixels of the frame)")
        .range(smallest_step, largest_step)
        .show_default();
    command.option("--radius", settings.radius, "radius of the averaging window in plane samples")
        .range(0, 90)
        .show_default();
    command
        .option("--shading", settings.shading_percent,
                "correction kept at the corners, percent; 100 corrects fully")
        .range(1, 100)
        .show_default();
    command
        .option(
            "--max-memory", settings.max_memory,
            "memory that the fit of algorithm beta may take, MiB; it grows with the fourth power of 1 / step")
        .range(1, 1 << 20)
        .show_default();
}

} // namespace zerklsc::tool
