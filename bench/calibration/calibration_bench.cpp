// Calibration by sampling and by the surface fit, and the inversion of its normal matrix.
#include <cstring>
#include <memory>

#include <fmt/core.h>

#include "calibration/beta_plain.h"
#include "calibration/inversion/matrix_inv_plain.h"
#include "calibration/orvel_plain.h"
#include "frames.h"
#include "workload.h"
#include "zerklsc_driver.h"

namespace zerklsc::bench {
namespace {

// A flat field to calibrate from, with room for the tables.
struct Job {
    int32_t width, height;
    std::vector<uint16_t> frame;
    Tables tables;

    Job(int32_t width_, int32_t height_, int32_t step, int32_t radius, int32_t algorithm)
        : width(width_), height(height_), frame(flat_field(width, height, static_cast<uint64_t>(radius) + 1)),
          tables(width, height, step, algorithm) {
        tables.info.filter_radius = radius;
    }
};

// Algorithm 2 in its plain form.
void calibrate_plainly(const Job& job, lsc2d_info& info) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, info.grid, job.tables.info.filter_radius, info.shading_percent);
    plain::calibrate_orvel(job.frame.data(), job.width, job.height, info.lsc_table, job.tables.table_w,
                           job.tables.table_h, param);
    lsc2d_table_postproc(info.lsc_table, job.width / 2, job.height / 2, job.tables.table_w,
                         job.tables.table_h, &param);
}

std::string compare_orvel(testing::Random& random) {
    const auto radius = static_cast<int32_t>(random.between(0, 20));
    Job job(static_cast<int32_t>(random.between(90, 200)), static_cast<int32_t>(random.between(90, 200)),
            static_cast<int32_t>(random.between(5, 20)), radius, 2);
    job.frame =
        testing::random_samples(random, job.frame.size(), static_cast<testing::Spread>(random.between(0, 2)));
    Tables expected(job.width, job.height, job.tables.info.grid, 2);
    calibrate_plainly(job, expected.info);
    bool equal = lsc2d_calibration_wrapper(job.frame.data(), &job.tables.info) == 0;
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
        equal = equal && job.tables.gains[c] == expected.gains[c];
    return equal ? ""
                 : fmt::format("{} x {}, step {}, radius {}", job.width, job.height, job.tables.info.grid,
                               radius);
}

// Elements of either sign and of one size, so that any of them may be a pivot.
std::vector<double> random_matrix(int32_t n, testing::Random& random) {
    std::vector<double> a(static_cast<size_t>(n) * static_cast<size_t>(n));
    for (double& v : a)
        v = random.unit() - 0.5;
    return a;
}

std::string compare_inverse(testing::Random& random) {
    const auto n = static_cast<int32_t>(random.between(1, 60));
    std::vector<double> fast = random_matrix(n, random);
    std::vector<double> plain = fast;
    const int status = matrix_inv(fast.data(), n);
    const bool equal = status == plain::matrix_inv(plain.data(), n)
                       && std::memcmp(fast.data(), plain.data(), fast.size() * sizeof(double)) == 0;
    return equal ? "" : fmt::format("n = {}", n);
}

void calibrate(Job& job) {
    lsc2d_calibration_wrapper(job.frame.data(), &job.tables.info);
}

// The same with counts of what was clipped and capped.
void calibrate_and_report(Job& job) {
    zerklsc_report report;
    zerklsc_calibrate(job.frame.data(), &job.tables.info, &report);
}

Workload orvel(const char* name, void (*run)(Job&), int32_t radius, std::array<double, 3> at_most,
               double at_least) {
    const auto job = std::make_shared<Job>(4000, 3000, 64, radius, 2);
    return {.name = fmt::format("{}, algorithm 2, radius {}", name, radius),
            .frame_bytes = job->frame.size() * sizeof(uint16_t),
            .fast = [=] { run(*job); },
            .plain = [=] { calibrate_plainly(*job, job->tables.info); },
            .at_most = at_most,
            .at_least = {at_least, at_least, at_least}};
}

Workload surface_fit() {
    const auto job = std::make_shared<Job>(4000, 3000, 64, 8, 3);
    const auto plain = [=] {
        lsc2d_calib_param param;
        lsc2d_calib_param_default(&param, 64, 8, 100);
        plain::calibrate_beta(job->frame, job->width, job->height, job->tables.table_w, job->tables.table_h,
                              param);
    };
    return {.name = "surface fit, step 64 (825 unknowns)",
            .frame_bytes = 0,
            .fast = [=] { lsc2d_calibration_wrapper(job->frame.data(), &job->tables.info); },
            .plain = plain,
            .at_most = {},
            .at_least = {100, 150, 200}};
}

Workload inverse() {
    constexpr int32_t n = 825;
    testing::Random random(n);
    const auto source = std::make_shared<std::vector<double>>(random_matrix(n, random));
    const auto work = std::make_shared<std::vector<double>>(*source);
    const auto by = [=](int (*invert)(double*, int)) {
        return [=] {
            *work = *source;
            invert(work->data(), n);
        };
    };
    return {.name = "matrix_inv<double>, 825",
            .frame_bytes = 0,
            .fast = by(matrix_inv<double>),
            .plain = by(plain::matrix_inv<double>),
            .at_most = {},
            .at_least = {8, 15, 20}};
}

} // namespace

std::vector<Workload> calibration_workloads() {
    const char* const name = "calibration";
    return {orvel(name, calibrate, 4, {0.5, 0.45, 0.45}, 40),
            orvel(name, calibrate, 8, {0.8, 0.7, 0.7}, 25),
            orvel("zerklsc_calibrate", calibrate_and_report, 8, {0.8, 0.7, 0.7}, 25),
            orvel(name, calibrate, 16, {1.8, 1.4, 1.4}, 15),
            surface_fit(),
            inverse()};
}

std::vector<Check> calibration_checks() {
    return {{"lsc2d_calibration_orvel", compare_orvel}, {"matrix_inv<double>", compare_inverse}};
}

} // namespace zerklsc::bench
