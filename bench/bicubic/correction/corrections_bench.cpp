// Both ISP corrections.
#include <memory>

#include <fmt/core.h>

#include "bicubic/correction/correction.h"
#include "frames.h"
#include "workload.h"
#include "zerklsc_driver.h"

namespace zerklsc::bench {
namespace {

constexpr bool is_tvessa2(int32_t algorithm) {
    return algorithm != ZERKLSC_ALGORITHM_ORVEL_WEIGHTS;
}

// What the exported corrections hand to both forms.
Correction correction_of(const Tables& tables, const uint16_t* in, uint16_t* out) {
    isp_param_tag param{};
    lsc2d_info_to_isp_param(&tables.info, &param);
    generate_bicubic_weight_table(&param.weight, param.grid);
    return is_tvessa2(tables.info.algorithm) ? tvessa2_correction(in, out, param)
                                             : vessal2_correction(in, out, param);
}

std::string compare(testing::Random& random) {
    const auto width = static_cast<int32_t>(random.between(1, 200));
    const auto height = static_cast<int32_t>(random.between(1, 20));
    const auto step = static_cast<int32_t>(random.between(1, random.between(0, 3) == 0 ? 255 : 40));
    const bool in_place = random.between(0, 1) == 0;
    Tables tables(width, height, step, random.between(0, 1) == 0 ? 2 : 4);
    for (auto& gains : tables.gains)
        if (random.between(0, 1) == 0)
            gains = testing::random_samples(random, gains.size());
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
        tables.info.lsc_table[c] = tables.gains[c].data();
    const auto spread = static_cast<testing::Spread>(random.between(0, 2));
    auto samples = testing::random_samples(random, static_cast<size_t>(width * height), spread);
    if (random.between(0, 1) == 0)
        for (uint16_t& sample : samples)
            sample &= 1023;
    testing::Guarded<uint16_t> fast(samples, testing::Against::back), plain(samples, testing::Against::front);
    const Correction job = correction_of(tables, in_place ? fast.data() : samples.data(), fast.data());
    fastest_form(job)(job);
    plain::correct(correction_of(tables, samples.data(), plain.data()));
    if (fast.copy() == plain.copy() && fast.intact())
        return {};
    return fmt::format("{} x {} pixels, step {}, algorithm {}, in place {}", width, height, step,
                       tables.info.algorithm, in_place);
}

struct Job {
    std::vector<uint16_t> in, out;
    Tables tables;

    Job(int32_t width, int32_t height, int32_t step, int32_t algorithm)
        : in(flat_field(width, height)), out(in), tables(width, height, step, algorithm) {}
};

Workload workload(int32_t width, int32_t height, int32_t step, int32_t algorithm, bool in_place,
                  std::array<double, 3> at_most, std::array<double, 3> at_least) {
    const auto job = std::make_shared<Job>(width, height, step, algorithm);
    uint16_t* const in = in_place ? job->out.data() : job->in.data();
    const char* const isp = is_tvessa2(algorithm) ? "tvessa2" : "vessaL2";
    return {.name = fmt::format("{}, step {}{}{}", isp, step, in_place ? ", in place" : "",
                                height != 3000  ? fmt::format(", {} x {}", width, height)
                                : width != 4000 ? fmt::format(", width {}", width)
                                                : ""),
            .frame_bytes = job->in.size() * sizeof(uint16_t),
            .fast = [=] { lsc2d_correction_wrapper(in, job->out.data(), &job->tables.info); },
            .plain = [=] { plain::correct(correction_of(job->tables, in, job->out.data())); },
            .at_most = at_most,
            .at_least = at_least};
}

// The same frame by two threads' bands, in rows that a V4L2 driver pads to a multiple of 128 bytes.
Workload padded_workload(int32_t step, int32_t algorithm, std::array<double, 3> at_most) {
    constexpr int32_t width = 4000, height = 3000, stride = 4032;
    struct Padded {
        std::vector<uint16_t> in = flat_field(stride, height), out = in;
        Tables tables;
    };
    const std::shared_ptr<Padded> job(new Padded{.tables = {width, height, step, algorithm}});
    const auto rows = [job](int32_t first, int32_t count) {
        constexpr size_t bytes = stride * sizeof(uint16_t);
        zerklsc_correct(&job->tables.info, job->in.data(), bytes, job->out.data(), bytes, first, count);
    };
    const char* const isp = is_tvessa2(algorithm) ? "tvessa2" : "vessaL2";
    return {.name = fmt::format("{}, step {}, padded rows, two bands", isp, step),
            .frame_bytes = size_t{width} * height * sizeof(uint16_t),
            .fast =
                [rows] {
                    rows(0, height / 2);
                    rows(height / 2, height / 2);
                },
            .plain =
                [job] {
                    Correction padded = correction_of(job->tables, job->in.data(), job->out.data());
                    padded.in.stride = padded.out.stride = stride;
                    plain::correct(padded);
                },
            .at_most = at_most,
            .at_least = {}};
}

} // namespace

std::vector<Workload> bicubic_workloads() {
    std::vector<Workload> rows;
    for (const int32_t algorithm : {2, 4}) {
        rows.push_back(workload(4000, 3000, 64, algorithm, false, {3.0, 1.5, 1.25}, {15, 28, 33}));
        rows.push_back(workload(4000, 3000, 32, algorithm, false, {3.0, 1.5, 1.25}, {15, 28, 33}));
        rows.push_back(workload(4000, 3000, 16, algorithm, false, {3.2, 1.7, 1.45}, {15, 28, 33}));
        rows.push_back(workload(4000, 3000, 64, algorithm, true, {2.6, 1.25, 0.8}, {}));
        rows.push_back(workload(4000, 3000, 3, algorithm, false, {8, 4.5, 4.5}, {}));
        rows.push_back(workload(1920, 1080, 32, algorithm, false, {4.5, 2.5, 2.5}, {15, 28, 33}));
        rows.push_back(padded_workload(64, algorithm, {3.0, 1.5, 1.25}));
        rows.push_back(workload(3998, 3000, 50, algorithm, false, {3.5, 2.2, 1.9}, {14, 20, 24}));
    }
    return rows;
}

std::vector<Check> bicubic_checks() {
    return {{"bicubic_lnc_correction_tvessa2, _vessaL2", compare}};
}

} // namespace zerklsc::bench
