// calibrate
#include "imaging/calibration.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string_view>

#include "failure.h"
#include "imaging/library_messages.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

constexpr int fewest_nodes = 3;

void check_geometry(const RawFrame& flat, const GainTables& tables) {
    const int grid_w = tables.table_width - 2 * ZERKLSC_BORDER;
    const int grid_h = tables.table_height - 2 * ZERKLSC_BORDER;
    const int shorter = std::min(tables.plane_width(), tables.plane_height());
    if (std::min(grid_w, grid_h) < fewest_nodes)
        data_failure(
            "{}: --step {} lays a grid of {} x {} nodes on planes of {} x {}, and at least 3 x 3 are needed: "
            "give a --step of at most {}",
            flat.name, tables.step, grid_w, grid_h, tables.plane_width(), tables.plane_height(),
            std::max(shorter - 1, 1));
    if (tables.filter_radius >= shorter)
        data_failure("{}: --radius {} reaches beyond planes of {} x {}: give a --radius below {}", flat.name,
                     tables.filter_radius, tables.plane_width(), tables.plane_height(), shorter);
}

// The surface fit solves a dense system of one equation per node, in two square matrices of doubles, in a
// time that grows with the cube of their side.
void check_fit(const RawFrame& flat, const GainTables& tables, int max_memory) {
    const double nodes =
        double(tables.table_width - 2 * ZERKLSC_BORDER) * (tables.table_height - 2 * ZERKLSC_BORDER);
    const double mebibytes = 16 * nodes * nodes / (1 << 20);
    // 42 ms for 825 nodes, on a desktop processor of 2023.
    const double seconds = 0.042 * std::pow(nodes / 825, 3);
    if (mebibytes > max_memory)
        data_failure("{}: algorithm beta at step {} fits {:.0f} nodes, which takes {:.0f} MiB of memory and "
                     "about {:.0f} "
                     "seconds (limit {} MiB): give a larger --step, or raise --max-memory",
                     flat.name, tables.step, nodes, mebibytes, seconds, max_memory);
    if (seconds > 10)
        warn(fmt::format("{}: the fit of {:.0f} nodes takes about {:.0f} seconds: a larger --step is quicker",
                         flat.name, nodes, seconds));
}

// What the two parameter generators read: the calibration record as words.
std::array<uint32_t, 8> generator_words(const lsc2d_calib_param& param) {
    return std::bit_cast<std::array<uint32_t, 8>>(param);
}

RawFrame generator_frame(const RawFrame& flat) {
    RawFrame frame = flat;
    scale_to_10_bits(frame);
    return frame;
}

int32_t run_halvane(const RawFrame& flat, GainTables& tables, const lsc2d_calib_param& param) {
    RawFrame frame = generator_frame(flat);
    auto pointers = tables.pointers();
    auto words = generator_words(param);
    return lsc2d_calibration_halvane(frame.samples.data(), static_cast<uint16_t>(frame.width),
                                     static_cast<uint16_t>(frame.height), pointers.data(), 0, 0,
                                     static_cast<uint8_t>(tables.pattern), words.data());
}

// The inner nodes of each table, one table after another.
std::array<std::vector<uint16_t>, 4> without_border(const GainTables& tables) {
    std::array<std::vector<uint16_t>, 4> inner;
    for (size_t plane = 0; plane < inner.size(); ++plane)
        for (int j = 1; j + 1 < tables.table_height; ++j) {
            const auto row = tables.gains[plane].begin() + j * tables.table_width;
            inner[plane].insert(inner[plane].end(), row + 1, row + tables.table_width - 1);
        }
    return inner;
}

// The steps of lsc2d_calibration_wrapper() for this algorithm, with the frame's own Bayer pattern, which the
// wrapper cannot know.
int32_t run_orvel_otp(const RawFrame& flat, GainTables& tables, const lsc2d_calib_param& param) {
    RawFrame frame = generator_frame(flat);
    auto pointers = tables.pointers();
    auto words = generator_words(param);
    const int32_t status = lsc2d_calibration_orvel_otp(
        frame.samples.data(), static_cast<uint16_t>(frame.width), static_cast<uint16_t>(frame.height),
        pointers.data(), 0, 0, static_cast<uint8_t>(tables.pattern), words.data());
    if (status != 0)
        return status;
    auto inner = without_border(tables);
    std::array<uint16_t*, 4> sources{inner[0].data(), inner[1].data(), inner[2].data(), inner[3].data()};
    const int32_t w = tables.plane_width(), h = tables.plane_height();
    if (lsc2d_table_preproc(sources.data(), pointers.data(), w, h, tables.table_width, tables.table_height,
                            &param)
        != 0)
        return -1;
    return lsc2d_table_postproc(pointers.data(), w, h, tables.table_width, tables.table_height, &param);
}

int32_t run_wrapper(const RawFrame& flat, GainTables& tables) {
    lsc2d_info info{};
    info.width = static_cast<uint16_t>(flat.width);
    info.height = static_cast<uint16_t>(flat.height);
    std::ranges::copy(tables.pointers(), info.lsc_table);
    info.grid = static_cast<uint16_t>(tables.step);
    info.shading_percent = tables.shading_percent;
    info.filter_radius = tables.filter_radius;
    info.algorithm = tables.algorithm;
    return lsc2d_calibration_wrapper(flat.samples.data(), &info);
}

int32_t run(const RawFrame& flat, GainTables& tables) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, tables.step, tables.filter_radius, tables.shading_percent);
    switch (tables.algorithm) {
    case ZERKLSC_ALGORITHM_HALVANE:
        return run_halvane(flat, tables, param);
    case ZERKLSC_ALGORITHM_ORVEL_OTP:
        return run_orvel_otp(flat, tables, param);
    default:
        return run_wrapper(flat, tables);
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
    check_geometry(flat, tables);
    if (tables.algorithm == ZERKLSC_ALGORITHM_BETA)
        check_fit(flat, tables, settings.max_memory);
    tables.resize();

    LibraryMessages messages;
    const int32_t status = run(flat, tables);
    for (const auto& [line, count] : messages.finish())
        warn(fmt::format("{}: {}", flat.name, in_own_words(line, count)));
    if (status != 0)
        data_failure("{}: algorithm {} cannot calibrate planes of {} x {} with --step {} and --radius {}: "
                     "try a smaller "
                     "step or radius, or another --algorithm",
                     flat.name, algorithm_name(tables.algorithm), tables.plane_width(), tables.plane_height(),
                     tables.step, tables.filter_radius);
    return tables;
}

} // namespace zerklsc::tool
