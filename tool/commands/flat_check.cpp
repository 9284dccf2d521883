// short_number, add_limit_option, add_flat_check_options, limits_of, sentence_of, can_be_checked, check_flat,
// CheckedFlats, examine_flats, check_flats
#include "commands/flat_check.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/keep_out.h"
#include "io/findings_json.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

// Warns of what is not good, and keeps the first sentence that refuses.
void judge(const std::string& name, const Findings& findings, bool force, std::string& refusal) {
    for (const Finding& finding : findings)
        if (finding.verdict == Verdict::refuse && refusal.empty() && !force)
            refusal = sentence_of(name, finding);
        else if (finding.verdict != Verdict::pass)
            warn(sentence_of(name, finding));
}

// From half diagonals around the middle to fractions of width and height.
std::array<std::array<double, 2>, 4> optical_centres(const Analysis& analysis) {
    std::array<std::array<double, 2>, 4> centres{};
    for (size_t plane = 0; plane < centres.size(); ++plane) {
        const double aspect = analysis.planes[plane].cells.aspect;
        const double half_diagonal = std::sqrt(1 + aspect * aspect) / 2; // in widths
        const auto& [u, v] = analysis.planes[plane].surface.centre;
        centres[plane] = {0.5 + u * half_diagonal, 0.5 + v * half_diagonal / aspect};
    }
    return centres;
}

struct Found {
    const FlatCapture& capture;
    const Analysis& analysis;
    const Outliers& outliers;
};

void clean(std::span<const RawFrame> captures, const Found& found, CheckedFlats& flats) {
    if (flats.cleaned.empty())
        flats.cleaned.assign(captures.begin(), captures.end());
    const size_t number = flats.kept_out.size() - 1;
    flats.kept_out[number] = count_of(found.outliers);
    keep_out(found.outliers, found.analysis, found.capture.black, flats.cleaned[number]);
}

void report_kept_out(const std::vector<KeptOut>& kept_out, Report& report) {
    KeptOut all;
    for (const KeptOut& one : kept_out) {
        all.samples += one.samples;
        all.lines += one.lines;
        all.dust_spots += one.dust_spots;
    }
    if (all.any())
        report.print(fmt::format("kept out of the gains: {} samples, {} lines, {} spots of dust\n",
                                 all.samples, all.lines, all.dust_spots));
    report.add("kept_out", json_of(all));
}

} // namespace

std::string short_number(double value, int digits) {
    if (!std::isfinite(value))
        return "-";
    const double size = std::abs(value);
    if (size >= std::pow(10.0, digits - 1))
        return fmt::format("{:.0f}", value);
    if (size >= 1e-3)
        return fmt::format("{:.{}g}", value, digits);
    return size < 5e-6 ? "0" : fmt::format("{:.5f}", value);
}

void add_limit_option(Command command, FlatCheckOptions& options) {
    command
        .repeated("--limit", options.limits,
                  "other limits of a check, as shadow=3,6 or dust=none,none; may be given again")
        .takes("NAME=WARN,REFUSE");
}

void add_flat_check_options(Command command, FlatCheckOptions& options) {
    add_limit_option(command, options);
    command.flag("--force", options.force, "use a capture that the checks refuse");
    command.flag("--keep-outliers", options.keep_outliers,
                 "average defects, dead lines and dust too, which are kept out of the gains otherwise");
}

CheckLimits limits_of(const FlatCheckOptions& options, double clip_limit) {
    // Of no sample at all, 0 % are clipped, which every limit allows.
    constexpr double least = 1e-9;
    CheckLimits limits;
    limits.set(fmt::format("clipping={},{}", std::max(clip_limit / 10, least), std::max(clip_limit, least)));
    for (const std::string& limit : options.limits)
        limits.set(limit);
    return limits;
}

std::string sentence_of(const std::string& name, const Finding& f) {
    const bool refused = f.verdict == Verdict::refuse;
    // What is good lies on the other side of a limit than what is refused.
    const bool below = f.limits.large_is_bad() != refused;
    const auto& limit = refused ? f.limits.refuse : f.limits.warn;
    return fmt::format("{}: {}{} is {}{}{} ({} {} {}): {}", name, f.name,
                       f.plane.empty() ? "" : " of " + f.plane, short_number(f.value, 4),
                       f.unit.empty() ? "" : " ", f.unit, refused ? "refused" : "good",
                       below ? "below" : "above", short_number(limit.value_or(0), 4), f.advice);
}

bool can_be_checked(const RawFrame& frame) {
    return std::min(frame.width, frame.height) >= smallest_checked;
}

Findings check_flat(const RawFrame& frame, const CalibrationSettings& settings, const CheckLimits& limits) {
    if (!can_be_checked(frame))
        return {};
    const FlatCapture capture{frame, *frame.pattern, *frame.black, settings};
    const Analysis analysis = analyse(frame, capture.black);
    return check_capture(capture, analysis, find_outliers(capture, analysis), limits);
}

Findings CheckedFlats::all_findings() const {
    Findings all;
    for (const Findings& own : findings)
        all.insert(all.end(), own.begin(), own.end());
    return all;
}

CheckedFlats examine_flats(std::span<const RawFrame> captures, const CalibrationSettings& settings,
                           const FlatCheckOptions& options, double clip_limit) {
    const CheckLimits limits = limits_of(options, clip_limit);
    CheckedFlats flats;
    for (const RawFrame& frame : captures) {
        flats.findings.emplace_back();
        flats.kept_out.emplace_back();
        if (!can_be_checked(frame)) {
            check_exposure(frame, measure_planes(frame, *frame.black, usual_blocks(frame)), clip_limit);
            warn(fmt::format("{}: is {} x {}: only the exposure was judged, the other checks need {} x {}",
                             frame.name, frame.width, frame.height, smallest_checked, smallest_checked));
            continue;
        }
        const FlatCapture capture{frame, *frame.pattern, *frame.black, settings};
        const Analysis analysis = analyse(frame, capture.black);
        const Outliers outliers = find_outliers(capture, analysis);
        const Findings& findings = flats.findings.back() = check_capture(capture, analysis, outliers, limits);
        judge(frame.name, findings, options.force, flats.refusal);
        if (!flats.optical_centre)
            flats.optical_centre = optical_centres(analysis);
        if (worst_of(findings) != Verdict::refuse && outliers.any() && !options.keep_outliers)
            clean(captures, {capture, analysis, outliers}, flats);
    }
    return flats;
}

CheckedFlats check_flats(std::span<const RawFrame> captures, const CalibrationSettings& settings,
                         const FlatCheckOptions& options, double clip_limit, Report& report) {
    CheckedFlats flats = examine_flats(captures, settings, options, clip_limit);
    report.add("checks", json_of(flats.all_findings()));
    if (!flats.refusal.empty())
        data_failure("{}; --force uses the capture all the same", flats.refusal);
    report_kept_out(flats.kept_out, report);
    return flats;
}

} // namespace zerklsc::tool
