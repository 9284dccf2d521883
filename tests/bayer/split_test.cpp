#include "zerklsc.h"

#include <gtest/gtest.h>

#include "bayer/planes.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

TEST(Split, PlaneIsNamedByTheParityOfColumnAndRow) {
    uint16_t raw[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    Planes planes(2, Against::back);
    bayer_split_channel(raw, planes.list, 4, 2);
    const uint16_t expected[4][2] = {{0, 2}, {1, 3}, {4, 6}, {5, 7}};
    for (int c = 0; c < 4; ++c) {
        EXPECT_EQ(planes.plane[c][0], expected[c][0]) << c;
        EXPECT_EQ(planes.plane[c][1], expected[c][1]) << c;
    }
}

// Every width around the vectors, odd sizes, with no sample read or written beyond the buffers.
TEST(Split, TakesEverySampleOfEverySize) {
    Random random(1);
    for (const Against side : {Against::front, Against::back}) {
        for (int32_t width = 0; width <= 67; ++width) {
            const int32_t height = width % 6;
            const size_t w = static_cast<size_t>(width), h = static_cast<size_t>(height);
            Guarded<uint16_t> raw(random_samples(random, w * h), side);
            const std::vector<uint16_t> before = raw.copy();
            Planes planes((w / 2) * (h / 2), side);
            bayer_split_channel(raw.data(), planes.list, width, height);
            for (size_t y = 0; y < h / 2 * 2; ++y) {
                for (size_t x = 0; x < w / 2 * 2; ++x)
                    ASSERT_EQ(planes.plane[x % 2 + 2 * (y % 2)][y / 2 * (w / 2) + x / 2], before[y * w + x])
                        << width << 'x' << height << " at " << x << ',' << y;
            }
            ASSERT_TRUE(planes.intact()) << width;
        }
    }
}

} // namespace
