// zerklsc preview: a picture of what the lens does to a frame, and of what a correction leaves
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/prediction.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/levels_json.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "preview/png.h"
#include "preview/rows.h"
#include "preview/sheet.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct PreviewOptions {
    RawOptions raw;
    std::string tables, corrected, corrected_black, isp, output;
};

// The frame that was corrected elsewhere, in the same geometry.
RawFrame read_corrected(const PreviewOptions& options, const RawDescription& before) {
    RawOptions raw = options.raw;
    raw.path = options.corrected;
    raw.black = options.corrected_black;
    RawFrame frame = read_raw(raw, UnknownBlack::take_0);
    if (frame.width != before.width || frame.height != before.height)
        data_failure("{}: is {} x {}, but {} is {} x {}: give the corrected form of the same frame",
                     frame.name, frame.width, frame.height, before.name, before.width, before.height);
    return frame;
}

// What the sheet consists of.
struct Sheet {
    std::vector<std::string> heading;
    std::vector<PanelRow> rows;
};

// What is shown of the frame in its corrected form, as the tables or another program make it, or nothing.
std::optional<Shown> show_corrected(const PreviewOptions& options, const GainTables& tables, RawFrame frame,
                                    PanelSize size, Sheet& sheet, std::string& how) {
    if (!options.tables.empty()) {
        const Isp isp = isp_of_option(options.isp, tables);
        how = fmt::format("after {}", name_of(isp));
        sheet.heading.push_back(
            fmt::format("corrected with {} as the {} ISP does", input_name(options.tables), name_of(isp)));
        correct_capture(frame, tables, input_name(options.tables), isp);
        return show(frame, size);
    }
    if (options.corrected.empty())
        return {};
    how = "after";
    sheet.heading.push_back(fmt::format("corrected: {}", options.corrected));
    const RawDescription before = frame;
    frame = RawFrame(); // There is no need for room for both.
    return show(read_corrected(options, before), size);
}

void report_shown(Report& report, const char* name, const Shown& shown) {
    JsonValue channels = JsonValue::array();
    for (const Colour colour : all_colours) {
        JsonValue channel = json_of(colour, levels_of(shown.levels, shown.pattern, colour));
        channel.add("clipped", rounded(shown.clipped_fraction[static_cast<size_t>(colour)]));
        channels.add(std::move(channel));
    }
    report.add(name,
               JsonValue::object({{"channels", std::move(channels)},
                                  {"colour_shading", json_of_colour_shading(shown.levels, shown.pattern)}}));
}

// Says what the colours of the sheet do not.
void finish(Report& report, Sheet& sheet, bool clipped) {
    JsonValue rows = JsonValue::array();
    for (PanelRow& row : sheet.rows) {
        rows.add(JsonValue::object({{"title", row.title},
                                    {"low", rounded(row.low)},
                                    {"high", rounded(row.high)},
                                    {"beyond_scale", rounded(row.beyond_scale())}}));
        row.title += beyond_scale_text(row);
    }
    report.add("rows", std::move(rows));
    if (clipped)
        sheet.heading.emplace_back("magenta: clipped samples");
}

Sheet make_sheet(const PreviewOptions& options, Report& report) {
    const GainTables tables = options.tables.empty() ? GainTables() : read_whole_gains(options.tables);
    RawFrame frame = options.tables.empty() ? read_raw(options.raw, UnknownBlack::take_0)
                                            : read_raw_for(options.raw, tables, input_name(options.tables));
    add_frame(report, frame);
    const PanelSize size = panel_size(frame.width, frame.height);
    const Shown before = show(frame, size);
    report_shown(report, "before", before);
    Sheet sheet{{describe(frame)}, {}};
    sheet.heading[0].pop_back();
    std::string how;
    const auto after = show_corrected(options, tables, std::move(frame), size, sheet, how);
    const double low = lowest_percent(before);
    sheet.rows.push_back(illumination_row("before: relative illumination", before, low));
    if (!options.tables.empty())
        sheet.rows.push_back(gain_row(tables, size));
    if (after) {
        report_shown(report, "after", *after);
        sheet.rows.push_back(illumination_row(how + ": relative illumination", *after, low));
        sheet.rows.push_back(residual_row(how, *after));
    }
    sheet.rows.push_back(colour_row(before, after ? &*after : nullptr, size));
    finish(report, sheet, before.any_clipped() || (after && after->any_clipped()));
    return sheet;
}

void run(const PreviewOptions& options, Report& report) {
    if (options.output != "-" && !extension_of(options.output).empty()
        && extension_of(options.output) != ".png")
        usage_failure("{}: a picture is written as PNG: give a name that ends in .png", options.output);
    keep_files_apart({options.raw.path, options.tables, options.corrected}, {options.output});
    const Progress progress("drawing " + output_name(options.output));
    report.add("output", options.output);
    const Sheet sheet = make_sheet(options, report);
    write_file(options.output, encode_png(draw_sheet(sheet.heading, sheet.rows)));
}

} // namespace

void add_preview(Command app) {
    auto options = std::make_shared<PreviewOptions>();
    Command command = app.subcommand("preview", "Draw the shading of a frame, before and after correction");
    add_raw_options(command, options->raw, "raw");
    command.option("-o,--output", options->output, "picture to write (PNG)").required().takes("FILE");
    Option tables =
        command.option("--tables", options->tables, "correct the frame with this table file").takes("FILE");
    add_isp_option(command, options->isp).needs(tables);
    Option corrected = command.option("--corrected", options->corrected, "compare with this corrected frame")
                           .takes("FILE")
                           .excludes(tables);
    command
        .option("--corrected-black-level", options->corrected_black,
                "its black level (from the PGM comment, else 0)")
        .takes("LEVELS")
        .needs(corrected);
    command.footer(
        "Each channel is drawn relative to its own brightest place, smoothed; R/G and B/G against the "
        "centre.\n"
        "Clipped samples are magenta. A title says which part of its row lies beyond the colour scale.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc calibrate flat.pgm -o tables.json\n"
        "  zerklsc preview flat.pgm --tables tables.json -o preview.png");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
