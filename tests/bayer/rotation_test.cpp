#include "zerklsc.h"

#include <gtest/gtest.h>

#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

TEST(Rotation, TurnsByHalfATurnAndLeavesItsCopyByIntent) {
    Random random(3);
    for (const auto& [width, height] : {std::pair{3, 2}, std::pair{1, 7}, std::pair{33, 17}, std::pair{5, 0},
                                        std::pair{0, 5}, std::pair{-3, 4}, std::pair{5, INT32_MIN}}) {
        const size_t w = static_cast<size_t>(std::max(width, 0)),
                     h = static_cast<size_t>(std::max(height, 0));
        const std::vector<uint16_t> before = random_samples(random, w * h);
        Guarded<uint16_t> raw(before, Against::back);
        const AllocationScope scope;
        EXPECT_EQ(bayer_rotation(raw.data(), width, height), height);
        for (size_t i = 0; i < w * h; ++i)
            ASSERT_EQ(raw[i], before[(h - 1 - i / w) * w + (w - 1 - i % w)]) << width << 'x' << height;
        EXPECT_EQ(scope.leftovers(), std::vector<size_t>(w * h == 0 ? 0 : 1, w * h * 2));
    }
}

} // namespace
