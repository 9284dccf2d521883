// zerklsc compare: every calibration method on the same capture
#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/grid_options.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/correction.h"
#include "imaging/exposure.h"
#include "imaging/levels.h"
#include "imaging/otp_stream.h"
#include "io/json_value.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

struct Options {
    RawOptions raw;
    CalibrationSettings settings;
};

// The capture, black level taken off.
struct Capture {
    RawFrame light;
    BayerPattern pattern;
    BlackLevel black;
};

// The worst of the four channels.
struct Shading {
    double corner_to_centre = 1;
    double flatness = 0;
};

// What a method makes of the capture.
struct Outcome {
    int algorithm = 0;
    Shading after;
    double largest_gain = 0;
    std::array<double, 2> otp_loss{}; // largest gain error by precision mode, as a fraction
};

using Outcomes = std::vector<Outcome>;

Shading shading_of(const RawFrame& light) {
    Shading shading;
    const int blocks = std::min(usual_blocks, std::min(light.width, light.height) / 2);
    for (int plane = 0; plane < ZERKLSC_CHANNELS; ++plane) {
        const PlaneLevels levels = measure_plane(light, plane, blocks);
        shading.corner_to_centre = std::min(shading.corner_to_centre, levels.corner_to_centre());
        shading.flatness = std::max(shading.flatness, levels.flatness());
    }
    return shading;
}

double otp_loss(const GainTables& tables, int mode) {
    GainTables decoded = tables;
    decode_stream(encode_stream(tables, mode), "the OTP stream", decoded);
    return loss_of(tables, decoded, mode).worst();
}

Outcome try_method(const Capture& capture, const CalibrationSettings& settings) {
    const GainTables tables = calibrate(capture.light, capture.pattern, capture.black, settings);
    RawFrame frame = capture.light;
    scale_to_10_bits(frame);
    correct(frame, tables, "the calibrated tables", isp_of_algorithm(settings.algorithm));
    Outcome outcome{settings.algorithm, shading_of(frame), 0, {otp_loss(tables, 0), otp_loss(tables, 1)}};
    for (int plane = 0; plane < ZERKLSC_CHANNELS; ++plane)
        outcome.largest_gain = std::max(outcome.largest_gain, tables.largest_gain(plane));
    return outcome;
}

// Leaves out the methods that cannot take the capture with these settings, with a warning that says why.
Outcomes try_all(const Capture& capture, CalibrationSettings settings) {
    Outcomes outcomes;
    for (int algorithm = ZERKLSC_ALGORITHM_HALVANE; algorithm <= ZERKLSC_ALGORITHM_ORVEL_WEIGHTS;
         ++algorithm) {
        settings.algorithm = algorithm;
        try {
            const Progress progress(fmt::format("trying {}", algorithm_name(algorithm)));
            outcomes.push_back(try_method(capture, settings));
        } catch (const Failure& failure) {
            warn(fmt::format("{} is left out: {}", algorithm_name(algorithm), failure.what()));
        }
    }
    if (outcomes.empty())
        data_failure("{}: no method can calibrate it with step {} and radius {}: try smaller ones",
                     capture.light.name, settings.step, settings.radius);
    return outcomes;
}

void print_table(Report& report, const CalibrationSettings& settings, const Shading& before,
                 const Outcomes& outcomes) {
    report.print(fmt::format("step {}, radius {}, shading {} %; the worst of the four channels each\n",
                             settings.step, settings.radius, settings.shading_percent));
    std::vector<std::vector<std::string>> rows{{"algorithm", "ISP", "corner/centre before", "after",
                                                "off flat", "largest gain", "OTP loss, mode 0", "mode 1"}};
    for (const Outcome& o : outcomes)
        rows.push_back({fmt::format("{} {}", o.algorithm, algorithm_name(o.algorithm)),
                        name_of(isp_of_algorithm(o.algorithm)), percent(before.corner_to_centre),
                        percent(o.after.corner_to_centre), percent(o.after.flatness),
                        fmt::format("{:.3f}", o.largest_gain), percent(o.otp_loss[0]),
                        percent(o.otp_loss[1])});
    report.print(text_table(rows));
}

void add_outcomes(Report& report, const Shading& before, const Outcomes& outcomes) {
    report.add("corner_to_centre_before", rounded(before.corner_to_centre));
    report.add("flatness_before", rounded(before.flatness));
    JsonValue list = JsonValue::array();
    for (const Outcome& o : outcomes)
        list.add(JsonValue::object(
            {{"algorithm", o.algorithm},
             {"name", algorithm_name(o.algorithm)},
             {"isp", name_of(isp_of_algorithm(o.algorithm))},
             {"corner_to_centre_after", rounded(o.after.corner_to_centre)},
             {"flatness_after", rounded(o.after.flatness)},
             {"largest_gain", rounded(o.largest_gain)},
             {"otp_loss", JsonValue::array({rounded(o.otp_loss[0]), rounded(o.otp_loss[1])})}}));
    report.add("methods", std::move(list));
}

void run(const Options& options, Report& report) {
    Capture capture{read_raw(options.raw), {}, {}};
    RawFrame& frame = capture.light;
    capture.pattern = pattern_or_warning(frame);
    capture.black = black_level_of(frame, {});
    add_frame(report, frame, capture.pattern, capture.black);
    check_exposure(frame, capture.pattern, capture.black, usual_clip_limit);
    report.print(describe(frame, capture.pattern, capture.black));
    subtract_black(frame, capture.black);
    const Shading before = shading_of(frame);
    const Outcomes outcomes = try_all(capture, options.settings);
    add_outcomes(report, before, outcomes);
    print_table(report, options.settings, before, outcomes);
}

} // namespace

void add_compare(Command app) {
    auto options = std::make_shared<Options>();
    Command command =
        app.subcommand("compare", "Calibrate a capture by every method, and compare what they leave");
    add_raw_options(command, options->raw, "flat");
    add_grid_options(command, options->settings);
    command.footer(
        "Each method's tables correct the capture as their ISP does. off flat: largest deviation of\n"
        "11 x 11 blocks from the channel's mean. OTP loss: largest gain error of the decoded stream.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc compare flat.pgm --step 32");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
