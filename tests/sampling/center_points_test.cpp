#include "zerklsc.h"

#include <gtest/gtest.h>

#include "support/allocations.h"

namespace {

using namespace zerklsc::testing;

// A raster from the top left, with the two innermost points of a line two samples apart.
int32_t position(int32_t size, int32_t half, int32_t step, int32_t k) {
    return size / 2 + (k < half ? -1 - (half - 1 - k) * step : 1 + (k - half) * step);
}

TEST(CentrePoints, SpanATenthOfThePlaneToEachSide) {
    const struct {
        int32_t width, height, step, nx, ny;
    } cases[] = {{2000, 1500, 11, 18, 13}, {100, 100, 1, 10, 10}, {10, 10, 1, 1, 1},       {10, 9, 1, 1, 0},
                 {300, 255, 1, 30, 25},    {300, 256, 2, 15, 12}, {70000, 20, 1, 7000, 2}, {0, -5, 1, 0, 0}};
    for (const auto& c : cases) {
        const AllocationScope scope;
        pix_point* points = nullptr;
        int32_t count = -1;
        ASSERT_EQ(init_center_points(c.width, c.height, &points, &count), 0);
        ASSERT_EQ(count, 4 * c.nx * c.ny) << c.width;
        ASSERT_NE(points, nullptr) << "a list to release, with or without points";
        for (int32_t k = 0; k < count; ++k) {
            ASSERT_EQ(points[k].x, static_cast<int16_t>(position(c.width, c.nx, c.step, k % (2 * c.nx))))
                << c.width << " point " << k;
            ASSERT_EQ(points[k].y, position(c.height, c.ny, c.step, k / (2 * c.nx)))
                << c.width << " point " << k;
        }
        release_center_points(points);
        EXPECT_TRUE(scope.leftovers().empty());
    }
    release_center_points(nullptr);
}

TEST(CentrePoints, WithoutMemoryOrBeyond32BitsNothingIsWritten) {
    pix_point here;
    pix_point* points = &here;
    int32_t count = 3;
    EXPECT_EQ(init_center_points(INT32_MAX, 127, &points, &count), -1);
    const AllocationScope scope(0);
    EXPECT_EQ(init_center_points(100, 100, &points, &count), -1);
    EXPECT_EQ(points, &here);
    EXPECT_EQ(count, 3);
}

TEST(CentrePoints, FirstOfEqualMaximaWins) {
    const pix_point points[] = {{0, 0, 5}, {0, 0, 65535}, {0, 0, 65535}, {0, 0, 40000}};
    EXPECT_EQ(get_pixel_maximum(points, 4), 1);
    EXPECT_EQ(get_pixel_maximum(points, 1), 0);
    EXPECT_EQ(get_pixel_maximum(nullptr, 0), 0);
}

} // namespace
