#include "zerklsc.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

TEST(Merge, UndoesTheSplitAndLeavesTheOddLastColumnAndRow) {
    Random random(2);
    for (int32_t width = 0; width <= 67; ++width) {
        const int32_t height = width % 6;
        const size_t w = static_cast<size_t>(width), h = static_cast<size_t>(height);
        const size_t size = (w / 2) * (h / 2);
        const std::vector<uint16_t> frame = random_samples(random, w * h);
        Guarded<uint16_t> split(4 * size), raw(w * h, width % 2 ? Against::front : Against::back);
        uint16_t* planes[4];
        for (size_t c = 0; c < 4; ++c)
            planes[c] = split.data() + c * size;
        bayer_split_channel(frame.data(), planes, width, height);
        std::fill(raw.begin(), raw.end(), uint16_t{77});
        EXPECT_EQ(bayer_merge_channel(raw.data(), planes, width, height), (height < 2 ? width : height) / 2);
        for (size_t i = 0; i < w * h; ++i) {
            const bool merged = i % w < w / 2 * 2 && i / w < h / 2 * 2;
            ASSERT_EQ(raw[i], merged ? frame[i] : 77) << width << 'x' << height;
        }
        ASSERT_TRUE(raw.intact());
    }
}

} // namespace
