#include "zerklsc.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

TEST(Measurement, PeakIsTheBrightestPoint) {
    std::vector<uint16_t> plane = {7, 12, 12, 3};
    pix_point points[3] = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    imfilter_t point = box(0, ZERKLSC_BOUNDARY_CLAMP), refused = box(-1);
    EXPECT_EQ(find_peak_intensity(plane.data(), points, 3, 4, 1, &point), 12);
    EXPECT_EQ(points[0].value, 7);
    points[1].value = 50;
    EXPECT_EQ(find_peak_intensity(plane.data(), points, 3, 4, 1, &refused), 50);
    EXPECT_EQ(find_peak_intensity(plane.data(), points, 0, 4, 1, &point), 0);
}

TEST(Measurement, GainIsBrightestCentreOverNode) {
    // A dark plane, one bright sample under a centre point, two levels at nodes.
    std::vector<uint16_t> plane(20 * 20, uint16_t{0});
    plane[11 * 20 + 11] = 900;
    plane[0] = 300;
    plane[10] = 1800;
    Guarded<float> gains(6, Against::back);
    EXPECT_EQ(calc_otp_table(plane.data(), gains.data(), 20, 20, 10, 10, 3, 2, 0), 0);
    const float expected[6] = {3.0f, 0.5f, 900.0f, 900.0f, 900.0f, 900.0f};
    EXPECT_TRUE(std::equal(gains.begin(), gains.end(), expected));
    EXPECT_TRUE(gains.intact());
}

TEST(Measurement, BothFormsAgreeAndLeaveTheirSamples) {
    Random random(11);
    const std::vector<uint16_t> plane = random_samples(random, 50 * 40);
    std::vector<float> otp(48), correction(48);
    const imfilter_t filter = box(3);
    const AllocationScope scope;
    EXPECT_EQ(calc_otp_table(plane.data(), otp.data(), 50, 40, 7, 8, 8, 6, 3), 0);
    EXPECT_EQ(scope.leftovers(), std::vector<size_t>{192});
    EXPECT_EQ(calc_correction_table(plane.data(), correction.data(), 50, 40, 7, 8, 8, 6, &filter), 0);
    EXPECT_EQ(scope.leftovers(), std::vector<size_t>(2, 192));
    EXPECT_EQ(otp, correction);
}

TEST(Measurement, FlatPlaneNeedsNoCorrection) {
    for (const uint16_t level : {uint16_t{1}, uint16_t{800}, uint16_t{65535}}) {
        const std::vector<uint16_t> plane(50 * 40, level);
        for (const int32_t r : {0, 1, 2, 5, 16}) {
            float gains[48];
            const AllocationScope scope;
            ASSERT_EQ(calc_otp_table(plane.data(), gains, 50, 40, 7, 8, 8, 6, r), 0);
            for (const float g : gains)
                ASSERT_FLOAT_EQ(g, 1.0f) << level << " radius " << r;
        }
    }
}

// A plane without room for a centre cluster has the reference level 0.
TEST(Measurement, TinyPlaneHasNoReference) {
    const std::vector<uint16_t> plane(9 * 30, uint16_t{500});
    float gains[2] = {7, 7};
    const AllocationScope scope;
    EXPECT_EQ(calc_otp_table(plane.data(), gains, 9, 30, 4, 8, 2, 1, 1), 0);
    EXPECT_EQ(gains[0], 0.0f);
    EXPECT_EQ(gains[1], 0.0f);
}

TEST(Measurement, RefusalsWriteAndLeaveNothing) {
    const std::vector<uint16_t> plane(20 * 12, uint16_t{100});
    float gains[4] = {1, 2, 3, 4};
    std::vector<imfilter_t> filters = refused_filters();
    const AllocationScope scope;
    for (const imfilter_t& filter : filters)
        EXPECT_EQ(calc_correction_table(plane.data(), gains, 20, 12, 10, 6, 2, 2, &filter), -1);
    for (const int32_t r : {-1, 12, INT32_MAX})
        EXPECT_EQ(calc_otp_table(plane.data(), gains, 20, 12, 10, 6, 2, 2, r), -1);
    EXPECT_EQ(calc_otp_table(plane.data(), gains, 20, 12, 10, 6, -2, 2, 1), -1);
    EXPECT_EQ(calc_otp_table(plane.data(), gains, 20, 12, 10, 6, 0, 2, 1), 0);
    EXPECT_TRUE(scope.leftovers().empty());
    EXPECT_EQ(gains[0], 1.0f);
}

TEST(Measurement, EveryFailedAllocationIsRefused) {
    const std::vector<uint16_t> plane(20 * 12, uint16_t{100});
    size_t n = 0;
    for (int32_t status = -1; status != 0; ++n) {
        ASSERT_LT(n, 20u);
        float gains[4] = {};
        const AllocationScope scope(n);
        status = calc_otp_table(plane.data(), gains, 20, 12, 10, 6, 2, 2, 1);
        EXPECT_EQ(status, scope.failed() ? -1 : 0);
        EXPECT_EQ(scope.leftovers().size(), scope.failed() ? 0u : 1u);
        EXPECT_EQ(gains[0], scope.failed() ? 0.0f : 1.0f);
    }
    EXPECT_GT(n, 1u);
}

} // namespace
