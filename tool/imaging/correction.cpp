// name_of, isp_of_algorithm, correct
#include "imaging/correction.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "failure.h"
#include "terminal.h"
#include "zerklsc_driver.h"

namespace zerklsc::tool {
namespace {

constexpr int tvessa2_phases = 64;
constexpr int tvessa2_narrowest = 128;

// The tvessa2 ISP counts its nodes from the last sample, so at one sample past a whole number of cells it
// takes the tables' rows to be one node shorter than they are.
bool tvessa2_reads_rows(int plane_width, int step) {
    return (plane_width - 1) % step != 0;
}

// "32 or 63": the nearest steps below and above that the ISP reads as they are laid out. Step 1 is none.
std::string nearest_steps(int plane_width, int step) {
    std::vector<int> steps;
    for (const int direction : {-1, 1})
        for (int other = step + direction; other >= smallest_step && other <= tvessa2_phases;
             other += direction)
            if (tvessa2_reads_rows(plane_width, other)) {
                steps.push_back(other);
                break;
            }
    return fmt::format("{}", fmt::join(steps, " or "));
}

void check_tvessa2(const RawFrame& frame, const GainTables& tables, const std::string& tables_name) {
    const int w = tables.plane_width();
    if (!tvessa2_reads_rows(w, tables.step))
        data_failure(
            "{}: step {} leaves one column of the {} samples of a plane beyond the last whole cell, where "
            "the tvessa2 ISP reads the tables one node short per row: calibrate with step {}, or correct as "
            "the vessal2 ISP does",
            tables_name, tables.step, w, nearest_steps(w, tables.step));
    if (tvessa2_phases % tables.step != 0)
        warn(fmt::format(
            "{}: the tvessa2 ISP interpolates over {} of 64 phases of a cell of step {}: steps of 2, 4, "
            "8, 16, 32 and 64 are corrected smoothly",
            tables_name, tables.step * (tvessa2_phases / tables.step), tables.step));
    if (frame.width < tvessa2_narrowest)
        warn(fmt::format("{}: is {} pixels wide, and the tvessa2 ISP expects slices of at least {}",
                         frame.name, frame.width, tvessa2_narrowest));
}

} // namespace

const char* name_of(Isp isp) {
    return isp == Isp::tvessa2 ? "tvessa2" : "vessal2";
}

Isp isp_of_algorithm(int algorithm) {
    return algorithm == ZERKLSC_ALGORITHM_ORVEL_WEIGHTS ? Isp::vessal2 : Isp::tvessa2;
}

void correct(RawFrame& frame, GainTables tables, const std::string& tables_name, Isp isp) {
    if (frame.width != tables.raw_width || frame.height != tables.raw_height)
        data_failure("{}: is for frames of {} x {}, but {} is {} x {}: calibrate at that size, or carry the "
                     "tables over with zerklsc resample",
                     tables_name, tables.raw_width, tables.raw_height, frame.name, frame.width, frame.height);
    if (isp == Isp::tvessa2)
        check_tvessa2(frame, tables, tables_name);

    lsc2d_info info{};
    info.width = static_cast<uint16_t>(frame.width);
    info.height = static_cast<uint16_t>(frame.height);
    std::ranges::copy(tables.pointers(), info.lsc_table);
    info.grid = static_cast<uint16_t>(tables.step);
    // Of the algorithm, only the ISP that it is for matters here.
    info.algorithm = isp == Isp::vessal2 ? ZERKLSC_ALGORITHM_ORVEL_WEIGHTS : ZERKLSC_ALGORITHM_ORVEL;
    const size_t stride = sizeof(uint16_t) * static_cast<size_t>(frame.width);
    const zerklsc_status status =
        zerklsc_correct(&info, frame.samples.data(), stride, frame.samples.data(), stride, 0, frame.height);
    if (ZERKLSC_REFUSED(status))
        data_failure("{}: {} cannot correct with these tables: {}", tables_name, name_of(isp),
                     zerklsc_status_text(status));
}

} // namespace zerklsc::tool
