#include "zerklsc.h"

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

TEST(Meshgrid, ColumnsRunFastestAndLevelsAreLeft) {
    for (const Against side : {Against::front, Against::back}) {
        Guarded<uint16_t> xs({7, 0, 32767}, side), ys({5, 65535}, side);
        Guarded<pix_point> points(std::vector<pix_point>(6, {1, 1, 4321}), side);
        meshgrid(points.data(), xs.data(), ys.data(), 3, 2);
        for (size_t k = 0; k < 6; ++k) {
            EXPECT_EQ(points[k].x, static_cast<int16_t>(xs[k % 3])) << k;
            EXPECT_EQ(points[k].y, k < 3 ? 5 : -1) << k;
            EXPECT_EQ(points[k].value, 4321) << k;
        }
        EXPECT_TRUE(points.intact());
    }
}

TEST(Meshgrid, EmptyListsWriteNothing) {
    meshgrid(nullptr, nullptr, nullptr, 0, 5);
    meshgrid(nullptr, nullptr, nullptr, 5, 0);
    meshgrid(nullptr, nullptr, nullptr, -1, -1);
}

} // namespace
