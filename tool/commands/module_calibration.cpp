// MethodOptions, add_method_options, settings_for, calibrate_flats, warn_about_gains, predict,
// warn_about_prediction
#include "commands/module_calibration.h"

#include <algorithm>

#include <fmt/format.h>

#include "commands/frame_text.h"
#include "commands/grid_options.h"
#include "imaging/exposure.h"
#include "imaging/prediction.h"
#include "io/text_table.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// Takes the black level off the frame.
GainTables calibrate_light(RawFrame& frame, const CalibrationSettings& settings) {
    check_grid_options(frame, settings);
    const BlackLevel black = *frame.black;
    subtract_black(frame, black);
    return calibrate(frame, *frame.pattern, black, settings);
}

// The average without what is kept out of gains.
RawFrame& clean_average(FlatCaptures& flats, CheckedFlats& checked) {
    if (checked.cleaned.size() == 1)
        return checked.cleaned.front();
    if (!checked.cleaned.empty())
        flats.averaged = average_of(checked.cleaned, flats.averaging);
    return flats.averaged ? *flats.averaged : flats.captures.front();
}

} // namespace

MethodOptions::MethodOptions() : algorithm(usual_algorithm), clip_limit(usual_clip_limit) {}

void add_method_options(Command command, MethodOptions& options) {
    add_algorithm_option(command, options.algorithm);
    add_grid_options(command, options.settings);
    command.option("--clip-limit", options.clip_limit, "refuse when more of a channel is clipped, percent")
        .range(0.0, 100.0)
        .show_default();
    add_flat_check_options(command, options.check);
}

CalibrationSettings settings_for(const MethodOptions& options, const RawFrame& flat) {
    CalibrationSettings settings = with_step(options.settings, flat);
    settings.algorithm = algorithm_from(options.algorithm);
    return settings;
}

GainTables calibrate_flats(const CaptureOptions& options, FlatCaptures& flats, CheckedFlats& checked,
                           const CalibrationSettings& settings) {
    GainTables tables = calibrate_light(clean_average(flats, checked), settings);
    tables.inputs = recorded(options, flats, checked.findings);
    for (size_t i = 0; i < checked.kept_out.size(); ++i)
        tables.inputs[i].kept_out = checked.kept_out[i];
    tables.average = name_of(flats.averaging);
    return tables;
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

double Prediction::on_captures() const {
    return std::ranges::max(planes);
}

Prediction predict(FlatCaptures& flats, const CheckedFlats& checked, const GainTables& tables,
                   const CalibrationSettings& settings) {
    std::vector<RawFrame>& captures = flats.captures;
    const std::vector<RawFrame>& clean = checked.cleaned.empty() ? captures : checked.cleaned;
    const bool several = captures.size() > 1;
    const Isp isp = isp_of_algorithm(settings.algorithm);
    const auto levels = [&](RawFrame& capture, const GainTables& gains) {
        RawFrame copy = several ? capture : RawFrame();
        RawFrame& light = several ? copy : capture;
        subtract_black(light, BlackLevel(*light.black));
        return predict_levels(light, tables.black, gains, "the calibrated tables", isp);
    };
    Prediction prediction;
    for (RawFrame& capture : captures) {
        const FrameLevels corrected = levels(capture, tables);
        for (size_t plane = 0; plane < corrected.size(); ++plane)
            prediction.planes[plane] = std::max(prediction.planes[plane], corrected[plane].flatness());
    }
    for (size_t i = 0; several && i < captures.size(); ++i) {
        RawFrame average = average_of(clean, flats.averaging, static_cast<int>(i));
        const GainTables others = calibrate_light(average, settings);
        prediction.on_left_out =
            std::max(prediction.on_left_out, worst_flatness(levels(captures[i], others)));
    }
    return prediction;
}

void warn_about_prediction(const std::string& name, const GainTables& tables, const Prediction& prediction) {
    const double worst = prediction.on_left_out >= 0 ? prediction.on_left_out : prediction.on_captures();
    if (tables.shading_percent == 100 && worst > flat_enough)
        warn(fmt::format(
            "{}: {} cannot fit this capture: corrected, it is still {} off flat (expected {:.0f} % or "
            "less): compare the algorithms with zerklsc compare, or give a smaller --step",
            name, algorithm_name(tables.algorithm), percent(worst), 100 * flat_enough));
}

} // namespace zerklsc::tool
