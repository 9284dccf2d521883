// zerklsc measure: how flat a frame is
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/levels.h"
#include "io/levels_json.h"
#include "io/text_table.h"

namespace zerklsc::tool {
namespace {

struct MeasureOptions {
    RawOptions raw;
    int blocks = usual_block_count;
    double limit = -1; // percent; negative: none
};

void report_channels(Report& report, const RawFrame& frame, const FrameLevels& levels, int blocks) {
    std::vector<std::vector<std::string>> rows{
        {"channel", "mean", "centre", "corner/centre", "flatness", "worst small block"}};
    JsonValue channels = JsonValue::array();
    for (const Colour colour : all_colours) {
        const PlaneLevels& plane = levels_of(levels, *frame.pattern, colour);
        rows.push_back({name_of(colour), fmt::format("{:.2f}", plane.mean),
                        fmt::format("{:.2f}", plane.centre()), percent(plane.corner_to_centre()),
                        percent(plane.flatness()), text_of(plane.worst())});
        channels.add(json_of(colour, plane));
    }
    report.print(
        fmt::format("{}flatness: largest deviation of a block from the channel's mean, {} x {} blocks\n",
                    text_table(rows), blocks, blocks));
    report.add("blocks", blocks);
    report.add("channels", std::move(channels));
}

void report_colours(Report& report, const RawFrame& frame, const FrameLevels& levels) {
    const Deviation red = colour_shading(levels, *frame.pattern, Colour::r);
    const Deviation blue = colour_shading(levels, *frame.pattern, Colour::b);
    report.print(fmt::format("colour shading, largest change from the centre: R/G {}, B/G {}\n", text_of(red),
                             text_of(blue)));
    report.add("colour_shading", json_of_colour_shading(levels, *frame.pattern));
}

void check_limit(const RawFrame& frame, const FrameLevels& levels, double limit) {
    std::string beyond;
    for (const Colour colour : all_colours)
        if (const double flatness = levels_of(levels, *frame.pattern, colour).flatness();
            100 * flatness > limit)
            beyond +=
                fmt::format("{}{} by {}", beyond.empty() ? "" : ", ", name_of(colour), percent(flatness));
    if (!beyond.empty())
        limit_failure("{}: deviates from flat: {} (limit {} %)", frame.name, beyond, limit);
}

void run(const MeasureOptions& options, Report& report) {
    const RawFrame frame = read_raw(options.raw, UnknownBlack::take_0);
    if (std::min(frame.width, frame.height) / 2 < options.blocks)
        data_failure(
            "{}: planes of {} x {} samples cannot be divided into {} x {} blocks: give a smaller --blocks",
            frame.name, frame.width / 2, frame.height / 2, options.blocks, options.blocks);
    add_frame(report, frame);
    report.print(describe(frame));
    const FrameLevels levels = measure_planes(frame, *frame.black, options.blocks);
    report_channels(report, frame, levels, options.blocks);
    report_colours(report, frame, levels);
    if (options.limit >= 0)
        check_limit(frame, levels, options.limit);
}

} // namespace

void add_measure(Command app) {
    auto options = std::make_shared<MeasureOptions>();
    Command command =
        app.subcommand("measure", "Measure corner-to-centre ratio, flatness and colour shading");
    add_raw_options(command, options->raw, "frame");
    command.option("--blocks", options->blocks, "blocks in each direction").range(3, 1001).show_default();
    command.option("--limit", options->limit, "exit with 1 when a channel is less flat than this, percent")
        .range(0.0, 100.0);
    command.footer(
        "All numbers are of the light above the black level. Corners and centre are small blocks, a "
        "sixty-fourth\n"
        "of the frame's shorter side; the worst small block is named by the pixel in its middle.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc measure flat.pgm --json");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
