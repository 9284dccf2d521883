// check_grid: what the step asks of the frame, the ISP, the OTP stream and the surface fit
#include <algorithm>

#include <fmt/format.h>

#include "check/checks.h"
#include "imaging/correction.h"
#include "imaging/gain_tables.h"
#include "zerklsc_driver.h"

namespace zerklsc::tool {
namespace {

// 0: taken, 1: taken with advice, 2: refused.
int severity_of(zerklsc_status status) {
    return status == ZERKLSC_OK ? 0 : ZERKLSC_REFUSED(status) ? 2 : 1;
}

// Advice is given where a number is good, too: the file is not what makes it bad.
void add_status(const Judgement& judgement, const char* name, zerklsc_status status,
                const std::string& advice) {
    judgement.add(name, "", severity_of(status), "");
    judgement.findings.back().advice =
        status == ZERKLSC_OK ? "" : fmt::format("{}: {}", zerklsc_status_text(status), advice);
}

void check_step(const Judgement& judgement) {
    const FlatCapture& capture = judgement.capture;
    const int step = capture.settings.step, usual = usual_step(capture.frame.width, capture.frame.height);
    const double times = double(std::max(step, usual)) / std::min(step, usual);
    judgement.add("step", "", times,
                  fmt::format("step {} is much {} for a width of {}: give --step {}", step,
                              step > usual ? "too coarse" : "finer than is of use", capture.frame.width,
                              usual));
}

void check_isp(const Judgement& judgement) {
    const CalibrationSettings& settings = judgement.capture.settings;
    lsc2d_info info{};
    info.width = static_cast<uint16_t>(judgement.capture.frame.width);
    info.height = static_cast<uint16_t>(judgement.capture.frame.height);
    info.grid = static_cast<uint16_t>(settings.step);
    info.algorithm = settings.algorithm;
    add_status(judgement, "isp", zerklsc_check_correction(&info),
               fmt::format("for {}, give another --step, or an --algorithm of another ISP",
                           name_of(isp_of_algorithm(settings.algorithm))));
}

void check_stream(const Judgement& judgement) {
    const FlatCapture& capture = judgement.capture;
    GainTables tables;
    tables.raw_width = capture.frame.width;
    tables.raw_height = capture.frame.height;
    tables.step = capture.settings.step;
    tables.set_table_size();
    lsc_otp_info info{};
    info.bayer_pattern = static_cast<uint8_t>(capture.pattern);
    info.grid_width = tables.table_width;
    info.grid_height = tables.table_height;
    add_status(judgement, "otp-stream", zerklsc_check_stream(&info),
               "give another --step where the tables go into an OTP stream");
}

// The part of a step by which the outermost window of the surface fit reaches into the last cell. Where it
// hardly does, the last nodes are found from the ends of their weights, and noise is many times as large
// there.
double reach_into_last_cell(int extent, const CalibrationSettings& settings) {
    const int last_cell = (extent - 1) / settings.step * settings.step;
    return double(extent - 1 - settings.radius - last_cell) / settings.step;
}

void check_fit_reach(const Judgement& judgement) {
    const FlatCapture& capture = judgement.capture;
    const double columns = reach_into_last_cell(capture.frame.width / 2, capture.settings);
    const double rows = reach_into_last_cell(capture.frame.height / 2, capture.settings);
    judgement.add(
        "fit-reach", "", 100 * std::min(columns, rows),
        fmt::format("algorithm beta measures hardly anything in the last cell of {}, whose gains will "
                    "be noisy: give another --step, or a smaller --radius",
                    columns < rows ? "each row" : "each column"));
}

} // namespace

void check_grid(const Judgement& judgement) {
    const FlatCapture& capture = judgement.capture;
    const int step = capture.settings.step;
    const int shorter = std::min(capture.frame.width, capture.frame.height) / 2;
    judgement.add("grid", "", (shorter + step - 1) / step + 1,
                  fmt::format("the grid is coarse for planes of {} x {}: give a smaller --step",
                              capture.frame.width / 2, capture.frame.height / 2));
    check_step(judgement);
    check_isp(judgement);
    check_stream(judgement);
    if (capture.settings.algorithm == ZERKLSC_ALGORITHM_BETA)
        check_fit_reach(judgement);
}

} // namespace zerklsc::tool
