// zerklsc calibrate: gain tables from a flat field
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/grid_options.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "imaging/exposure.h"
#include "imaging/levels.h"
#include "io/file_identity.h"
#include "io/json_value.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "io/table_text.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

struct Options {
    RawOptions raw;
    CalibrationSettings settings;
    std::string algorithm = "orvel";
    double clip_limit = usual_clip_limit;
    std::string output, text;
};

struct Channel {
    Colour colour;
    PlaneLevels levels; // before correction
    double largest_gain;
};

using Channels = std::vector<Channel>;

BlackLevel black_or_warning(const RawFrame& frame) {
    if (!frame.black)
        warn(fmt::format("{}: the black level is not known: 0 is taken (--black-level says another)",
                         frame.name));
    return black_level_of(frame, {});
}

Channels measure(const RawFrame& light, const GainTables& tables) {
    Channels channels;
    const int blocks = std::min(usual_blocks, std::min(light.width, light.height) / 2);
    for (const Colour colour : all_colours) {
        const int plane = plane_of_colour(tables.pattern, colour);
        channels.push_back({colour, measure_plane(light, plane, blocks), tables.largest_gain(plane)});
    }
    return channels;
}

void warn_about_gains(const std::string& name, const GainTables& tables) {
    // Noise alone takes a node at the brightest place one percent below unity.
    constexpr int clearly_below_unity = ZERKLSC_UNITY_GAIN * 98 / 100;
    int below = 0, capped = 0;
    for (const auto& gains : tables.gains)
        for (int j = 1; j + 1 < tables.table_height; ++j)
            for (int i = 1; i + 1 < tables.table_width; ++i) {
                const int gain = gains[static_cast<size_t>(j * tables.table_width + i)];
                below += gain < clearly_below_unity ? 1 : 0;
                capped += gain >= ZERKLSC_HIGHEST_GAIN ? 1 : 0;
            }
    if (below > 0)
        warn(fmt::format(
            "{}: {} nodes have gains below 1.0, which both ISPs raise to 1.0: the frame is brighter away "
            "from its centre",
            name, below));
    if (capped > 0)
        warn(fmt::format("{}: {} nodes need the highest gain of 16.0 or more: raise the exposure", name,
                         capped));
}

void print_table(Report& report, const GainTables& tables, const Channels& channels) {
    report.print(fmt::format("algorithm {} ({}), step {}, radius {}, shading {} %, tables of {} x {}\n",
                             tables.algorithm, algorithm_name(tables.algorithm), tables.step,
                             tables.filter_radius, tables.shading_percent, tables.table_width,
                             tables.table_height));
    std::vector<std::vector<std::string>> rows{{"channel", "centre", "corner/centre", "largest gain"}};
    for (const auto& [colour, levels, gain] : channels)
        rows.push_back({name_of(colour), fmt::format("{:.1f}", levels.centre()),
                        percent(levels.corner_to_centre()), fmt::format("{:.3f}", gain)});
    report.print(text_table(rows));
}

void add_tables(Report& report, const GainTables& tables) {
    report.add("algorithm", tables.algorithm);
    report.add("step", tables.step);
    report.add("filter_radius", tables.filter_radius);
    report.add("shading_percent", tables.shading_percent);
    report.add("table_size", JsonValue::array({tables.table_width, tables.table_height}));
}

void add_channels(Report& report, const Channels& channels) {
    JsonValue list = JsonValue::array();
    for (const auto& [colour, levels, gain] : channels)
        list.add(JsonValue::object({{"colour", name_of(colour)},
                                    {"centre", rounded(levels.centre())},
                                    {"corner_to_centre", rounded(levels.corner_to_centre())},
                                    {"largest_gain", rounded(gain)}}));
    report.add("channels", std::move(list));
}

void write_tables(const Options& options, const GainTables& tables) {
    OutputSet outputs;
    outputs.add(options.output, encode_table_json(tables));
    if (!options.text.empty())
        outputs.add(options.text, encode_table_text(tables));
    outputs.commit();
}

void run(const Options& options, Report& report) {
    keep_files_apart({options.raw.path}, {options.output, options.text});
    CalibrationSettings settings = options.settings;
    settings.algorithm = algorithm_from(options.algorithm);
    const RawFrame frame = read_raw(options.raw);
    const BayerPattern pattern = pattern_or_warning(frame);
    const BlackLevel black = black_or_warning(frame);
    add_frame(report, frame, pattern, black);
    report.print(describe(frame, pattern, black));
    check_exposure(frame, pattern, black, options.clip_limit);
    RawFrame light = frame;
    subtract_black(light, black);

    const GainTables tables = [&] {
        const Progress progress("calibrating " + frame.name);
        return calibrate(light, pattern, black, settings);
    }();
    add_tables(report, tables);
    warn_about_gains(frame.name, tables);
    write_tables(options, tables);
    const Channels channels = measure(light, tables);
    add_channels(report, channels);
    print_table(report, tables, channels);
}

} // namespace

void add_calibrate(Command app) {
    auto options = std::make_shared<Options>();
    Command command = app.subcommand("calibrate", "Make gain tables from a flat-field capture");
    add_raw_options(command, options->raw, "flat");
    command.option("-o,--output", options->output, "table file to write (JSON)").required();
    command.option("--text", options->text, "also write the four tables as plain text, in plane order");
    command
        .option("--algorithm", options->algorithm,
                "0 halvane, 1 orvel-otp, 2 orvel, 3 beta, 4 orvel-weights, by number or name")
        .show_default();
    add_grid_options(command, options->settings);
    command.option("--clip-limit", options->clip_limit, "refuse when more of a channel is clipped, percent")
        .range(0.0, 100.0)
        .show_default();
    command.footer(
        "Algorithms 0 to 3 are for the tvessa2 ISP, 4 for vessal2. Algorithms 0 and 1 take 10-bit samples:\n"
        "they see deeper captures scaled to 10 bits.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc calibrate flat.pgm -o tables.json --text tables.txt");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
