// The OTP stream, packed and unpacked.
#include <memory>

#include <fmt/core.h>

#include "compress/forms.h"
#include "frames.h"
#include "workload.h"

namespace zerklsc::bench {
namespace {

// Smooth tables of one size and room for their stream.
struct Module {
    std::vector<uint16_t> gains[ZERKLSC_CHANNELS];
    std::vector<uint8_t> stream;
    lsc_otp_info info;

    Module(int32_t width, int32_t height, uint8_t pattern, uint8_t mode)
        : info{pattern, width, height, {}, {}, mode} {
        stream.resize(static_cast<size_t>(3 * width * height));
        info.stream = stream.data();
        for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
            for (int32_t y = 0; y < height; ++y)
                for (int32_t x = 0; x < width; ++x) {
                    const double dx = (x - width * 0.5) / width, dy = (y - height * 0.5) / height;
                    gains[c].push_back(
                        static_cast<uint16_t>(1024.0 + (3000.0 + 100.0 * c) * (dx * dx + dy * dy)));
                }
            info.lsc_table[c] = gains[c].data();
        }
    }

    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
};

// Random tables through both forms of both directions.
std::string compare(testing::Random& random) {
    const auto width = static_cast<int32_t>(random.between(10, 70));
    const auto height = static_cast<int32_t>(random.between(3, 50));
    const auto pattern = static_cast<uint8_t>(random.between(0, 3));
    const auto mode = static_cast<uint8_t>(random.between(0, 1));
    Module fast(width, height, pattern, mode), plain(width, height, pattern, mode);
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
        for (size_t i = 0; i < fast.gains[c].size(); ++i)
            fast.gains[c][i] = plain.gains[c][i] = static_cast<uint16_t>(random.between(0, 65535));
    // A processor without vectors has the plain form alone.
    if (!has_fast_form(fast.info))
        return "";
    compress_rows(fast.info);
    plain::compress(plain.info);
    bool equal = fast.stream == plain.stream;
    decompress_rows(fast.info);
    plain::decompress(plain.info);
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c)
        equal = equal && fast.gains[c] == plain.gains[c];
    return equal ? "" : fmt::format("{} x {} nodes, pattern {}, mode {}", width, height, pattern, mode);
}

Workload workload(int32_t width, int32_t height, double goal) {
    const auto module = std::make_shared<Module>(width, height, uint8_t{1}, uint8_t{0});
    return {.name = fmt::format("OTP compress and decompress, {} x {}", width, height),
            .frame_bytes = 0,
            .fast =
                [=] {
                    lsc_compress(&module->info);
                    lsc_decompress(&module->info);
                },
            .plain =
                [=] {
                    plain::compress(module->info);
                    plain::decompress(module->info);
                },
            .at_most = {},
            .at_least = {goal, goal, goal}};
}

} // namespace

std::vector<Workload> compress_workloads() {
    return {workload(19, 15, 1.8), workload(65, 49, 2)};
}

std::vector<Check> compress_checks() {
    return {{"lsc_compress, lsc_decompress", compare}};
}

} // namespace zerklsc::bench
