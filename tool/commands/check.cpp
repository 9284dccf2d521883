// zerklsc check: whether a flat-field capture is one
#include <algorithm>
#include <cmath>
#include <memory>

#include <fmt/format.h>

#include "check/outliers.h"
#include "check/series.h"
#include "commands.h"
#include "commands/flat_check.h"
#include "commands/frame_text.h"
#include "commands/grid_options.h"
#include "commands/raw_options.h"
#include "io/findings_json.h"
#include "io/levels_json.h"
#include "io/table_json.h"
#include "io/text_table.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct CheckOptions {
    std::vector<std::string> flats;
    std::string turned, reference;
    RawOptions raw;
    CalibrationSettings settings;
    std::string algorithm = usual_algorithm;
    FlatCheckOptions check;
};

std::string limit_text(const std::optional<double>& limit) {
    return limit ? fmt::format("{:g}", *limit) : "-";
}

void print_findings(Report& report, const Findings& findings) {
    std::vector<std::vector<std::string>> rows{
        {"check", "plane", "value", "unit", "warn", "refuse", "verdict"}};
    for (const Finding& f : findings)
        rows.push_back({f.name, f.plane, short_number(f.value, 3), f.unit, limit_text(f.limits.warn),
                        limit_text(f.limits.refuse), std::isnan(f.value) ? "-" : name_of(f.verdict)});
    report.print(text_table(rows));
    for (const Finding& f : findings)
        if (!f.advice.empty())
            report.print(fmt::format("{}: {}: {}\n", name_of(f.verdict), f.name, f.advice));
}

RawFrame read_frame(const CheckOptions& options, const std::string& path) {
    RawOptions raw = options.raw;
    raw.path = path;
    RawFrame frame = read_raw(raw, UnknownBlack::take_0);
    if (!can_be_checked(frame))
        data_failure("{}: is {} x {}: the checks need frames of at least {} x {}", path, frame.width,
                     frame.height, smallest_checked, smallest_checked);
    return frame;
}

// Another capture of the module whose first one is being judged.
struct Second {
    RawFrame frame;
    Analysis analysis;
};

Second read_second(const CheckOptions& options, const std::string& path, const FlatCapture& first) {
    Second second{read_frame(options, path), {}};
    if (second.frame.width != first.frame.width || second.frame.height != first.frame.height)
        data_failure("{}: is {} x {}, and the first capture {} x {}: give captures of one module", path,
                     second.frame.width, second.frame.height, first.frame.width, first.frame.height);
    second.analysis = analyse(second.frame, first.black);
    return second;
}

// The findings of the second capture and of all later ones are about how they differ from the first.
void check_others(const CheckOptions& options, const Judgement& judgement) {
    const FlatCapture& first = judgement.capture;
    for (size_t i = 1; i < options.flats.size(); ++i) {
        const Second other = read_second(options, options.flats[i], first);
        check_repetition(judgement, {other.frame, other.analysis});
        if (i == 1 && first.frame.samples != other.frame.samples)
            check_black_level_of_pair(judgement, {other.frame, other.analysis});
        const FlatCapture capture{other.frame, first.pattern, first.black, first.settings};
        const Findings own =
            check_capture(capture, other.analysis, find_outliers(capture, other.analysis), judgement.limits);
        for (Finding finding : own)
            if (finding.verdict == Verdict::refuse) {
                finding.advice = fmt::format("{}: {}", options.flats[i], finding.advice);
                judgement.findings.push_back(finding);
            }
    }
    if (!options.turned.empty()) {
        const Second turned = read_second(options, options.turned, first);
        check_turned(judgement, {turned.frame, turned.analysis});
    }
    if (!options.reference.empty())
        check_reference(judgement, read_whole_gains(options.reference));
}

void refuse(const std::string& name, const Findings& findings) {
    std::string names;
    for (const Finding& f : findings)
        if (f.verdict == Verdict::refuse)
            names += (names.empty() ? "" : ", ") + f.name;
    data_failure("{}: refused for {}", name, names);
}

// Adds what it finds as it goes, and returns the frame's name.
std::string judge(const CheckOptions& options, Report& report, Findings& findings) {
    const CheckLimits limits = limits_of(options.check);
    const int algorithm = algorithm_from(options.algorithm);
    const RawFrame frame = read_frame(options, options.flats.front());
    add_frame(report, frame);
    report.print(describe(frame));
    CalibrationSettings settings = with_step(options.settings, frame);
    settings.algorithm = algorithm;
    const Analysis analysis = analyse(frame, *frame.black);
    const FlatCapture capture{frame, *frame.pattern, *frame.black, settings};
    findings = check_capture(capture, analysis, find_outliers(capture, analysis), limits);
    check_others(options, {capture, analysis, limits, findings});
    return frame.name;
}

void run(const CheckOptions& options, Report& report) {
    Findings findings;
    std::string name;
    try {
        name = judge(options, report, findings);
    } catch (const Failure&) {
        // The document holds the checks as far as they were made.
        report.add("checks", json_of(findings));
        throw;
    }
    report.add("checks", json_of(findings));
    print_findings(report, findings);
    // A frame of which something had to be assumed is not simply good.
    const Verdict verdict = std::max(worst_of(findings), warnings().empty() ? Verdict::pass : Verdict::warn);
    report.print(fmt::format("verdict: {}\n", name_of(verdict)));
    if (verdict == Verdict::warn)
        report.doubt();
    if (verdict == Verdict::refuse)
        refuse(name, findings);
}

std::string list_of_checks() {
    std::string text = "Checks with the limits from which they warn and refuse, for --limit and --preset:\n";
    for (const CheckLimit& check : usual_limits())
        text += fmt::format("  {:<28} {}: {}\n",
                            fmt::format("{}={},{}", check.name,
                                        check.usual.warn ? limit_text(check.usual.warn) : "none",
                                        check.usual.refuse ? limit_text(check.usual.refuse) : "none"),
                            check.unit, check.meaning);
    return text + "\n";
}

} // namespace

void add_check(Command app) {
    auto options = std::make_shared<CheckOptions>();
    Command command =
        app.subcommand("check", "Tell whether a capture is a flat field that can be calibrated");
    add_raw_options(command, options->raw, options->flats, "flat");
    command
        .option("--turned", options->turned,
                "a capture with the module turned by 180 degrees under the same light")
        .takes("FILE");
    command.option("--reference", options->reference, "table file of a good module of this kind")
        .takes("FILE");
    add_algorithm_option(command, options->algorithm);
    add_grid_options(command, options->settings);
    add_limit_option(command, options->check);
    command.footer("Exit code 0: pass or warn; 3: refuse.\n\n" + list_of_checks()
                   + "Example:\n"
                     "  zerklsc simulate -o flat.pgm\n"
                     "  zerklsc check flat.pgm");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
