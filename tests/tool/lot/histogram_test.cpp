#include "lot/histogram.h"

#include <gtest/gtest.h>

#include "lot/four_digits.h"

namespace zerklsc::tool {
namespace {

// Bars are 1, 2 or 5 times a power of ten wide, and 40 at most hold both ends, wherever those fall.
TEST(Histogram, BarsAreRoundAndFortyAtMost) {
    const struct {
        double low, high, width, from;
        size_t bars;
    } cases[] = {{100, 138, 1, 100, 39},       {100, 139, 2, 100, 20},   {101, 177, 2, 100, 39},
                 {101, 178, 5, 100, 16},       {-3, 187, 5, -5, 39},     {-3, 188, 10, -10, 20},
                 {0.25, 0.62, 0.01, 0.25, 38}, {1.5, 1.5, 0.05, 1.5, 1}, {0, 0, 0.05, 0, 1}};
    for (const auto& c : cases) {
        CheckCounts plane;
        plane.values[0].add(four_digits_of(c.low));
        plane.values[2].add(four_digits_of(c.high), 2);
        const Histogram histogram = histogram_of({&plane});
        EXPECT_NEAR(histogram.width, c.width, 1e-9 * c.width) << c.high;
        EXPECT_NEAR(histogram.from, c.from, 1e-9) << c.high;
        ASSERT_EQ(histogram.bars[0].size(), c.bars) << c.high;
        EXPECT_EQ(histogram.bars[0].front(), 1U) << c.high;
        EXPECT_EQ(histogram.bars[2].back(), 2U) << c.high;
    }
}

} // namespace
} // namespace zerklsc::tool
