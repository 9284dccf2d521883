// zerklsc calibrate: gain tables from a flat field
#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/module_calibration.h"
#include "commands/option_values.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/prediction.h"
#include "imaging/relative_gains.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/input_record.h"
#include "io/levels_json.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "io/table_text.h"
#include "io/text_table.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

struct CalibrateOptions {
    CaptureOptions captures;
    MethodOptions method;
    std::string output, text, golden;
};

void report_channels(Report& report, const FrameLevels& levels, const GainTables& tables) {
    std::vector<std::vector<std::string>> rows{{"channel", "centre", "corner/centre", "largest gain"}};
    JsonValue list = JsonValue::array();
    for (const Colour colour : all_colours) {
        const int number = plane_of_colour(tables.pattern, colour);
        const PlaneLevels& plane = levels[static_cast<size_t>(number)];
        const double gain = tables.largest_gain(number);
        rows.push_back({name_of(colour), fmt::format("{:.2f}", plane.centre()),
                        percent(plane.corner_to_centre()), fmt::format("{:.3f}", gain)});
        list.add(JsonValue::object({{"colour", name_of(colour)},
                                    {"centre", rounded(plane.centre())},
                                    {"corner_to_centre", rounded(plane.corner_to_centre())},
                                    {"largest_gain", rounded(gain)}}));
    }
    report.print(fmt::format("algorithm {} ({}), step {}, radius {}, shading {} %, tables of {} x {}\n",
                             tables.algorithm, algorithm_name(tables.algorithm), tables.step,
                             tables.filter_radius, tables.shading_percent, tables.table_width,
                             tables.table_height));
    report.print(text_table(rows));
    report.add("algorithm", tables.algorithm);
    report.add("step", tables.step);
    report.add("filter_radius", tables.filter_radius);
    report.add("shading_percent", tables.shading_percent);
    report.add("table_size", JsonValue::array({tables.table_width, tables.table_height}));
    report.add("channels", std::move(list));
}

void report_prediction(Report& report, const std::string& name, const GainTables& tables,
                       const Prediction& prediction) {
    const bool several = prediction.on_left_out >= 0;
    const std::string left_out = several ? fmt::format(", {} where a capture is left out of its tables",
                                                       percent(prediction.on_left_out))
                                         : "";
    report.print(fmt::format("corrected by {}, the frame is flat to {}{}\n",
                             name_of(isp_of_algorithm(tables.algorithm)), percent(prediction.on_captures()),
                             left_out));
    report.add("predicted_flatness", rounded(prediction.on_captures()));
    report.add("predicted_flatness_left_out",
               several ? JsonValue(rounded(prediction.on_left_out)) : JsonValue::null());
    warn_about_prediction(name, tables, prediction);
}

// The ratios to the golden tables.
GainTables relative_tables(Report& report, const std::string& name, const GainTables& tables,
                           const std::string& golden) {
    const auto state = file_state(golden);
    GainTables relative = relative_gains(tables, name, read_whole_gains(golden), input_name(golden));
    relative.relative_to = input_record("golden tables", golden, state);
    uint16_t smallest = ZERKLSC_HIGHEST_GAIN, largest = 0;
    for (const auto& ratios : relative.gains) {
        smallest = std::min(smallest, *std::ranges::min_element(ratios));
        largest = std::max(largest, *std::ranges::max_element(ratios));
    }
    const auto factor = [](uint16_t ratio) { return ratio / double{ZERKLSC_UNITY_GAIN}; };
    report.print(fmt::format("gains relative to {}: {:.3f} to {:.3f} of its own\n", input_name(golden),
                             factor(smallest), factor(largest)));
    report.add("relative_to", JsonValue::object({{"name", relative.relative_to->name},
                                                 {"sha256", relative.relative_to->sha256},
                                                 {"smallest_ratio", rounded(factor(smallest))},
                                                 {"largest_ratio", rounded(factor(largest))}}));
    return relative;
}

void write_tables(const CalibrateOptions& options, const GainTables& tables) {
    OutputSet outputs;
    outputs.add(options.output, encode_tables_for(options.output, tables));
    if (!options.text.empty())
        outputs.add(options.text, encode_table_text(tables));
    outputs.commit();
}

void run(const CalibrateOptions& options, Report& report) {
    std::vector<std::string> inputs = options.captures.paths();
    inputs.push_back(options.golden);
    keep_files_apart(inputs, {options.output, options.text});
    check_table_name(options.output);
    algorithm_from(options.method.algorithm);
    limits_of(options.method.check);
    FlatCaptures flats = read_flat_captures(options.captures, report);
    const RawFrame& frame = flats.average();
    const CalibrationSettings settings = settings_for(options.method, frame);
    add_frame(report, frame);
    report.add("captures", JsonValue::list(options.captures.flats));
    report.add("average", name_of(flats.averaging));
    report.print(describe(frame));
    CheckedFlats checked =
        check_flats(flats.captures, settings, options.method.check, options.method.clip_limit, report);
    const FrameLevels levels = measure_planes(frame, *frame.black, usual_blocks(frame));
    const Progress progress("calibrating " + frame.name);
    const GainTables tables = calibrate_flats(options.captures, flats, checked, settings);
    report_channels(report, levels, tables);
    warn_about_gains(frame.name, tables);
    // Where no correction is possible, there is nothing to predict: the tables are what was asked for.
    try {
        report_prediction(report, frame.name, tables, predict(flats, checked, tables, settings));
    } catch (const Failure& failure) {
        warn(failure.what());
    }
    write_tables(options, options.golden.empty()
                              ? tables
                              : relative_tables(report, frame.name, tables, options.golden));
}

} // namespace

void add_calibrate(Command app) {
    auto options = std::make_shared<CalibrateOptions>();
    Command command = app.subcommand("calibrate", "Make gain tables from flat-field captures");
    add_capture_options(command, options->captures);
    command
        .option("-o,--output", options->output,
                "table file to write: JSON, or the gains alone as text (.txt)")
        .required()
        .takes("FILE");
    command.option("--text", options->text, "also write the four tables as plain text, in plane order")
        .takes("FILE");
    command
        .option("--relative-to", options->golden,
                "write each gain as its ratio to that of this table file, as of a lot's golden module")
        .takes("FILE");
    add_method_options(command, options->method);
    command.footer(
        "Of several captures of one module, the average is calibrated, and each is also corrected by tables "
        "made\n"
        "from the others, so that fitted noise does not count as flatness. The median and the clipped mean, "
        "of three\n"
        "captures or more, drop what one of them has alone. A dark frame is captured with the lens covered, "
        "with the\n"
        "flat field's exposure, gain and temperature.\n"
        "Algorithms 0 to 3 are for the tvessa2 ISP, 4 for vessal2. Algorithms 0 and 1 take 10-bit samples:\n"
        "they see deeper captures scaled to 10 bits.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc calibrate flat.pgm -o tables.json --text tables.txt");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
