#include <fmt/core.h>

#include "frames.h"
#include "report.h"
#include "support/allocations.h"

namespace zerklsc::bench {
namespace {

// The most heap memory that a call held at one time.
template <class Call>
size_t peak_of(Call call) {
    testing::AllocationScope scope;
    call();
    return scope.peak_bytes();
}

std::string calibration_row(int32_t width, int32_t height, int32_t step, int32_t algorithm) {
    const std::vector<uint16_t> frame = flat_field(width, height);
    Tables tables(width, height, step, algorithm);
    tables.info.filter_radius = 8;
    return fmt::format("{}", peak_of([&] { lsc2d_calibration_wrapper(frame.data(), &tables.info); }));
}

std::string correction_row(int32_t width, int32_t height, int32_t step, int32_t algorithm) {
    std::vector<uint16_t> frame = flat_field(width, height);
    Tables tables(width, height, step, algorithm);
    return fmt::format("{}",
                       peak_of([&] { lsc2d_correction_wrapper(frame.data(), frame.data(), &tables.info); }));
}

std::string plane_row(int32_t width, int32_t height, int32_t step, int32_t) {
    std::vector<uint16_t> frame = flat_field(width, height), out(frame.size());
    Tables tables(2 * width, 2 * height, step, 2);
    return fmt::format("{}", peak_of([&] {
                           lsc2d_bicubic_correction(frame.data(), out.data(), width, height,
                                                    tables.gains[0].data(), step, step, tables.table_w);
                       }));
}

std::string otp_row(int32_t width, int32_t height, int32_t step, int32_t) {
    Tables tables(width, height, step, 2);
    std::vector<uint8_t> stream(3 * tables.gains[0].size());
    lsc_otp_info info{0, tables.table_w, tables.table_h, {}, stream.data(), 0};
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
        info.lsc_table[c] = tables.gains[c].data();
    return fmt::format("{}", peak_of([&] { lsc_compress(&info); }));
}

} // namespace

void print_memory() {
    struct Row {
        const char* name;
        std::string (*measure)(int32_t width, int32_t height, int32_t step, int32_t algorithm);
        int32_t algorithm;
    };
    const Row rows[] = {{"lsc2d_calibration_wrapper, algorithm 0", calibration_row, 0},
                        {"lsc2d_calibration_wrapper, algorithm 1", calibration_row, 1},
                        {"lsc2d_calibration_wrapper, algorithm 2", calibration_row, 2},
                        {"lsc2d_calibration_wrapper, algorithm 3", calibration_row, 3},
                        {"lsc2d_calibration_wrapper, algorithm 4", calibration_row, 4},
                        {"lsc2d_correction_wrapper, tvessa2", correction_row, 2},
                        {"lsc2d_correction_wrapper, vessaL2", correction_row, 4},
                        {"lsc2d_bicubic_correction (a plane of that size)", plane_row, 2},
                        {"lsc_compress", otp_row, 2}};
    fmt::print("Peak heap memory in bytes beside the caller's buffers.\n\n"
               "| call | 4000 x 3000, step 64 | 4000 x 3000, step 128 | 8000 x 6000, step 128 "
               "|\n|---|---|---|---|\n");
    for (const Row& row : rows)
        fmt::print("| {} | {} | {} | {} |\n", row.name, row.measure(4000, 3000, 64, row.algorithm),
                   row.measure(4000, 3000, 128, row.algorithm), row.measure(8000, 6000, 128, row.algorithm));
    fmt::print("\n");
}

} // namespace zerklsc::bench
