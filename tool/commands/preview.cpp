// zerklsc preview: a picture of what the lens does to a frame, and of what a correction leaves
#include <algorithm>
#include <cmath>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/correction.h"
#include "imaging/levels.h"
#include "io/file_identity.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "preview/png.h"
#include "preview/sheet.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct Options {
    RawOptions raw;
    std::string tables, corrected, corrected_black, isp, output;
};

// One frame of the sheet, black level taken off.
struct Shown {
    RawFrame frame;
    BayerPattern pattern;
    std::array<Field, 4> fields; // brightness by colour
    FrameLevels levels;
};

Shown show(RawFrame frame, BayerPattern pattern, PanelSize size) {
    Shown shown{std::move(frame), pattern, {}, {}};
    shown.levels = measure_planes(shown.frame, {}, usual_blocks(shown.frame));
    for (size_t i = 0; i < all_colours.size(); ++i)
        shown.fields[i] =
            brightness_field(shown.frame, plane_of_colour(pattern, all_colours[i]), size.width, size.height);
    return shown;
}

std::vector<std::string> labels_between(double low, double high, int count, const char* format) {
    std::vector<std::string> labels;
    for (int i = 0; i < count; ++i)
        labels.push_back(fmt::format(fmt::runtime(format), low + (high - low) * i / (count - 1)));
    return labels;
}

const PlaneLevels& levels_of(const Shown& shown, size_t colour) {
    return shown.levels[static_cast<size_t>(plane_of_colour(shown.pattern, all_colours[colour]))];
}

// Each channel in percent of its brightest place. `low` is the lower end of the scale.
PanelRow illumination_row(const std::string& title, const Shown& shown, double low) {
    PanelRow row;
    row.title = title;
    row.low = low;
    row.high = 100;
    row.contour = 10;
    row.labels = labels_between(low, 100, static_cast<int>((100 - low) / 10) + 1, "{:.0f} %");
    for (size_t i = 0; i < all_colours.size(); ++i) {
        const double top = shown.fields[i].largest();
        const PlaneLevels& levels = levels_of(shown, i);
        row.panels[i] = {shown.fields[i].scaled(top > 0 ? 100 / top : 0),
                         fmt::format("{}  corner/centre {:.1f} %", name_of(all_colours[i]),
                                     100 * levels.corner_to_centre())};
    }
    return row;
}

// The scale that shows the darkest corner and ends at a round number.
double lowest_percent(const Shown& shown) {
    double low = 1;
    for (const Field& field : shown.fields)
        low = std::min(low, field.largest() > 0 ? field.smallest() / field.largest() : 0);
    return std::min(std::floor(low * 10) * 10, 90.0);
}

PanelRow gain_row(const GainTables& tables, PanelSize size) {
    PanelRow row;
    row.title =
        fmt::format("gain of the tables ({}, step {})", algorithm_name(tables.algorithm), tables.step);
    double highest = 1;
    for (size_t i = 0; i < all_colours.size(); ++i) {
        const int plane = plane_of_colour(tables.pattern, all_colours[i]);
        row.panels[i] = {
            gain_field(tables, plane, size.width, size.height),
            fmt::format("{}  largest gain {:.2f}", name_of(all_colours[i]), tables.largest_gain(plane))};
        highest = std::max(highest, tables.largest_gain(plane));
    }
    row.low = 1;
    row.high = 1 + std::max(std::ceil((highest - 1) * 2), 1.0) / 2;
    row.contour = (row.high - row.low) / 8;
    row.labels = labels_between(row.low, row.high, 5, "{:.2f}");
    return row;
}

// The narrowest usual scale that holds 99 % of the deviations; a few pixels in the corners may go beyond it.
double usual_reach(std::vector<double> deviations) {
    const auto most = deviations.begin() + static_cast<ptrdiff_t>(deviations.size() * 99 / 100);
    std::ranges::nth_element(deviations, most, {}, [](double v) { return std::abs(v); });
    double reach = 100;
    for (const double narrower : {50.0, 20.0, 10.0, 5.0, 2.0, 1.0})
        reach = std::abs(*most) <= narrower ? narrower : reach;
    return reach;
}

// The deviation of each channel from its mean.
PanelRow residual_row(const std::string& title, const Shown& shown) {
    PanelRow row;
    std::vector<double> all;
    for (size_t i = 0; i < all_colours.size(); ++i) {
        Field field = shown.fields[i];
        const double mean = field.mean();
        for (double& v : field.values)
            v = mean > 0 ? 100 * (v / mean - 1) : 0;
        all.insert(all.end(), field.values.begin(), field.values.end());
        row.panels[i] = {std::move(field), fmt::format("{}  flat to {:.2f} %", name_of(all_colours[i]),
                                                       100 * levels_of(shown, i).flatness())};
    }
    const double reach = usual_reach(std::move(all));
    row.title = fmt::format("{}: deviation from the channel's mean, scale +-{} %", title, reach);
    row.low = -reach;
    row.high = reach;
    row.deviation = true;
    row.labels = labels_between(-reach, reach, 5, "{:+.1f} %");
    row.labels[2] = "0 %";
    return row;
}

// The frame that was corrected elsewhere, in the same geometry.
RawFrame read_corrected(const Options& options, const RawFrame& before) {
    RawOptions raw = options.raw;
    raw.path = options.corrected;
    raw.black = options.corrected_black;
    RawFrame frame = read_raw(raw, UnknownBlack::take_0);
    if (frame.width != before.width || frame.height != before.height)
        data_failure("{}: is {} x {}, but {} is {} x {}: give the corrected form of the same frame",
                     frame.name, frame.width, frame.height, before.name, before.width, before.height);
    subtract_black(frame, BlackLevel(*frame.black));
    return frame;
}

Canvas draw(const Options& options, Report& report) {
    const GainTables tables = options.tables.empty() ? GainTables() : read_table_json(options.tables);
    RawFrame frame = options.tables.empty() ? read_raw(options.raw, UnknownBlack::take_0)
                                            : read_raw_for(options.raw, tables, options.tables);
    const BayerPattern pattern = *frame.pattern;
    const BlackLevel black = *frame.black;
    add_frame(report, frame);
    std::vector<std::string> heading{describe(frame)};
    heading[0].pop_back();
    subtract_black(frame, black);
    const PanelSize size = panel_size(frame.width, frame.height);
    const Shown before = show(frame, pattern, size);
    const double low = lowest_percent(before);
    std::vector<PanelRow> rows{illumination_row("before: relative illumination", before, low)};
    std::string how = "after";
    if (!options.tables.empty()) {
        const Isp isp = options.isp.empty() ? isp_of_algorithm(tables.algorithm) : isp_from(options.isp);
        scale_to_10_bits(frame);
        correct(frame, tables, options.tables, isp);
        rows.push_back(gain_row(tables, size));
        how = fmt::format("after {}", name_of(isp));
        heading.push_back(fmt::format("corrected with {} as the {} ISP does", options.tables, name_of(isp)));
    } else if (!options.corrected.empty()) {
        frame = read_corrected(options, frame);
        heading.push_back(fmt::format("corrected: {}", options.corrected));
    } else {
        return draw_sheet(heading, rows);
    }
    const Shown after = show(std::move(frame), pattern, size);
    rows.push_back(illumination_row(how + ": relative illumination", after, low));
    rows.push_back(residual_row(how, after));
    return draw_sheet(heading, rows);
}

void run(const Options& options, Report& report) {
    if (options.output != "-" && !extension_of(options.output).empty()
        && extension_of(options.output) != ".png")
        usage_failure("{}: a picture is written as PNG: give a name that ends in .png", options.output);
    keep_files_apart({options.raw.path, options.tables, options.corrected}, {options.output});
    const Progress progress("drawing " + options.output);
    report.add("output", options.output);
    write_file(options.output, encode_png(draw(options, report)));
}

} // namespace

void add_preview(Command app) {
    auto options = std::make_shared<Options>();
    Command command = app.subcommand("preview", "Draw the shading of a frame, before and after correction");
    add_raw_options(command, options->raw, "raw");
    command.option("-o,--output", options->output, "picture to write (PNG)").required().takes("FILE");
    Option tables =
        command.option("--tables", options->tables, "correct the frame with this table file").takes("FILE");
    command
        .option("--isp", options->isp, "ISP that corrects (default: the one that the tables were made for)")
        .takes("{tvessa2,vessal2}")
        .needs(tables);
    Option corrected = command.option("--corrected", options->corrected, "compare with this corrected frame")
                           .takes("FILE")
                           .excludes(tables);
    command
        .option("--corrected-black-level", options->corrected_black,
                "its black level (from the PGM comment, else 0)")
        .needs(corrected);
    command.footer("Each channel is drawn relative to its own brightest place, smoothed.\n\n"
                   "Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc calibrate flat.pgm -o tables.json\n"
                   "  zerklsc preview flat.pgm --tables tables.json -o preview.png");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
