#include "zerklsc.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

TEST(Rotation, TurnsByHalfATurn) {
    Random random(3);
    const struct { int width, height; } cases[] = {{3, 2}, {1, 1}, {1, 7}, {40, 1}, {33, 17}, {64, 8}};
    for (const auto& c : cases) {
        const size_t w = static_cast<size_t>(c.width), h = static_cast<size_t>(c.height);
        const std::vector<uint16_t> before = random_samples(random, w * h);
        Guarded<uint16_t> raw(before, Against::back);
        const AllocationScope scope;
        EXPECT_EQ(bayer_rotation(raw.data(), c.width, c.height), c.height);
        for (size_t y = 0; y < h; ++y) {
            for (size_t x = 0; x < w; ++x)
                ASSERT_EQ(raw[y * w + x], before[(h - 1 - y) * w + (w - 1 - x)]) << x << ',' << y;
        }
        EXPECT_TRUE(raw.intact());
    }
}

TEST(Rotation, LeavesItsCopyAllocatedByIntent) {
    uint16_t raw[6] = {0, 1, 2, 3, 4, 5};
    const AllocationScope scope;
    bayer_rotation(raw, 3, 2);
    EXPECT_EQ(scope.leftovers(), std::vector<size_t>{12});
}

TEST(Rotation, FrameWithoutRowsReturnsAtOnce) {
    uint16_t raw[1] = {9};
    const AllocationScope scope;
    for (const int height : {0, -1, INT32_MIN})
        EXPECT_EQ(bayer_rotation(raw, 3, height), height);
    EXPECT_EQ(bayer_rotation(raw, -5, 2), 2);
    EXPECT_EQ(raw[0], 9);
    EXPECT_TRUE(scope.leftovers().empty());
}

TEST(Rotation, WithoutMemoryTheFrameStaysAsItIs) {
    uint16_t raw[6] = {0, 1, 2, 3, 4, 5};
    {
        const AllocationScope scope(0);
        EXPECT_EQ(bayer_rotation(raw, 3, 2), -1);
    }
    for (uint16_t i = 0; i < 6; ++i)
        EXPECT_EQ(raw[i], i);
}

} // namespace
