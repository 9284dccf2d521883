#include "zerklsc.h"

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// Every width around the vectors, odd sizes, with no sample read or written beyond the buffers. Merging
// undoes it and leaves the odd last column and row.
TEST(SplitAndMerge, PlaneIsNamedByTheParityOfColumnAndRow) {
    Random random(1);
    for (const Against side : {Against::front, Against::back}) {
        for (int32_t width = 0; width <= 67; ++width) {
            const int32_t height = width % 6;
            const size_t w = static_cast<size_t>(width), h = static_cast<size_t>(height);
            const size_t size = (w / 2) * (h / 2);
            Guarded<uint16_t> raw(random_samples(random, w * h), side), split(4 * size, side);
            uint16_t* planes[4];
            for (size_t c = 0; c < 4; ++c)
                planes[c] = split.data() + c * size;
            bayer_split_channel(raw.data(), planes, width, height);
            for (size_t y = 0; y < h / 2 * 2; ++y) {
                for (size_t x = 0; x < w / 2 * 2; ++x)
                    ASSERT_EQ(planes[x % 2 + 2 * (y % 2)][y / 2 * (w / 2) + x / 2], raw[y * w + x])
                        << width << 'x' << height << " at " << x << ',' << y;
            }
            ASSERT_TRUE(split.intact()) << width;
            const std::vector<uint16_t> frame = raw.copy();
            std::fill(raw.begin(), raw.end(), uint16_t{77});
            EXPECT_EQ(bayer_merge_channel(raw.data(), planes, width, height),
                      (height < 2 ? width : height) / 2);
            for (size_t i = 0; i < w * h; ++i) {
                const bool merged = i % w < w / 2 * 2 && i / w < h / 2 * 2;
                ASSERT_EQ(raw[i], merged ? frame[i] : 77) << width << 'x' << height;
            }
            ASSERT_TRUE(raw.intact());
        }
    }
}

TEST(SplitAndMerge, SizesWithoutAPlaneTouchNothing) {
    uint16_t* planes[4] = {};
    for (const int32_t none : {INT32_MIN, -5, 0, 1}) {
        bayer_split_channel(nullptr, planes, none, 8);
        bayer_split_channel(nullptr, planes, 8, none);
        EXPECT_EQ(bayer_merge_channel(nullptr, planes, none, 8), 4);
        EXPECT_EQ(bayer_merge_channel(nullptr, planes, 8, none), 4);
    }
}

} // namespace
