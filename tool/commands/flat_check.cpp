// add_limit_option, check_flats
#include "commands/flat_check.h"

#include <algorithm>

#include <fmt/format.h>

#include "imaging/exposure.h"
#include "io/findings_json.h"
#include "terminal.h"

namespace zerklsc::tool {
void add_limit_option(Command command, FlatCheckOptions& options) {
    command.repeated(
        "--limit", options.limits,
        "NAME=WARN,REFUSE: other limits of a check, as shadow=3,6 or dust=none,none; may be given again");
}

void add_flat_check_options(Command command, FlatCheckOptions& options) {
    add_limit_option(command, options);
    command.flag("--force", options.force, "use a capture that the checks refuse");
}

CheckLimits limits_of(const FlatCheckOptions& options) {
    CheckLimits limits;
    for (const std::string& limit : options.limits)
        limits.set(limit);
    return limits;
}

std::string sentence_of(const std::string& name, const Finding& f) {
    const bool refused = f.verdict == Verdict::refuse;
    // What is good lies on the other side of a limit than what is refused.
    const bool below = f.limits.large_is_bad() != refused;
    const auto& limit = refused ? f.limits.refuse : f.limits.warn;
    return fmt::format("{}: {}{} is {:.4g}{}{} ({} {} {}): {}", name, f.name,
                       f.plane.empty() ? "" : " of " + f.plane, f.value, f.unit.empty() ? "" : " ", f.unit,
                       refused ? "refused" : "good", below ? "below" : "above", limit.value_or(0), f.advice);
}

bool can_be_checked(const RawFrame& frame) {
    constexpr int least = 2 * 8 * tile_side;
    return std::min(frame.width, frame.height) >= least;
}

std::vector<Findings> check_flats(std::span<const RawFrame> captures, const CalibrationSettings& settings,
                                  const FlatCheckOptions& options, double clip_limit, Report& report) {
    CheckLimits limits = limits_of(options);
    limits.set(fmt::format("clipping={},{}", clip_limit / 10, clip_limit));
    std::vector<Findings> found;
    Findings all;
    std::string refusal;
    for (const RawFrame& frame : captures) {
        found.emplace_back();
        if (!can_be_checked(frame)) {
            check_exposure(frame, measure_planes(frame, *frame.black, usual_blocks(frame)), clip_limit);
            continue;
        }
        const FlatCapture capture{frame, *frame.pattern, *frame.black, settings};
        found.back() = check_capture(capture, analyse(frame, capture.black), limits);
        for (const Finding& finding : found.back()) {
            all.push_back(finding);
            if (finding.verdict == Verdict::refuse && refusal.empty() && !options.force)
                refusal = sentence_of(frame.name, finding);
            else if (finding.verdict != Verdict::pass)
                warn(sentence_of(frame.name, finding));
        }
    }
    report.add("checks", json_of(all));
    if (!refusal.empty())
        data_failure("{}; --force uses the capture all the same", refusal);
    return found;
}

} // namespace zerklsc::tool
