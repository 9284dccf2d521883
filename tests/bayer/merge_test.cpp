#include "zerklsc.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "bayer/planes.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

TEST(Merge, UndoesTheSplitAndLeavesTheOddLastColumnAndRow) {
    Random random(2);
    for (const Against side : {Against::front, Against::back}) {
        for (int32_t width = 0; width <= 67; ++width) {
            const int32_t height = width % 6;
            const size_t w = static_cast<size_t>(width), h = static_cast<size_t>(height);
            const std::vector<uint16_t> frame = random_samples(random, w * h);
            Planes planes((w / 2) * (h / 2), side);
            bayer_split_channel(frame.data(), planes.list, width, height);
            Guarded<uint16_t> raw(w * h, side);
            std::fill(raw.begin(), raw.end(), uint16_t{77});
            bayer_merge_channel(raw.data(), planes.list, width, height);
            for (size_t y = 0; y < h; ++y) {
                for (size_t x = 0; x < w; ++x) {
                    const bool merged = x < w / 2 * 2 && y < h / 2 * 2;
                    ASSERT_EQ(raw[y * w + x], merged ? frame[y * w + x] : 77) << width << 'x' << height;
                }
            }
            ASSERT_TRUE(raw.intact());
        }
    }
}

TEST(Merge, ResultIsHalfTheHeightOrHalfTheWidthOfAFrameWithoutRows) {
    uint16_t raw[24] = {};
    Planes planes(6, Against::back);
    const struct {
        int32_t width, height, result;
    } cases[] = {{4, 6, 3}, {4, 5, 2}, {6, 2, 1}, {6, 1, 3}, {7, 0, 3}, {8, -4, 4}};
    for (const auto& c : cases)
        EXPECT_EQ(bayer_merge_channel(raw, planes.list, c.width, c.height), c.result) << c.height;
}

} // namespace
