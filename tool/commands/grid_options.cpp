// add_algorithm_option, add_grid_options, with_step, check_grid_options
#include "commands/grid_options.h"

#include <algorithm>

#include "failure.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

constexpr int fewest_nodes = 3;
// What a person waits for without being told.
constexpr double usual_wait = 10;

void check_fit(const std::string& name, const CalibrationSettings& settings, double nodes) {
    const FitCost cost = fit_cost(nodes);
    if (cost.mebibytes > settings.max_memory)
        data_failure("{}: algorithm beta at step {} fits {:.0f} nodes, which takes {:.0f} MiB of memory and "
                     "about {:.0f} seconds (limit {} MiB): give a larger --step, or raise --max-memory",
                     name, settings.step, nodes, cost.mebibytes, cost.seconds, settings.max_memory);
    if (cost.seconds > usual_wait)
        warn(fmt::format("{}: the fit of {:.0f} nodes takes about {:.0f} seconds: a larger --step is quicker",
                         name, nodes, cost.seconds));
}

} // namespace

void add_algorithm_option(Command command, std::string& algorithm) {
    command.option("--algorithm", algorithm, "the method, by number 0 to 4 in this order or by name")
        .takes("{halvane,orvel-otp,orvel,beta,orvel-weights}")
        .show_default();
}

void add_grid_options(Command command, CalibrationSettings& settings) {
    command
        .option(
            "--step", settings.step,
            "node spacing in plane samples (half the pixels of the frame); where none is given, the power "
            "of two nearest to a sixty-fourth of the frame's width, 64 at most")
        .range(smallest_step, largest_step);
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

CalibrationSettings with_step(CalibrationSettings settings, const RawFrame& flat) {
    if (settings.step == 0)
        settings.step = usual_step(flat.width, flat.height);
    return settings;
}

void check_grid_options(const RawFrame& flat, const CalibrationSettings& settings) {
    const int w = flat.width / 2, h = flat.height / 2, shorter = std::min(w, h);
    int32_t grid_w = 0, grid_h = 0;
    lsc2d_table_size(w, h, settings.step, settings.step, &grid_w, &grid_h);
    grid_w -= 2 * ZERKLSC_BORDER;
    grid_h -= 2 * ZERKLSC_BORDER;
    if (std::min(grid_w, grid_h) < fewest_nodes)
        data_failure(
            "{}: --step {} lays a grid of {} x {} nodes on planes of {} x {}, and at least 3 x 3 are needed: "
            "give a --step of at most {}",
            flat.name, settings.step, grid_w, grid_h, w, h, std::max(shorter - 1, 1));
    if (settings.radius >= shorter)
        data_failure("{}: --radius {} reaches beyond planes of {} x {}: give a --radius below {}", flat.name,
                     settings.radius, w, h, shorter);
    if (settings.algorithm == ZERKLSC_ALGORITHM_BETA)
        check_fit(flat.name, settings, double(grid_w) * grid_h);
}

} // namespace zerklsc::tool
