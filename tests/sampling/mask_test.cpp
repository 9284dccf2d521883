#include "zerklsc.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

// The weights of a filter of radius r, written around the centre of a guarded mask.
std::vector<int32_t> mask_of(const imfilter_t& filter, int32_t& sum) {
    const int32_t side = 2 * filter.filter_radius + 1;
    Guarded<int32_t> mask(static_cast<size_t>(side * side));
    EXPECT_EQ(
        get_filter_mask(mask.data() + side * filter.filter_radius + filter.filter_radius, &sum, &filter), 0);
    EXPECT_TRUE(mask.intact());
    return mask.copy();
}

TEST(Mask, BoxCountsEveryTap) {
    for (int32_t r = 0; r <= 9; ++r) {
        int32_t sum = -1;
        const std::vector<int32_t> mask = mask_of(box(r), sum);
        EXPECT_EQ(sum, (2 * r + 1) * (2 * r + 1));
        EXPECT_EQ(std::count(mask.begin(), mask.end(), 1), sum);
    }
}

// Rounding makes a disc of ones: d^2 <= 2 pi sigma^2 ln 2, which is 4.355 sigma^2.
TEST(Mask, GaussianIsADiscOfOnes) {
    for (float sigma : {0.2f, 0.5f, 1.0f, 1.7f, 3.0f, 1e18f, 1e30f}) {
        for (int32_t r = 0; r <= 8; ++r) {
            int32_t sum = -1;
            const std::vector<int32_t> mask = mask_of(gaussian(r, &sigma), sum);
            EXPECT_EQ(std::accumulate(mask.begin(), mask.end(), 0), sum);
            const double squared_reach = 4.355172180607204 * std::pow(static_cast<double>(sigma), 2);
            for (int32_t dy = -r; dy <= r; ++dy) {
                for (int32_t dx = -r; dx <= r; ++dx)
                    ASSERT_EQ(mask[static_cast<size_t>((dy + r) * (2 * r + 1) + dx + r)],
                              dx * dx + dy * dy <= squared_reach ? 1 : 0)
                        << "sigma " << sigma << " at " << dx << ',' << dy;
            }
        }
    }
    int32_t sum = 0;
    float sigma = 1.0f;
    mask_of(gaussian(2, &sigma), sum);
    EXPECT_EQ(sum, 13);
}

TEST(Mask, RefusalWritesNothing) {
    int32_t mask = 5, sum = 6;
    float sigma = 1.0f;
    for (const imfilter_t& filter :
         {imfilter_t{2, 0, 0, &sigma}, imfilter_t{-1, 0, 0, &sigma}, gaussian(0, nullptr)})
        EXPECT_EQ(get_filter_mask(&mask, &sum, &filter), -1);
    EXPECT_EQ(mask, 5);
    EXPECT_EQ(sum, 6);
}

TEST(Mask, NegativeRadiusAndNoWidthHaveNoWeights) {
    int32_t mask = 5, sum = 6;
    for (const int32_t radius : {-1, INT32_MIN}) {
        const imfilter_t filter = box(radius);
        sum = 6;
        EXPECT_EQ(get_filter_mask(&mask, &sum, &filter), 0);
        EXPECT_EQ(sum, 0);
        EXPECT_EQ(mask, 5);
    }
    float sigma = 0.0f;
    const imfilter_t point = gaussian(0, &sigma);
    EXPECT_EQ(get_filter_mask(&mask, &sum, &point), 0);
    EXPECT_EQ(mask, 0);
    EXPECT_EQ(sum, 0);
}

} // namespace
