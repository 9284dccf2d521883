// The correction of one plane in floating point.
#include <memory>

#include <fmt/core.h>

#include "frames.h"
#include "table/float_correction_plain.h"
#include "workload.h"

namespace zerklsc::bench {
namespace {

std::string compare(testing::Random& random) {
    const auto width = static_cast<int32_t>(random.between(1, 150));
    const auto height = static_cast<int32_t>(random.between(1, 20));
    const auto step_x = static_cast<int32_t>(random.between(1, 80));
    const auto step_y = static_cast<int32_t>(random.between(1, 80));
    int32_t table_w, table_h;
    lsc2d_table_size(width, height, step_x, step_y, &table_w, &table_h);
    const auto spread = static_cast<testing::Spread>(random.between(0, 2));
    const auto count = static_cast<size_t>(width * height);
    const auto table = testing::random_samples(random, static_cast<size_t>(table_w * table_h), spread);
    const auto samples = testing::random_samples(random, count, spread);
    testing::Guarded<uint16_t> src(samples, testing::Against::back);
    testing::Guarded<uint16_t> fast(count, testing::Against::back), plain(count, testing::Against::front);
    const auto job = [&](uint16_t* dst) {
        return FloatCorrection{src.data(), dst, width, height, table.data(), step_x, step_y, table_w};
    };
    lsc2d_bicubic_correction(src.data(), fast.data(), width, height, table.data(), step_x, step_y, table_w);
    plain::bicubic_correction(job(plain.data()));
    if (fast.copy() == plain.copy() && fast.intact())
        return {};
    return fmt::format("{} x {} samples, steps {} and {}", width, height, step_x, step_y);
}

struct Job {
    static constexpr int32_t width = 4000, height = 3000, step = 64;
    std::vector<uint16_t> src = flat_field(width, height);
    std::vector<uint16_t> dst = src;
    Tables tables{2 * width, 2 * height, step, ZERKLSC_ALGORITHM_ORVEL};
};

} // namespace

std::vector<Workload> table_workloads() {
    const auto job = std::make_shared<Job>();
    const uint16_t* const table = job->tables.gains[0].data();
    return {{.name = "lsc2d_bicubic_correction, step 64",
             .frame_bytes = job->src.size() * sizeof(uint16_t),
             .fast =
                 [=] {
                     lsc2d_bicubic_correction(job->src.data(), job->dst.data(), Job::width, Job::height,
                                              table, Job::step, Job::step, job->tables.table_w);
                 },
             .plain =
                 [=] {
                     plain::bicubic_correction({job->src.data(), job->dst.data(), Job::width, Job::height,
                                                table, Job::step, Job::step, job->tables.table_w});
                 },
             .at_most = {5, 2.3, 1.8},
             .at_least = {25, 55, 70}}};
}

std::vector<Check> table_checks() {
    return {{"lsc2d_bicubic_correction", compare}};
}

} // namespace zerklsc::bench
