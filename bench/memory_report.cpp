#include <algorithm>
#include <cmath>

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

// What a call takes and what the public header says of it.
struct Memory {
    size_t taken;
    double said;
};

// A frame's tables and what the header's formulas are made of.
struct Job {
    int32_t width, height;
    std::vector<uint16_t> frame;
    Tables tables;
    double w, r = 8, e, n; // plane width, radius, entries of a table, its nodes without the border

    Job(int32_t width_, int32_t height_, int32_t step, int32_t algorithm)
        : width(width_), height(height_), frame(flat_field(width, height)),
          tables(width, height, step, algorithm), w(width / 2), e(tables.table_w * tables.table_h),
          n((tables.table_w - 2) * (tables.table_h - 2)) {
        tables.info.filter_radius = static_cast<int32_t>(r);
    }
};

double rounded_up(double count, double unit) {
    return std::ceil(count / unit) * unit;
}

// matrix_inv() of n rows of doubles.
double inversion_formula(double n) {
    const double rows = rounded_up(n, 4), columns = rounded_up(n, 32);
    return (1.009 * rows * columns + 26 * rows + 24 * columns) * sizeof(double) + 16 * n + 64;
}

double calibration_formula(const Job& job) {
    switch (job.tables.info.algorithm) {
    case ZERKLSC_ALGORITHM_HALVANE:
        return 8 * job.n + 12 * job.w + 8;
    case ZERKLSC_ALGORITHM_ORVEL_OTP:
        return 12 * job.e + 16 * job.n + 12 * job.w + 8;
    case ZERKLSC_ALGORITHM_BETA: {
        // Lines of the raster: up to 16 for the cell at either end, 4 for each between them, and the centre.
        const double lines = 64 + 4.0 * (job.tables.table_w + job.tables.table_h);
        return 8 * job.n * job.n + 48 * job.n + inversion_formula(job.n) + 64 * lines;
    }
    default:
        return 20 * job.n + 4 * job.e + 4 * job.w + 40 * job.r + 128;
    }
}

Memory calibration_memory(Job& job) {
    return {peak_of([&] { lsc2d_calibration_wrapper(job.frame.data(), &job.tables.info); }),
            calibration_formula(job)};
}

Memory correction_memory(Job& job) {
    return {peak_of([&] { lsc2d_correction_wrapper(job.frame.data(), job.frame.data(), &job.tables.info); }),
            0};
}

Memory plane_memory(Job& job) {
    const Tables tables(2 * job.width, 2 * job.height, job.tables.info.grid, 2);
    std::vector<uint16_t> out(job.frame.size());
    return {peak_of([&] {
                lsc2d_bicubic_correction(job.frame.data(), out.data(), job.width, job.height,
                                         tables.gains[0].data(), tables.info.grid, tables.info.grid,
                                         tables.table_w);
            }),
            32.0 * job.width};
}

Memory compression_memory(Job& job) {
    std::vector<uint8_t> stream(static_cast<size_t>(3 * job.n));
    lsc_otp_info info{0, job.tables.table_w, job.tables.table_h, {}, stream.data(), 0};
    std::ranges::copy(job.tables.info.lsc_table, info.lsc_table);
    return {peak_of([&] { lsc_compress(&info); }), 16 * job.n + 32.0 * job.tables.table_w + 1024};
}

std::string cells(Memory (*measure)(Job&), int32_t width, int32_t height, int32_t step, int32_t algorithm) {
    Job job(width, height, step, algorithm);
    const Memory memory = measure(job);
    return fmt::format("{} | {:.0f}", memory.taken, memory.said);
}

} // namespace

void print_memory() {
    struct Row {
        const char* name;
        Memory (*measure)(Job&);
        int32_t algorithm;
    };
    const Row rows[] = {{"lsc2d_calibration_wrapper, algorithm 0", calibration_memory, 0},
                        {"lsc2d_calibration_wrapper, algorithm 1", calibration_memory, 1},
                        {"lsc2d_calibration_wrapper, algorithm 2", calibration_memory, 2},
                        {"lsc2d_calibration_wrapper, algorithm 3", calibration_memory, 3},
                        {"lsc2d_calibration_wrapper, algorithm 4", calibration_memory, 4},
                        {"lsc2d_correction_wrapper, tvessa2", correction_memory, 2},
                        {"lsc2d_correction_wrapper, vessaL2", correction_memory, 4},
                        {"lsc2d_bicubic_correction (a plane of that size)", plane_memory, 2},
                        {"lsc_compress", compression_memory, 2}};
    fmt::print(
        "Peak heap memory in bytes beside the caller's buffers, and what the header's formula gives: "
        "that much at most.\n\n"
        "| call | 4000 x 3000, step 64 | header | 4000 x 3000, step 128 | header | 8000 x 6000, step 128 "
        "| header |\n|---|---|---|---|---|---|---|\n");
    for (const Row& row : rows)
        fmt::print("| {} | {} | {} | {} |\n", row.name, cells(row.measure, 4000, 3000, 64, row.algorithm),
                   cells(row.measure, 4000, 3000, 128, row.algorithm),
                   cells(row.measure, 8000, 6000, 128, row.algorithm));
    fmt::print("\n");
}

} // namespace zerklsc::bench
