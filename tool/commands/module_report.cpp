// zerklsc report: everything about a module's calibration on one page
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/flat_check.h"
#include "commands/frame_text.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/prediction.h"
#include "io/file_identity.h"
#include "io/findings_json.h"
#include "io/input_file.h"
#include "io/input_record.h"
#include "io/levels_json.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "io/text_table.h"
#include "preview/rows.h"
#include "preview/sheet.h"
#include "report/document.h"
#include "report/page.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct ReportOptions {
    RawOptions raw;
    std::string tables, isp, output;
    FlatCheckOptions check;
};

void add_inputs(Report& report, const ReportOptions& options, const std::optional<FileState>& flat,
                const std::optional<FileState>& tables) {
    report.add("inputs", JsonValue::array({json_of(input_record("flat field", options.raw.path, flat)),
                                           json_of(input_record("tables", options.tables, tables))}));
}

void add_parameters(Report& report, const GainTables& tables, Isp isp) {
    report.add("algorithm", algorithm_name(tables.algorithm));
    report.add("step", tables.step);
    report.add("filter_radius", tables.filter_radius);
    report.add("shading_percent", tables.shading_percent);
    report.add("table_size", JsonValue::array({tables.table_width, tables.table_height}));
    report.add("isp", name_of(isp));
}

void add_measures(Report& report, const GainTables& tables, const Shown& before, const Shown& after) {
    report.add("channels", channels_of(before.levels, after.levels, tables));
    report.add("colour_shading",
               JsonValue::object({{"before", json_of_colour_shading(before.levels, before.pattern)},
                                  {"after", json_of_colour_shading(after.levels, after.pattern)}}));
    report.add("otp", otp_of(tables));
    report.add("sections", sections_of(before.levels, after.levels, tables.pattern));
    report.print(fmt::format("flat to {} before and {} after correction, the worst channel\n",
                             percent(worst_flatness(before.levels)), percent(worst_flatness(after.levels))));
}

// The capture as the calibration of these tables would judge it.
void add_checks(Report& report, const ReportOptions& options, const RawFrame& frame,
                const GainTables& tables) {
    CalibrationSettings settings;
    settings.algorithm = tables.algorithm;
    settings.step = tables.step;
    settings.radius = tables.filter_radius;
    settings.shading_percent = tables.shading_percent;
    const Findings findings = check_flat(frame, settings, limits_of(options.check));
    report.add("checks", json_of(findings));
    if (worst_of(findings) != Verdict::pass)
        report.doubt();
    for (const Finding& finding : findings)
        if (finding.verdict != Verdict::pass)
            report.print(sentence_of(one_line(frame.name), finding) + "\n");
}

std::vector<PanelRow> maps_of(const GainTables& tables, const Shown& before, const Shown& after,
                              PanelSize size) {
    const double low = lowest_percent(before);
    return {illumination_row("relative illumination before", before, low), gain_row(tables, size),
            illumination_row("relative illumination after", after, low), residual_row("after", after),
            colour_row(before, &after, size)};
}

void run(const ReportOptions& options, Report& report) {
    if (options.output != "-" && extension_of(options.output) != ".html")
        usage_failure("{}: a report is written as HTML: give a name that ends in .html", options.output);
    keep_files_apart({options.raw.path, options.tables}, {options.output});
    const std::string tables_name = input_name(options.tables);
    const auto flat_state = file_state(options.raw.path), tables_state = file_state(options.tables);
    const GainTables tables = read_whole_gains(options.tables);
    const Isp isp = isp_of_option(options.isp, tables);
    RawFrame frame = read_raw_for(options.raw, tables, tables_name);
    const Progress progress("writing " + output_name(options.output));
    add_frame(report, frame);
    report.print(describe(frame));
    report.add("program", "zerklsc " ZERKLSC_VERSION);
    add_inputs(report, options, flat_state, tables_state);
    add_parameters(report, tables, isp);
    add_checks(report, options, frame, tables);
    const PanelSize size = panel_size(frame.width, frame.height);
    const Shown before = show(frame, size);
    correct_capture(frame, tables, tables_name, isp);
    const Shown after = show(frame, size);
    add_measures(report, tables, before, after);
    write_file(options.output, encode_page(PageKind::report, report.json(exit_success, ""),
                                           maps_of(tables, before, after, size)));
}

} // namespace

void add_report(Command app) {
    auto options = std::make_shared<ReportOptions>();
    Command command =
        app.subcommand("report", "Put all about a module's calibration on one page that opens offline");
    add_raw_options(command, options->raw, "flat");
    command.option("--tables", options->tables, "table file of the module").required().takes("FILE");
    add_isp_option(command, options->isp);
    add_limit_option(command, options->check);
    command.option("-o,--output", options->output, "page to write (HTML)").required().takes("FILE");
    command.footer("The page holds maps, cross-sections and numbers before and after the correction by the "
                   "exact model\n"
                   "of the ISP, and asks for nothing from anywhere. --json prints the numbers that stand on "
                   "it.\n\n"
                   "Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc calibrate flat.pgm -o tables.json\n"
                   "  zerklsc report flat.pgm --tables tables.json -o report.html");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
