// Split, merge and black level.
#include <memory>

#include <fmt/core.h>

#include "bayer/mosaic_plain.h"
#include "frames.h"
#include "workload.h"

namespace zerklsc::bench {
namespace {

struct Job {
    int32_t width, height;
    std::vector<uint16_t> raw;
    std::vector<uint16_t> memory;
    uint16_t* planes[ZERKLSC_CHANNELS];
    isp_blc_param black;

    Job(int32_t width_, int32_t height_, std::vector<uint16_t> raw_)
        : width(width_), height(height_), raw(std::move(raw_)),
          memory(raw.size()), black{static_cast<uint16_t>(width),
                                    static_cast<uint16_t>(height),
                                    {64, 60, 255, 0}} {
        for (size_t c = 0; c < ZERKLSC_CHANNELS; ++c)
            planes[c] = memory.data() + c * memory.size() / ZERKLSC_CHANNELS;
    }
};

// Everything the three functions make of one random frame of even size.
std::string compare(testing::Random& random) {
    const auto width = static_cast<int32_t>(2 * random.between(1, 70));
    const auto height = static_cast<int32_t>(2 * random.between(1, 10));
    const auto samples = testing::random_samples(random, static_cast<size_t>(width * height),
                                                 static_cast<testing::Spread>(random.between(0, 2)));
    Job fast(width, height, samples), plain(width, height, samples);
    bayer_split_channel(fast.raw.data(), fast.planes, width, height);
    plain::split_channel(plain.raw.data(), plain.planes, width, height);
    bool equal = fast.memory == plain.memory;
    isp_blc_process(fast.raw.data(), &fast.black);
    plain::subtract_black(plain.raw.data(), plain.black);
    equal = equal && fast.raw == plain.raw;
    bayer_merge_channel(fast.raw.data(), fast.planes, width, height);
    plain::merge_channel(plain.raw.data(), plain.planes, width, height);
    equal = equal && fast.raw == plain.raw;
    return equal ? "" : fmt::format("{} x {} pixels", width, height);
}

} // namespace

std::vector<Workload> bayer_workloads() {
    const auto job = std::make_shared<Job>(4000, 3000, flat_field(4000, 3000));
    const size_t bytes = job->raw.size() * sizeof(uint16_t);
    return {{.name = "bayer_split_channel",
             .frame_bytes = bytes,
             .fast = [=] { bayer_split_channel(job->raw.data(), job->planes, job->width, job->height); },
             .plain = [=] { plain::split_channel(job->raw.data(), job->planes, job->width, job->height); },
             .at_most = {1.2, 1.2, 1.2},
             .at_least = {2, 2, 2}},
            {.name = "bayer_merge_channel",
             .frame_bytes = bytes,
             .fast = [=] { bayer_merge_channel(job->raw.data(), job->planes, job->width, job->height); },
             .plain = [=] { plain::merge_channel(job->raw.data(), job->planes, job->width, job->height); },
             .at_most = {1.2, 1.2, 1.2},
             .at_least = {2, 2, 2}},
            {.name = "isp_blc_process",
             .frame_bytes = bytes,
             .fast = [=] { isp_blc_process(job->raw.data(), &job->black); },
             .plain = [=] { plain::subtract_black(job->raw.data(), job->black); },
             .at_most = {0.75, 0.75, 0.75},
             .at_least = {10, 10, 10}}};
}

std::vector<Check> bayer_checks() {
    return {{"bayer_split_channel, bayer_merge_channel, isp_blc_process", compare}};
}

} // namespace zerklsc::bench
