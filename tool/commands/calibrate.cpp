// zerklsc calibrate: gain tables from a flat field
#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/flat_captures.h"
#include "commands/flat_check.h"
#include "commands/frame_text.h"
#include "commands/grid_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/exposure.h"
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

struct Options {
    CaptureOptions captures;
    CalibrationSettings settings;
    std::string algorithm = usual_algorithm;
    double clip_limit = usual_clip_limit;
    FlatCheckOptions check;
    std::string output, text, golden;
};

// How flat the ISP's correction leaves captures, the worst channel of the worst of them.
struct Prediction {
    double on_captures = 0;  // that the tables were made from
    double on_left_out = -1; // each by tables made from the others; negative where there is but one
};

GainTables calibrate_light(RawFrame frame, const CalibrationSettings& settings) {
    check_grid_options(frame, settings);
    const BlackLevel black = *frame.black;
    subtract_black(frame, black);
    return calibrate(frame, *frame.pattern, black, settings);
}

// The average without what is kept out of gains.
RawFrame clean_average(const FlatCaptures& flats, const CheckedFlats& checked) {
    if (checked.cleaned.empty())
        return flats.average();
    return checked.cleaned.size() > 1 ? average_of(checked.cleaned, flats.averaging)
                                      : checked.cleaned.front();
}

// `clean` are the captures without what is kept out of gains.
Prediction predict(const FlatCaptures& flats, const std::vector<RawFrame>& clean, const GainTables& tables,
                   const CalibrationSettings& settings) {
    const std::vector<RawFrame>& captures = flats.captures;
    const Isp isp = isp_of_algorithm(settings.algorithm);
    const auto flatness = [&](const RawFrame& frame, const GainTables& gains) {
        return worst_flatness(predict_levels(frame, gains, "the calibrated tables", isp));
    };
    Prediction prediction;
    for (const RawFrame& capture : captures)
        prediction.on_captures = std::max(prediction.on_captures, flatness(capture, tables));
    for (size_t i = 0; captures.size() > 1 && i < captures.size(); ++i) {
        const GainTables others =
            calibrate_light(average_of(clean, flats.averaging, static_cast<int>(i)), settings);
        prediction.on_left_out = std::max(prediction.on_left_out, flatness(captures[i], others));
    }
    return prediction;
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
        warn(fmt::format(
            "{}: {} nodes would need the highest gain of 16.0 or more and stay dark: look for what covers "
            "the frame there, and at the black level",
            name, capped));
}

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
    const double worst = several ? prediction.on_left_out : prediction.on_captures;
    const std::string left_out = several ? fmt::format(", {} where a capture is left out of its tables",
                                                       percent(prediction.on_left_out))
                                         : "";
    report.print(fmt::format("corrected by {}, the frame is flat to {}{}\n",
                             name_of(isp_of_algorithm(tables.algorithm)), percent(prediction.on_captures),
                             left_out));
    report.add("predicted_flatness", rounded(prediction.on_captures));
    report.add("predicted_flatness_left_out",
               several ? JsonValue(rounded(prediction.on_left_out)) : JsonValue::null());
    if (tables.shading_percent == 100 && worst > flat_enough)
        warn(fmt::format(
            "{}: {} cannot fit this capture: corrected, it is still {} off flat (expected {:.0f} % or "
            "less): compare the algorithms with zerklsc compare, or give a smaller --step",
            name, algorithm_name(tables.algorithm), percent(worst), 100 * flat_enough));
}

// The ratios to the golden tables.
GainTables relative_tables(Report& report, const std::string& name, const GainTables& tables,
                           const std::string& golden) {
    GainTables relative = relative_gains(tables, name, read_whole_gains(golden), input_name(golden));
    relative.relative_to = input_record("golden tables", golden);
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

void write_tables(const Options& options, const GainTables& tables) {
    OutputSet outputs;
    outputs.add(options.output, encode_tables_for(options.output, tables));
    if (!options.text.empty())
        outputs.add(options.text, encode_table_text(tables));
    outputs.commit();
}

void run(const Options& options, Report& report) {
    std::vector<std::string> inputs = options.captures.paths();
    inputs.push_back(options.golden);
    keep_files_apart(inputs, {options.output, options.text});
    const FlatCaptures flats = read_flat_captures(options.captures, report);
    const RawFrame& frame = flats.average();
    CalibrationSettings settings = with_step(options.settings, frame);
    settings.algorithm = algorithm_from(options.algorithm);
    add_frame(report, frame);
    report.add("captures", JsonValue::list(options.captures.flats));
    report.add("average", name_of(flats.averaging));
    report.print(describe(frame));
    const CheckedFlats checked =
        check_flats(flats.captures, settings, options.check, options.clip_limit, report);
    const std::vector<RawFrame>& clean = checked.cleaned.empty() ? flats.captures : checked.cleaned;
    const FrameLevels levels = measure_planes(frame, *frame.black, usual_blocks(frame));
    const Progress progress("calibrating " + frame.name);
    GainTables tables = calibrate_light(clean_average(flats, checked), settings);
    tables.inputs = recorded(options.captures, checked.findings);
    for (size_t i = 0; i < checked.kept_out.size(); ++i)
        tables.inputs[i].kept_out = checked.kept_out[i];
    tables.average = name_of(flats.averaging);
    report_channels(report, levels, tables);
    warn_about_gains(frame.name, tables);
    // Where no correction is possible, there is nothing to predict: the tables are what was asked for.
    try {
        report_prediction(report, frame.name, tables, predict(flats, clean, tables, settings));
    } catch (const Failure& failure) {
        warn(failure.what());
    }
    write_tables(options, options.golden.empty()
                              ? tables
                              : relative_tables(report, frame.name, tables, options.golden));
}

} // namespace

void add_calibrate(Command app) {
    auto options = std::make_shared<Options>();
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
    add_algorithm_option(command, options->algorithm);
    add_grid_options(command, options->settings);
    command.option("--clip-limit", options->clip_limit, "refuse when more of a channel is clipped, percent")
        .range(0.0, 100.0)
        .show_default();
    add_flat_check_options(command, options->check);
    command.footer(
        "Of several captures of one module, the average is calibrated, and each is also corrected by tables "
        "made\n"
        "from the others, so that fitted noise does not count as flatness. The median and the clipped mean, "
        "of "
        "three\n"
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
