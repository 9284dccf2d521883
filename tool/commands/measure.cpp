// zerklsc measure: how flat a frame is
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/levels.h"
#include "io/json_value.h"

namespace zerklsc::tool {
namespace {

struct Options {
    RawOptions raw;
    int blocks = usual_blocks;
    double limit = -1; // percent; negative: none
};

struct Channel {
    Colour colour;
    PlaneLevels levels;
};

using Channels = std::vector<Channel>;

void print_table(Report& report, const Channels& channels, int blocks) {
    std::vector<std::vector<std::string>> rows{{"channel", "mean", "centre", "corner/centre", "flatness"}};
    for (const auto& [colour, levels] : channels)
        rows.push_back({name_of(colour), fmt::format("{:.2f}", levels.mean),
                        fmt::format("{:.2f}", levels.centre()), percent(levels.corner_to_centre()),
                        percent(levels.flatness())});
    report.print(
        fmt::format("{}flatness: largest deviation of a block from the channel's mean, {} x {} blocks\n",
                    text_table(rows), blocks, blocks));
}

void add_channels(Report& report, const Channels& channels, int blocks) {
    JsonValue list = JsonValue::array();
    for (const auto& [colour, levels] : channels)
        list.add(JsonValue::object({{"colour", name_of(colour)},
                                    {"mean", rounded(levels.mean)},
                                    {"centre", rounded(levels.centre())},
                                    {"corner_to_centre", rounded(levels.corner_to_centre())},
                                    {"flatness", rounded(levels.flatness())}}));
    report.add("blocks", blocks);
    report.add("channels", std::move(list));
}

void check_limit(const RawFrame& frame, const Channels& channels, double limit) {
    for (const auto& [colour, levels] : channels)
        if (100 * levels.flatness() > limit)
            limit_failure("{}: {} deviates by {} from flat (limit {} %)", frame.name, name_of(colour),
                          percent(levels.flatness()), limit);
}

void run(const Options& options, Report& report) {
    RawFrame frame = read_raw(options.raw);
    if (std::min(frame.width, frame.height) / 2 < options.blocks)
        data_failure(
            "{}: planes of {} x {} samples cannot be divided into {} x {} blocks: give a smaller --blocks",
            frame.name, frame.width / 2, frame.height / 2, options.blocks, options.blocks);
    const BayerPattern pattern = pattern_or_warning(frame);
    const BlackLevel black = black_level_of(frame, {});
    add_frame(report, frame, pattern, black);
    subtract_black(frame, black);
    Channels channels;
    for (const Colour colour : all_colours)
        channels.push_back({colour, measure_plane(frame, plane_of_colour(pattern, colour), options.blocks)});
    add_channels(report, channels, options.blocks);
    report.print(describe(frame, pattern, black));
    print_table(report, channels, options.blocks);
    if (options.limit >= 0)
        check_limit(frame, channels, options.limit);
}

} // namespace

void add_measure(Command app) {
    auto options = std::make_shared<Options>();
    Command command = app.subcommand("measure", "Measure corner-to-centre ratio and flatness of a frame");
    add_raw_options(command, options->raw, "frame");
    command.option("--blocks", options->blocks, "blocks in each direction").range(3, 1001).show_default();
    command.option("--limit", options->limit, "exit with 1 when a channel is less flat than this, percent")
        .range(0.0, 100.0);
    command.footer(
        "corner/centre: mean of the four corner blocks over the centre block, black level taken off.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc measure flat.pgm --json");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
