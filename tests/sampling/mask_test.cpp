#include "zerklsc.h"

#include <cmath>

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

// Rounding makes the Gaussian a disc of ones: d^2 <= 2 pi sigma^2 ln 2, which is 4.355 sigma^2.
TEST(Mask, BoxIsAllOnesAndGaussianADisc) {
    for (float sigma : {-1.0f, 0.0f, 0.2f, 0.5f, 1.0f, 1.7f, 3.0f, 1e30f}) {
        for (int32_t r = -1; r <= 8; ++r) {
            const imfilter_t filter = sigma < 0.0f ? box(r) : gaussian(r, &sigma);
            const double reach =
                sigma < 0.0f ? 1e9 : 4.355172180607204 * std::pow(static_cast<double>(sigma), 2);
            const int32_t side = 2 * r + 1;
            Guarded<int32_t> mask(r < 0 ? 0 : static_cast<size_t>(side * side));
            int32_t sum = -1, expected_sum = 0;
            ASSERT_EQ(get_filter_mask(mask.data() + (r < 0 ? 0 : side * r + r), &sum, &filter), 0);
            for (int32_t k = 0; k < static_cast<int32_t>(mask.size()); ++k) {
                const int32_t dx = k % side - r, dy = k / side - r;
                const int32_t expected = dx * dx + dy * dy <= reach && sigma != 0.0f ? 1 : 0;
                ASSERT_EQ(mask[static_cast<size_t>(k)], expected)
                    << "sigma " << sigma << " at " << dx << ',' << dy;
                expected_sum += expected;
            }
            EXPECT_EQ(sum, expected_sum) << "sigma " << sigma << " radius " << r;
            EXPECT_TRUE(mask.intact());
        }
    }
}

TEST(Mask, RefusalWritesNothing) {
    int32_t mask = 5, sum = 6;
    for (const imfilter_t& filter :
         {imfilter_t{2, 0, 0, nullptr}, imfilter_t{-1, 0, 0, nullptr}, gaussian(0, nullptr)})
        EXPECT_EQ(get_filter_mask(&mask, &sum, &filter), -1);
    EXPECT_EQ(mask, 5);
    EXPECT_EQ(sum, 6);
}

} // namespace
