#include "zerklsc.h"

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "sampling/plain.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// Points inside and outside the plane; only their taps are moved to it.
TEST(PointSampling, EqualsThePlainFormToTheBit) {
    Random random(8);
    const int32_t w = 41, h = 26;
    for (const Against side : {Against::front, Against::back}) {
        Guarded<uint16_t> plane(random_samples(random, static_cast<size_t>(w * h)), side);
        for (const int32_t mode : {ZERKLSC_BOUNDARY_MIRROR, ZERKLSC_BOUNDARY_CLAMP}) {
            for (const int32_t r : {0, 1, 5, 12, 95}) {
                const bool clamp = mode == ZERKLSC_BOUNDARY_CLAMP;
                if (!clamp && r > 20)
                    continue;
                const int32_t out = clamp ? 60 : 25 - r;
                float sigma = 2.0f;
                for (const imfilter_t& filter : {box(r, mode), gaussian(r, &sigma, mode)}) {
                    Guarded<pix_point> points(50, side);
                    for (pix_point& p : points)
                        p = {static_cast<int16_t>(random.between(-out, (clamp ? w : w - 1) + out)),
                             static_cast<int16_t>(random.between(-out, (clamp ? h : h - 1) + out)), 0};
                    std::vector<pix_point> plain = points.copy();
                    ASSERT_EQ(img_sample(plane.data(), points.data(), 50, w, h, &filter), 0);
                    ASSERT_TRUE(zerklsc::plain::sample_points(plane.data(), plain.data(), 50, w, h, filter));
                    for (size_t k = 0; k < 50; ++k)
                        ASSERT_EQ(points[k].value, plain[k].value)
                            << points[k].x << ',' << points[k].y << " r " << r;
                    ASSERT_TRUE(points.intact());
                }
            }
        }
    }
}

TEST(PointSampling, RefusalsLeaveTheValues) {
    const std::vector<uint16_t> plane(20 * 12, uint16_t{100});
    for (const imfilter_t& filter : refused_filters()) {
        pix_point points[2] = {{10, 0, 5}, {0, 0, 6}};
        EXPECT_EQ(img_sample(plane.data(), points, 2, 20, 12, &filter), -1) << filter.filter_radius;
        EXPECT_EQ(points[0].value, 5);
        EXPECT_EQ(points[1].value, 6);
    }
    // One mirrored tap of the second point falls outside; neither is written.
    const imfilter_t filter = box(3);
    for (const auto& [x, y] : {std::pair{-17, 5}, std::pair{36, 5}, std::pair{5, -9}, std::pair{5, 20}}) {
        pix_point points[2] = {{5, 5, 8}, {static_cast<int16_t>(x), static_cast<int16_t>(y), 9}};
        EXPECT_EQ(img_sample(plane.data(), points, 2, 20, 12, &filter), -1) << x << ',' << y;
        EXPECT_EQ(points[0].value, 8);
        points[1] = {static_cast<int16_t>(x
                                          + (x < 0    ? 1
                                             : x > 20 ? -1
                                                      : 0)),
                     static_cast<int16_t>(y
                                          + (y < 0    ? 1
                                             : y > 12 ? -1
                                                      : 0)),
                     9};
        EXPECT_EQ(img_sample(plane.data(), points, 2, 20, 12, &filter), 0) << x << ',' << y;
        EXPECT_EQ(points[1].value, 100);
    }
    EXPECT_EQ(img_sample(plane.data(), nullptr, 0, 20, 12, &filter), 0);
    const AllocationScope scope(0);
    pix_point point = {5, 5, 8};
    EXPECT_EQ(img_sample(plane.data(), &point, 1, 20, 12, &filter), -1);
    EXPECT_EQ(point.value, 8);
}

} // namespace
