#include "bicubic/generator/clipped_samples.h"

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/instruction_sets.h"

namespace zerklsc::testing {
namespace {

// The planes in the order in which their samples are found above white.
std::vector<int32_t> visits(View<const uint16_t> raw, const isp_param_tag& param) {
    std::vector<int32_t> planes;
    for_each_clipped_sample(raw, param, [&](int32_t plane) { planes.push_back(plane); });
    return planes;
}

// One sample above white in turn, the others just not, and then all of them; in rows around the length of a
// vector and of the parts that are looked at as a whole.
TEST(ClippedSamples, AreFoundInRasterOrderWhereverTheyStand) {
    on_each_instruction_set([](const std::string& word) {
        isp_param_tag param{};
        std::copy_n(std::begin({9, 0, 64, 255}), 4, param.blc);
        for (const int32_t width : {2, 14, 16, 34, 64, 66, 510, 514}) {
            Guarded<uint16_t> raw(static_cast<size_t>(2 * width));
            std::vector<int32_t> planes;
            for (size_t i = 0; i < raw.size(); ++i) {
                planes.push_back(static_cast<int32_t>(i) % 2 + (i < raw.size() / 2 ? 0 : 2));
                raw[i] = static_cast<uint16_t>(1023 + param.blc[planes[i]]);
            }
            const View<const uint16_t> frame = {raw.data(), width, 2, width};
            for (size_t i = 0; i < raw.size(); ++i) {
                ++raw[i];
                ASSERT_EQ(visits(frame, param), std::vector<int32_t>{planes[i]}) << word << ' ' << i;
                --raw[i];
            }
            std::fill(raw.begin(), raw.end(), 65535);
            EXPECT_EQ(visits(frame, param), planes) << word << ' ' << width;
        }
    });
}

} // namespace
} // namespace zerklsc::testing
