#include "zerklsc.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

uint16_t expected_level(uint16_t sample, uint8_t level) {
    const int difference = int{sample} - int{level};
    return static_cast<uint16_t>(difference < 0 ? 0 : difference);
}

// All samples against the levels where a signed or a wrapping subtraction would show.
TEST(BlackLevel, StopsAtZeroForEverySample) {
    std::vector<uint16_t> ramp(65536);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<uint16_t>(i);
    for (const uint8_t level :
         {uint8_t{0}, uint8_t{1}, uint8_t{64}, uint8_t{127}, uint8_t{128}, uint8_t{255}}) {
        std::vector<uint16_t> raw = ramp;
        const isp_blc_param param = {.width = 256, .height = 256, .blc = {level, level, level, level}};
        isp_blc_process(raw.data(), &param);
        for (size_t i = 0; i < raw.size(); ++i)
            ASSERT_EQ(raw[i], expected_level(ramp[i], level)) << i << " level " << int{level};
    }
}

TEST(BlackLevel, FollowsTheParityOfColumnAndRowUpToOddEdges) {
    Random random(4);
    for (const Against side : {Against::front, Against::back}) {
        for (uint16_t width = 0; width <= 41; ++width) {
            const uint16_t height = width % 4;
            const size_t w = width;
            const std::vector<uint16_t> before = random_samples(random, w * height, Spread::any);
            Guarded<uint16_t> raw(before, side);
            const isp_blc_param param = {.width = width, .height = height, .blc = {10, 80, 160, 250}};
            isp_blc_process(raw.data(), &param);
            for (size_t i = 0; i < w * height; ++i)
                ASSERT_EQ(raw[i], expected_level(before[i], param.blc[i % w % 2 + i / w % 2 * 2])) << width;
            ASSERT_TRUE(raw.intact());
        }
    }
}

} // namespace
