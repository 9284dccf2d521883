// zerklsc compare: every calibration method on the same capture
#include <algorithm>
#include <iterator>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/flat_check.h"
#include "commands/frame_text.h"
#include "commands/grid_options.h"
#include "commands/otp_loss.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/exposure.h"
#include "imaging/otp_stream.h"
#include "imaging/prediction.h"
#include "io/json_value.h"
#include "io/levels_json.h"
#include "io/text_table.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

struct CompareOptions {
    RawOptions raw;
    CalibrationSettings settings;
    FlatCheckOptions check;
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
    double packed_flatness = 0; // by the tables that a stream of mode 0 gives back
    double largest_gain = 0;
    std::array<double, 2> otp_loss{}; // largest gain error by precision mode, as a fraction
};

using Outcomes = std::vector<Outcome>;

Shading shading_of(const FrameLevels& levels) {
    Shading shading;
    for (const PlaneLevels& plane : levels)
        shading.corner_to_centre = std::min(shading.corner_to_centre, plane.corner_to_centre());
    shading.flatness = worst_flatness(levels);
    return shading;
}

// `light` is the capture, black level taken off.
Outcome try_method(const RawFrame& capture, const RawFrame& light, const CalibrationSettings& settings) {
    check_grid_options(light, settings);
    const GainTables tables = calibrate(light, *capture.pattern, *capture.black, settings);
    const auto corrected = [&](const GainTables& by) {
        RawFrame copy = capture;
        subtract_black(copy, tables.black);
        return shading_of(predict_levels(copy, tables.black, by, "the calibrated tables",
                                         isp_of_algorithm(settings.algorithm)));
    };
    GainTables packed = tables;
    decode_stream(encode_stream(tables, 0), "the OTP stream", packed);
    Outcome outcome{settings.algorithm,
                    corrected(tables),
                    corrected(packed).flatness,
                    0,
                    {loss_of(tables, packed, 0).worst(), stream_loss(tables, 1).worst()}};
    for (int plane = 0; plane < ZERKLSC_CHANNELS; ++plane)
        outcome.largest_gain = std::max(outcome.largest_gain, tables.largest_gain(plane));
    return outcome;
}

// Leaves out the methods that cannot take the capture with these settings, with a warning that says why.
// `clean` is the capture without what is kept out of gains.
Outcomes try_all(const RawFrame& capture, const RawFrame& clean, CalibrationSettings settings) {
    RawFrame light = clean;
    subtract_black(light, BlackLevel(*capture.black));
    Outcomes outcomes;
    for (int algorithm = ZERKLSC_ALGORITHM_HALVANE; algorithm <= ZERKLSC_ALGORITHM_ORVEL_WEIGHTS;
         ++algorithm) {
        settings.algorithm = algorithm;
        try {
            const Progress progress(fmt::format("trying {}", algorithm_name(algorithm)));
            outcomes.push_back(try_method(capture, light, settings));
        } catch (const Failure& failure) {
            warn(fmt::format("{} is left out: {}", algorithm_name(algorithm), failure.what()));
        }
    }
    if (outcomes.empty())
        data_failure("{}: no method can calibrate it with step {} and radius {}: try smaller ones",
                     capture.name, settings.step, settings.radius);
    return outcomes;
}

void print_table(Report& report, const CalibrationSettings& settings, const Shading& before,
                 const Outcomes& outcomes) {
    report.print(fmt::format("step {}, radius {}, shading {} %; the worst of the four channels each\n",
                             settings.step, settings.radius, settings.shading_percent));
    std::vector<std::vector<std::string>> rows{{"algorithm", "ISP", "corner/centre before", "after",
                                                "off flat", "packed", "largest gain", "OTP loss, mode 0",
                                                "mode 1"}};
    for (const Outcome& o : outcomes)
        rows.push_back({fmt::format("{} {}", o.algorithm, algorithm_name(o.algorithm)),
                        name_of(isp_of_algorithm(o.algorithm)), percent(before.corner_to_centre),
                        percent(o.after.corner_to_centre), percent(o.after.flatness),
                        percent(o.packed_flatness), fmt::format("{:.3f}", o.largest_gain),
                        percent(o.otp_loss[0]), percent(o.otp_loss[1])});
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
             {"flatness_packed", rounded(o.packed_flatness)},
             {"largest_gain", rounded(o.largest_gain)},
             {"otp_loss", JsonValue::array({rounded(o.otp_loss[0]), rounded(o.otp_loss[1])})}}));
    report.add("methods", std::move(list));
}

// What leaves least of the shading, with the tables as they are or packed. Methods that differ by less than
// noise does are equal; of them, one is preferred whose tables otp encode packs without --force, then what
// leaves least in the other way.
const Outcome& best_of(const Outcomes& outcomes, bool packed) {
    constexpr double noise = 0.001;
    const auto left = [](const Outcome& o, bool is_packed) {
        return is_packed ? o.packed_flatness : o.after.flatness;
    };
    const auto rank = [&](const Outcome& o) {
        return std::pair(packed && 100 * o.otp_loss[0] > limit_of(0, 0), left(o, !packed));
    };
    double least = left(outcomes.front(), packed);
    for (const Outcome& o : outcomes)
        least = std::min(least, left(o, packed));
    const Outcome* best = nullptr;
    for (const Outcome& o : outcomes)
        if (left(o, packed) <= least + noise && (best == nullptr || rank(o) < rank(*best)))
            best = &o;
    return *best;
}

std::string option_of(const Outcome& o) {
    return fmt::format("--algorithm {}, flat to {}, packed to {}", algorithm_name(o.algorithm),
                       percent(o.after.flatness), percent(o.packed_flatness));
}

void recommend(Report& report, const Outcomes& outcomes) {
    const Outcome& flattest = best_of(outcomes, false);
    const Outcome& best_packed = best_of(outcomes, true);
    const bool packable = best_packed.packed_flatness <= flat_enough;
    const Outcome& best = packable ? best_packed : flattest;
    report.print(
        fmt::format("recommended for {}: {}\n", name_of(isp_of_algorithm(best.algorithm)), option_of(best)));
    if (!packable)
        report.print(
            fmt::format("packed, every method leaves {} or more: another --step, or tables that are not "
                        "packed, are what helps\n",
                        percent(best_packed.packed_flatness)));
    if (flattest.algorithm != best.algorithm)
        report.print(fmt::format("where the tables are never packed: {}\n", option_of(flattest)));
    for (const Isp isp : {Isp::tvessa2, Isp::vessal2}) {
        Outcomes of_isp;
        std::ranges::copy_if(outcomes, std::back_inserter(of_isp),
                             [&](const Outcome& o) { return isp_of_algorithm(o.algorithm) == isp; });
        if (isp != isp_of_algorithm(best.algorithm) && !of_isp.empty())
            report.print(fmt::format("for {}: {}\n", name_of(isp), option_of(best_of(of_isp, packable))));
    }
    report.add("recommended", algorithm_name(best.algorithm));
    report.add("flattest", algorithm_name(flattest.algorithm));
}

void run(const CompareOptions& options, Report& report) {
    limits_of(options.check);
    const RawFrame capture = read_raw(options.raw, UnknownBlack::refuse);
    add_frame(report, capture);
    report.print(describe(capture));
    const FrameLevels levels = measure_planes(capture, *capture.black, usual_blocks(capture));
    const CalibrationSettings settings = with_step(options.settings, capture);
    const CheckedFlats checked =
        check_flats({&capture, 1}, settings, options.check, usual_clip_limit, report);
    const Shading before = shading_of(levels);
    const Outcomes outcomes =
        try_all(capture, checked.cleaned.empty() ? capture : checked.cleaned.front(), settings);
    add_outcomes(report, before, outcomes);
    print_table(report, settings, before, outcomes);
    recommend(report, outcomes);
}

} // namespace

void add_compare(Command app) {
    auto options = std::make_shared<CompareOptions>();
    Command command =
        app.subcommand("compare", "Calibrate a capture by every method, and compare what they leave");
    add_raw_options(command, options->raw, "flat");
    add_grid_options(command, options->settings);
    add_flat_check_options(command, options->check);
    command.footer(
        "Each method's tables correct the capture as their ISP does. off flat: largest deviation of\n"
        "11 x 11 blocks from the channel's mean. OTP loss: largest gain error of the decoded stream.\n"
        "packed: off flat, when the tables have been through a stream of mode 0. Recommended is what leaves\n"
        "least then, or unpacked where that is beyond 2 % for every method; among equals what otp encode "
        "packs\n"
        "without --force.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc compare flat.pgm --step 32");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
