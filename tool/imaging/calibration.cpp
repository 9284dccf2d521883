// usual_step, fit_cost, calibrate
#include "imaging/calibration.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string_view>

#include "failure.h"
#include "imaging/library_messages.h"
#include "terminal.h"
#include "zerklsc_driver.h"

namespace zerklsc::tool {
namespace {

constexpr int largest_usual_step = 64; // that tvessa2 interpolates

// The two generators with the frame's own Bayer pattern, which lsc2d_calibration_wrapper() cannot know. They
// measure 10-bit samples.
using Generator = decltype(&lsc2d_calibration_halvane);

int32_t generate(Generator generator, const RawFrame& flat, GainTables& tables,
                 const lsc2d_calib_param& param) {
    RawFrame frame = flat;
    scale_to_10_bits(frame);
    auto pointers = tables.pointers();
    auto words = std::bit_cast<std::array<uint32_t, 8>>(param);
    return generator(frame.samples.data(), static_cast<uint16_t>(frame.width),
                     static_cast<uint16_t>(frame.height), pointers.data(), 0, 0,
                     static_cast<uint8_t>(tables.pattern), words.data());
}

// The gains of a table without its border.
std::vector<uint16_t> inner_gains(const GainTables& tables, size_t plane) {
    std::vector<uint16_t> inner;
    for (int j = ZERKLSC_BORDER; j < tables.table_height - ZERKLSC_BORDER; ++j) {
        const auto row = tables.gains[plane].begin() + j * tables.table_width;
        inner.insert(inner.end(), row + ZERKLSC_BORDER, row + tables.table_width - ZERKLSC_BORDER);
    }
    return inner;
}

// Replaces the border that the generator made by that of the other algorithms, and applies the shading.
int32_t finish_generated(GainTables& tables, const lsc2d_calib_param& param) {
    std::array<std::vector<uint16_t>, 4> inner;
    std::array<uint16_t*, 4> sources{};
    for (size_t plane = 0; plane < inner.size(); ++plane) {
        inner[plane] = inner_gains(tables, plane);
        sources[plane] = inner[plane].data();
    }
    auto pointers = tables.pointers();
    const int32_t w = tables.plane_width(), h = tables.plane_height();
    const int32_t status = lsc2d_table_preproc(sources.data(), pointers.data(), w, h, tables.table_width,
                                               tables.table_height, &param);
    return status != 0
               ? status
               : lsc2d_table_postproc(pointers.data(), w, h, tables.table_width, tables.table_height, &param);
}

int32_t run_orvel_otp(const RawFrame& flat, GainTables& tables, const lsc2d_calib_param& param) {
    const int32_t status = generate(lsc2d_calibration_orvel_otp, flat, tables, param);
    return status != 0 ? status : finish_generated(tables, param);
}

lsc2d_info info_of(const RawFrame& flat, GainTables& tables) {
    lsc2d_info info{};
    info.width = static_cast<uint16_t>(flat.width);
    info.height = static_cast<uint16_t>(flat.height);
    std::ranges::copy(tables.pointers(), info.lsc_table);
    info.grid = static_cast<uint16_t>(tables.step);
    info.shading_percent = tables.shading_percent;
    info.filter_radius = tables.filter_radius;
    info.algorithm = tables.algorithm;
    return info;
}

// Whether the method has made the tables without a word, so that others may calibrate at the same time. What
// it refuses is left to the function that prints why, and that takes more geometries.
bool run_silently(const RawFrame& flat, GainTables& tables) {
    if (tables.algorithm == ZERKLSC_ALGORITHM_HALVANE || tables.algorithm == ZERKLSC_ALGORITHM_ORVEL_OTP)
        return false;
    lsc2d_info info = info_of(flat, tables);
    return zerklsc_calibrate(flat.samples.data(), &info, nullptr) == ZERKLSC_OK;
}

int32_t run(const RawFrame& flat, GainTables& tables) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, tables.step, tables.filter_radius, tables.shading_percent);
    switch (tables.algorithm) {
    case ZERKLSC_ALGORITHM_HALVANE:
        return generate(lsc2d_calibration_halvane, flat, tables, param);
    case ZERKLSC_ALGORITHM_ORVEL_OTP:
        return run_orvel_otp(flat, tables, param);
    default: {
        lsc2d_info info = info_of(flat, tables);
        return lsc2d_calibration_wrapper(flat.samples.data(), &info);
    }
    }
}

// What the library printed, `count` times, as a user of the tool understands it.
std::string in_own_words(const std::string& line, int count) {
    constexpr std::string_view clipped = " channel data of raw image maybe wrong";
    constexpr std::string_view prefix = "Warning:";
    if (line.starts_with(prefix) && line.ends_with(clipped))
        return fmt::format("{} samples of {} are clipped: lower the exposure", count,
                           line.substr(prefix.size(), line.size() - prefix.size() - clipped.size()));
    if (line == "Warning:raw image data maybe wrong")
        return fmt::format(
            "{} rows of the grid fall to black at the right edge, and have no gain there: look for what "
            "covers the frame, and at the black level",
            count);
    if (line == "Warning: singular matrix, no solution was found!")
        return "the surface fit has no solution: give another step, or another algorithm";
    return fmt::format("{} ({} times)", line, count);
}

} // namespace

int usual_step(int frame_width, int frame_height) {
    int nearest = 1;
    for (int step = 2; step <= largest_usual_step; step *= 2)
        if (std::abs(64 * step - frame_width) < std::abs(64 * nearest - frame_width))
            nearest = step;
    lsc2d_info info{};
    info.width = static_cast<uint16_t>(frame_width);
    info.height = static_cast<uint16_t>(frame_height);
    info.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    const auto is_accepted = [&](int step) {
        info.grid = static_cast<uint16_t>(step);
        return step <= largest_usual_step && !ZERKLSC_REFUSED(zerklsc_check_correction(&info));
    };
    return !is_accepted(nearest) && is_accepted(2 * nearest) ? 2 * nearest : nearest;
}

FitCost fit_cost(double nodes) {
    // 42 ms for 825 nodes, on a desktop processor of 2023.
    return {16 * nodes * nodes / (1 << 20), 0.042 * std::pow(nodes / 825, 3)};
}

GainTables calibrate(const RawFrame& flat, BayerPattern pattern, const BlackLevel& black,
                     const CalibrationSettings& settings) {
    GainTables tables;
    tables.raw_width = flat.width;
    tables.raw_height = flat.height;
    tables.step = settings.step;
    tables.algorithm = settings.algorithm;
    tables.filter_radius = settings.radius;
    tables.shading_percent = settings.shading_percent;
    tables.pattern = pattern;
    tables.black = black;
    tables.bits = flat.bits;
    tables.set_table_size();
    tables.resize();

    if (run_silently(flat, tables))
        return tables;
    LibraryMessages messages;
    const int32_t status = run(flat, tables);
    for (const auto& [line, count] : messages.finish())
        warn(fmt::format("{}: {}", flat.name, in_own_words(line, count)));
    if (status != 0)
        data_failure("{}: algorithm {} cannot calibrate planes of {} x {} with step {} and radius {}: try a "
                     "smaller step or radius, or another algorithm",
                     flat.name, algorithm_name(tables.algorithm), tables.plane_width(), tables.plane_height(),
                     tables.step, tables.filter_radius);
    return tables;
}

} // namespace zerklsc::tool
