// usual_limits, CheckLimits
#include "check/limits.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "failure.h"

namespace zerklsc::tool {
namespace {

std::optional<double> limit_from(const std::string& whole, const std::string& text) {
    if (text == "none")
        return {};
    double value = 0;
    const auto [next, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || next != text.data() + text.size() || !(value >= -1e9 && value <= 1e9))
        usage_failure("--limit: {} is not NAME=WARN,REFUSE with two numbers, or none for either", whole);
    return value;
}

} // namespace

const std::vector<CheckLimit>& usual_limits() {
    constexpr auto none = std::nullopt;
    static const std::vector<CheckLimit> limits{
        {"clipping", "%", {0.01, 0.1}, "samples of a plane at the white level, in clusters"},
        {"plateau", "%", {0.02, 0.1}, "samples of a plane heaped at one highest value below the white level"},
        {"exposure", "%", {10, 3}, "light of the brightest plane, of the range above black"},
        {"plane-level", "%", {10, 4}, "light of the darkest plane, of the brightest plane's"},
        {"noise", "%", {20, 35}, "noise of one sample where the plane is bright"},
        {"node-noise", "%", {1, 5}, "noise of a node's window in the darkest corner: that of the gain"},
        {"dead-area", "tiles", {1, 4}, "tiles of 8 x 8 plane samples, 2 x 2 in small frames, without light"},
        {"corner",
         "%",
         {70, refused_corner},
         "light of the outermost samples of a corner, of what lens and surroundings explain"},
        {"gain", "x", {10, 16}, "largest gain that a node needs"},
        {"fall-off", "%", {97, none}, "light at the edge of the frame, of the brightest"},
        {"uneven-light", "%", {17.5, 28}, "fall of the light over the frame that is not the lens's"},
        {"optical-centre", "%", {15, 30}, "distance of the optical centre from the middle, of the width"},
        {"asymmetry", "%", {12, 25}, "smooth shading that is no lens's"},
        {"plane-disagreement", "%", {8, none}, "difference of the light's slope between planes"},
        {"shadow", "%", {4, 8}, "depth of the darkest area"},
        {"flare", "%", {2.8, 35}, "height of the brightest area; a third of it near the edge"},
        {"structure", "x", {1.25, 1.8}, "differences between rows, of those between columns"},
        {"texture", "%", {1.2, 2.6}, "deviation of nodes' windows from their surroundings, noise taken off"},
        {"flicker", "%", {1, 8}, "largest deviation of rows"},
        {"grain", "%", {1.3, 20}, "deviation of samples that grows with the light, as a pattern's does"},
        {"dust", "spots", {1, 2000}, "small soft shadows"},
        {"defects", "%", {0.02, 5}, "samples far away from their surroundings"},
        {"dead-lines", "lines", {1, 100}, "rows and columns of a plane that stand out"},
        {"black-level",
         "%",
         {4, none},
         "distance of the stated black level from where the noise ends, of the range"},
        {"green-balance", "%", {4, 30}, "difference of Gr and Gb"},
        {"pattern", "%", {50, none}, "difference of the greens, of that of the other two planes"},
        {"grid", "nodes", {2.5, 1.5}, "nodes of the grid along the shorter side"},
        {"step", "x", {5, none}, "coarser or finer than the step that suits the frame's width"},
        {"isp", "", {2, none}, "the method's ISP: 2 reads the tables wrong, 1 corrects unevenly"},
        {"otp-stream", "", {2, none}, "the OTP stream: 2 cannot hold the tables, 1 not exactly"},
        {"fit-reach", "%", {10, -1000}, "how far algorithm beta measures into the last cell, of the step"},
        {"drift", "%", {2, 10}, "change of brightness between captures"},
        {"movement", "%", {1.5, 6}, "change of the shading between captures"},
        {"duplicate", "frames", {none, 1}, "captures that are byte for byte another one"},
        {"turned-light", "%", {5, 30}, "fall of the light by a capture with the module turned"},
        {"reference", "%", {10, 40}, "largest distance from the shading of the reference tables"},
        {"orientation", "", {none, 1}, "turned, mirrored or exchanged against the reference tables"},
    };
    return limits;
}

CheckLimits::CheckLimits() {
    for (const CheckLimit& limit : usual_limits())
        limits_[limit.name] = limit.usual;
}

void CheckLimits::set(const std::string& text) {
    const size_t equals = text.find('='), comma = text.find(',');
    const auto found = limits_.find(text.substr(0, equals));
    if (found == limits_.end())
        usage_failure("--limit: {} is no check: zerklsc check --help lists them", text.substr(0, equals));
    if (equals == std::string::npos || comma == std::string::npos)
        usage_failure("--limit: {} is not NAME=WARN,REFUSE with two numbers, or none for either", text);
    found->second = {limit_from(text, text.substr(equals + 1, comma - equals - 1)),
                     limit_from(text, text.substr(comma + 1))};
}

Finding CheckLimits::judge(const std::string& name, const std::string& plane, double value,
                           const std::string& advice) const {
    const auto known =
        std::ranges::find_if(usual_limits(), [&](const CheckLimit& l) { return name == l.name; });
    const Limits& limits = limits_.at(name);
    const Verdict verdict = limits.judge(value);
    return {name, plane, value, known->unit, limits, verdict, verdict == Verdict::pass ? "" : advice};
}

Finding CheckLimits::not_judged(const std::string& name, const std::string& reason) const {
    Finding finding = judge(name, "", 0, "");
    finding.value = std::nan("");
    finding.verdict = Verdict::pass;
    finding.advice = "not judged: " + reason;
    return finding;
}

} // namespace zerklsc::tool
