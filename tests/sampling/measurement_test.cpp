#include "zerklsc.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/allocations.h"
#include "support/guarded.h"

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

// A dark plane with one bright sample under a centre point and three levels at nodes.
TEST(Measurement, GainIsBrightestCentreOverNodeAndSamplesAreLeft) {
    std::vector<uint16_t> plane(20 * 20, uint16_t{0});
    plane[11 * 20 + 11] = 900;
    plane[0] = 300;
    plane[10] = 1800;
    plane[6 * 20 + 10] = 450;
    Guarded<float> otp(6), correction(6);
    const imfilter_t filter = box(0);
    const AllocationScope scope;
    EXPECT_EQ(calc_otp_table(plane.data(), otp.data(), 20, 20, 10, 6, 3, 2, 0), 0);
    EXPECT_EQ(scope.leftovers(), std::vector<size_t>{24});
    EXPECT_EQ(calc_correction_table(plane.data(), correction.data(), 20, 20, 10, 6, 3, 2, &filter), 0);
    EXPECT_EQ(scope.leftovers(), std::vector<size_t>(2, 24));
    EXPECT_EQ(otp.copy(), (std::vector<float>{3.0f, 0.5f, 900.0f, 900.0f, 2.0f, 900.0f}));
    EXPECT_EQ(correction.copy(), otp.copy());
}

} // namespace
