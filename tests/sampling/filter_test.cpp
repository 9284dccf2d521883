#include "zerklsc.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// s1 is the stride and the number of rows, s2 the number of columns; taps lie at their plain positions.
// Nothing is read beyond the taps nor written beyond the columns.
TEST(Filter, CoversStrideManyRowsOfTheGivenColumns) {
    Random random(10);
    float sigma = 1.5f;
    const struct {
        int32_t s1, s2;
        imfilter_t filter;
    } cases[] = {{6, 4, box(2)},   {6, 4, gaussian(2, &sigma)},
                 {6, 4, box(0)},   {5, 5, box(1, 77)},
                 {1, 1, box(4)},   {9, 12, box(3)},
                 {40, 33, box(7)}, {20, 9, box(127)},
                 {8, 5, box(128)}, {20, 30, gaussian(3, &sigma)}};
    for (const auto& [s1, s2, filter] : cases) {
        const int32_t r = filter.filter_radius;
        const size_t margin = static_cast<size_t>(r * s1 + r), size = static_cast<size_t>((s1 - 1) * s1 + s2);
        Guarded<uint16_t> src(
            random_samples(random, 2 * margin + size, r == 127 ? Spread::high : Spread::any), Against::back);
        Guarded<uint16_t> dst(size, Against::back);
        std::vector<uint16_t> expected(size, uint16_t{3});
        std::copy(expected.begin(), expected.end(), dst.begin());
        ASSERT_EQ(img_filter(src.data() + margin, dst.data(), s1, s2, &filter), 0);
        const double reach = filter.filter_type == ZERKLSC_FILTER_BOX ? 1e9 : 4.355 * 1.5 * 1.5;
        for (int32_t row = 0; row < s1; ++row) {
            for (int32_t column = 0; column < s2; ++column) {
                uint64_t sum = 0, taps = 0;
                const uint16_t* const centre = src.data() + margin + row * s1 + column;
                for (int32_t dy = -r; dy <= r; ++dy) {
                    for (int32_t dx = -r; dx <= r; ++dx) {
                        if (dx * dx + dy * dy <= reach) {
                            sum += centre[dy * s1 + dx];
                            ++taps;
                        }
                    }
                }
                const float mean = static_cast<float>(sum) * (1.0f / static_cast<float>(taps)) + 0.5f;
                expected[static_cast<size_t>(row * s1 + column)] = static_cast<uint16_t>(mean);
            }
        }
        EXPECT_EQ(dst.copy(), expected) << s1 << ' ' << s2 << " radius " << r;
        EXPECT_TRUE(dst.intact());
    }
}

TEST(Filter, RefusalsWriteNothing) {
    float usual = 1.0f, zero = 0.0f;
    uint16_t sample = 9;
    for (const imfilter_t& filter :
         {box(-1), imfilter_t{2, 1, 0, &usual}, gaussian(1, nullptr), gaussian(1, &zero), box(INT32_MAX)})
        EXPECT_EQ(img_filter(&sample, &sample, 1, 1, &filter), -1) << filter.filter_radius;
    const imfilter_t point = box(0);
    for (const size_t n : {0u, 1u, 2u}) {
        const AllocationScope scope(n);
        EXPECT_EQ(img_filter(&sample, &sample, 1, 1, &point), -1);
        EXPECT_TRUE(scope.leftovers().empty());
    }
    EXPECT_EQ(sample, 9);
    EXPECT_EQ(img_filter(&sample, &sample, -1, 5, &point), 0);
    EXPECT_EQ(img_filter(&sample, &sample, 5, -1, &point), 0);
}

} // namespace
