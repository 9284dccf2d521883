#include "zerklsc.h"

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/allocations.h"

namespace {

using namespace zerklsc::testing;

// What the samplers of a plane refuse, or have nothing to do for.
TEST(Refusals, WriteAndLeaveNothing) {
    const std::vector<uint16_t> plane(20 * 20, uint16_t{100});
    float level = 7, gain = 7;
    pix_point point = {10, 0, 5};
    const auto levels = [&](int32_t w, int32_t h, int32_t columns, int32_t rows, const imfilter_t& filter) {
        return img_sample_grid(plane.data(), &level, w, h, 1, 1, columns, rows, &filter);
    };
    const auto gains = [&](int32_t w, int32_t h, int32_t columns, int32_t rows, int32_t radius) {
        return calc_otp_table(plane.data(), &gain, w, h, 10, 6, columns, rows, radius);
    };
    const std::vector<imfilter_t> filters = refused_filters();
    const AllocationScope scope;
    for (const imfilter_t& filter : filters) {
        EXPECT_EQ(levels(20, 12, 1, 1, filter), -1) << &filter - &filters[0];
        EXPECT_EQ(img_sample(plane.data(), &point, 1, 20, 12, &filter), -1) << &filter - &filters[0];
        EXPECT_EQ(calc_correction_table(plane.data(), &gain, 20, 12, 10, 6, 1, 1, &filter), -1);
    }
    const imfilter_t clamped = box(0, ZERKLSC_BOUNDARY_CLAMP), too_wide = box(12);
    for (const auto& [w, h] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-4, 4}})
        EXPECT_EQ(levels(w, h, 1, 1, clamped), -1) << w;
    for (const auto& [columns, rows] : {std::pair{0, 1}, std::pair{1, 0}, std::pair{1, -1}})
        EXPECT_EQ(levels(20, 12, columns, rows, clamped) | levels(20, 12, columns, rows, too_wide), 0)
            << rows;
    EXPECT_EQ(gains(20, 12, 1, 1, 12), -1);
    for (const auto& [columns, rows] : {std::pair{-2, 2}, std::pair{2, -2}, std::pair{0, -1}})
        EXPECT_EQ(gains(20, 12, columns, rows, 1), -1) << rows;
    for (const auto& [columns, rows] : {std::pair{0, 2}, std::pair{2, 0}})
        EXPECT_EQ(gains(20, 12, columns, rows, 1), 0) << rows;
    for (const auto& [w, h] : {std::pair{9, 20}, std::pair{20, 9}, std::pair{1, 1}}) { // no centre cluster
        EXPECT_EQ(gains(w, h, 1, 1, 0), -1) << w;
        EXPECT_EQ(calc_correction_table(plane.data(), &gain, w, h, 10, 10, 1, 1, &clamped), -1) << w;
    }
    EXPECT_TRUE(scope.leftovers().empty());
    EXPECT_TRUE(level == 7.0f && gain == 7.0f && point.value == 5);
    EXPECT_EQ(gains(10, 10, 1, 1, 0), 0) << "the smallest plane with a centre cluster";
}

TEST(Refusals, WithoutMemoryPointsKeepTheirValues) {
    const uint16_t sample = 100;
    pix_point point = {0, 0, 5};
    const imfilter_t filter = box(0);
    const AllocationScope scope(0);
    EXPECT_EQ(img_sample(&sample, &point, 1, 1, 1, &filter), -1);
    EXPECT_EQ(point.value, 5);
}

} // namespace
