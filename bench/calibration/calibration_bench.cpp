// Calibration by sampling and by the surface fit, and the inversion of its normal matrix.
#include <cstring>
#include <memory>

#include <fmt/core.h>

#include "calibration/plain_fit.h"
#include "frames.h"
#include "sampling/plain.h"
#include "workload.h"

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

// The brightest point around the centre of a plane.
float plain_reference(const uint16_t* plane, int32_t width, int32_t height, const imfilter_t& filter) {
    pix_point* points;
    int32_t count;
    init_center_points(width, height, &points, &count);
    plain::sample_points(plane, points, count, width, height, filter);
    const float reference = points[get_pixel_maximum(points, count)].value;
    release_center_points(points);
    return reference;
}

// Calibration by sampling as it is stated: a copy of the frame, four planes, and a full window for every
// level.
void plain_orvel(const Job& job, uint16_t* const tables[ZERKLSC_CHANNELS]) {
    const int32_t w = job.width / 2, h = job.height / 2, step = job.tables.info.grid;
    const size_t samples = static_cast<size_t>(w) * static_cast<size_t>(h);
    const std::vector<uint16_t> copy = job.frame;
    std::vector<uint16_t> memory(ZERKLSC_CHANNELS * samples);
    uint16_t* planes[] = {&memory[0], &memory[samples], &memory[2 * samples], &memory[3 * samples]};
    bayer_split_channel(copy.data(), planes, job.width, job.height);
    const imfilter_t filter{ZERKLSC_FILTER_BOX, job.tables.info.filter_radius, ZERKLSC_BOUNDARY_MIRROR,
                            nullptr};
    const int32_t table_w = job.tables.table_w, table_h = job.tables.table_h;
    std::vector<float> gains(static_cast<size_t>((table_w - 2) * (table_h - 2)));
    std::vector<float> bordered(static_cast<size_t>(table_w * table_h));
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
        plain::sample_grid(planes[c], gains.data(), w, h, step, step, table_w - 2, table_h - 2, filter);
        const float reference = plain_reference(planes[c], w, h, filter);
        for (float& gain : gains)
            gain = reference / std::max(gain, 1.0f);
        update_table_border(gains.data(), bordered.data(), w, h, step, step, table_w - 2, table_h - 2,
                            ZERKLSC_EDGE_LINEAR, ZERKLSC_FILL_QUADRATIC);
        lsc_table_ftoi(bordered.data(), tables[c], table_w, table_h);
    }
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, step, filter.filter_radius, job.tables.info.shading_percent);
    lsc2d_table_postproc(const_cast<uint16_t**>(tables), w, h, table_w, table_h, &param);
}

std::string compare_orvel(testing::Random& random) {
    const auto radius = static_cast<int32_t>(random.between(0, 20));
    Job job(static_cast<int32_t>(random.between(90, 200)), static_cast<int32_t>(random.between(90, 200)),
            static_cast<int32_t>(random.between(5, 20)), radius, 2);
    job.frame =
        testing::random_samples(random, job.frame.size(), static_cast<testing::Spread>(random.between(0, 2)));
    Tables expected(job.width, job.height, job.tables.info.grid, 2);
    plain_orvel(job, expected.info.lsc_table);
    bool equal = lsc2d_calibration_wrapper(job.frame.data(), &job.tables.info) == 0;
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
        equal = equal && job.tables.gains[c] == expected.gains[c];
    return equal ? ""
                 : fmt::format("{} x {}, step {}, radius {}", job.width, job.height, job.tables.info.grid,
                               radius);
}

// A matrix like those of the fit: dominated by its diagonal, condition far from 1.
std::vector<double> matrix(int32_t n, testing::Random& random) {
    std::vector<double> a(static_cast<size_t>(n) * static_cast<size_t>(n));
    for (double& v : a)
        v = random.unit() - 0.5;
    return a;
}

std::string compare_inverse(testing::Random& random) {
    const auto n = static_cast<int32_t>(random.between(1, 60));
    std::vector<double> fast = matrix(n, random);
    std::vector<double> plain = fast;
    const int status = matrix_inv(fast.data(), n);
    const bool equal = status == testing::plain_matrix_inv(plain.data(), n)
                       && std::memcmp(fast.data(), plain.data(), fast.size() * sizeof(double)) == 0;
    return equal ? "" : fmt::format("n = {}", n);
}

Workload orvel(int32_t radius, std::array<double, 3> at_most, double at_least) {
    const auto job = std::make_shared<Job>(4000, 3000, 64, radius, 2);
    return {.name = fmt::format("calibration, algorithm 2, radius {}", radius),
            .frame_bytes = job->frame.size() * sizeof(uint16_t),
            .fast = [=] { lsc2d_calibration_wrapper(job->frame.data(), &job->tables.info); },
            .plain = [=] { plain_orvel(*job, job->tables.info.lsc_table); },
            .at_most = at_most,
            .at_least = {at_least, at_least, at_least}};
}

Workload surface_fit() {
    const auto job = std::make_shared<Job>(4000, 3000, 64, 8, 3);
    const auto plain = [=] {
        lsc2d_calib_param param;
        lsc2d_calib_param_default(&param, 64, 8, 100);
        testing::plain_fit(job->frame, job->width, job->height, job->tables.table_w, job->tables.table_h,
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
    const auto source = std::make_shared<std::vector<double>>(matrix(n, random));
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
            .plain = by(testing::plain_matrix_inv<double>),
            .at_most = {},
            .at_least = {8, 15, 20}};
}

} // namespace

std::vector<Workload> calibration_workloads() {
    return {orvel(4, {0.5, 0.45, 0.45}, 40), orvel(8, {0.8, 0.7, 0.7}, 25), orvel(16, {1.8, 1.4, 1.4}, 15),
            surface_fit(), inverse()};
}

std::vector<Check> calibration_checks() {
    return {{"lsc2d_calibration_orvel", compare_orvel}, {"matrix_inv<double>", compare_inverse}};
}

} // namespace zerklsc::bench
