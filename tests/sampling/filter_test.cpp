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
TEST(Filter, CoversStrideManyRowsOfTheGivenColumns) {
    Random random(10);
    const int32_t s1 = 6, s2 = 4, r = 2;
    const size_t margin = static_cast<size_t>(r * s1 + r);
    const std::vector<uint16_t> src = random_samples(random, 2 * margin + 34);
    float sigma = 1.0f;
    for (imfilter_t filter : {box(r), gaussian(r, &sigma), box(0), box(r, 77)}) {
        Guarded<uint16_t> dst(34, Against::back);
        std::fill(dst.begin(), dst.end(), uint16_t{3});
        ASSERT_EQ(img_filter(src.data() + margin, dst.data(), s1, s2, &filter), 0);
        for (int32_t k = 0; k < 34; ++k) {
            uint64_t sum = 0, taps = 0;
            for (int32_t dy = -filter.filter_radius; dy <= filter.filter_radius; ++dy) {
                for (int32_t dx = -filter.filter_radius; dx <= filter.filter_radius; ++dx) {
                    if (filter.filter_type == ZERKLSC_FILTER_GAUSSIAN && dx * dx + dy * dy > 4)
                        continue;
                    sum += src[margin + static_cast<size_t>(k) + static_cast<size_t>(dy * s1 + dx)];
                    ++taps;
                }
            }
            const float mean = static_cast<float>(sum) * (1.0f / static_cast<float>(taps)) + 0.5f;
            const bool covered = k % s1 < s2;
            ASSERT_EQ(dst[static_cast<size_t>(k)], covered ? static_cast<uint16_t>(mean) : 3) << k;
        }
    }
}

TEST(Filter, RefusalsWriteNothing) {
    float usual = 1.0f, zero = 0.0f;
    uint16_t sample = 9;
    for (const imfilter_t& filter :
         {box(-1), imfilter_t{2, 1, 0, &usual}, gaussian(1, nullptr), gaussian(1, &zero), box(INT32_MAX)})
        EXPECT_EQ(img_filter(&sample, &sample, 1, 1, &filter), -1) << filter.filter_radius;
    const imfilter_t point = box(0);
    {
        const AllocationScope scope(0);
        EXPECT_EQ(img_filter(&sample, &sample, 1, 1, &point), -1);
    }
    EXPECT_EQ(sample, 9);
    EXPECT_EQ(img_filter(&sample, &sample, -1, 5, &point), 0);
    EXPECT_EQ(img_filter(&sample, &sample, 5, -1, &point), 0);
}

} // namespace
