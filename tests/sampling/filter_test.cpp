#include "zerklsc.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// Box, or the disc of a Gaussian, tap by tap: d^2 <= 2 pi sigma^2 ln 2.
uint16_t level_at(const uint16_t* centre, int32_t stride, const imfilter_t& filter) {
    const double reach = filter.filter_type == ZERKLSC_FILTER_BOX
                             ? 1e9
                             : 4.355172180607204 * std::pow(static_cast<double>(*filter.sigma), 2);
    const int32_t r = filter.filter_radius;
    uint64_t sum = 0, taps = 0;
    for (int32_t dy = -r; dy <= r; ++dy) {
        for (int32_t dx = -r; dx <= r; ++dx) {
            const bool counts = dx * dx + dy * dy <= reach;
            sum += counts ? centre[dy * stride + dx] : 0u;
            taps += counts;
        }
    }
    return static_cast<uint16_t>(static_cast<float>(sum) * (1.0f / static_cast<float>(taps)) + 0.5f);
}

// s1 is the stride and the number of rows, s2 the number of columns; taps lie at their plain positions, and
// nothing is read beyond them.
TEST(Filter, CoversStrideManyRowsOfTheGivenColumns) {
    Random random(10);
    float sigma = 1.5f, broad = 7.3f, wide = 90.0f;
    const struct {
        int32_t s1, s2;
        imfilter_t filter;
    } cases[] = {{6, 4, box(2)},
                 {6, 4, gaussian(2, &sigma)},
                 {6, 4, box(0)},
                 {5, 5, box(1, 77)},
                 {9, 12, box(3)},
                 {40, 33, box(7)},
                 {20, 9, box(127)},
                 {8, 5, box(128)},
                 {3, 70, box(9)},
                 {41, 67, gaussian(9, &sigma)},
                 {30, 40, gaussian(12, &broad)},
                 {3, 2500, box(2)},
                 {2, 700, gaussian(40, &broad)},
                 {4, 9, gaussian(150, &wide)}};
    for (const auto& [s1, s2, filter] : cases) {
        const size_t margin = static_cast<size_t>(filter.filter_radius * (s1 + 1));
        const size_t size = static_cast<size_t>((s1 - 1) * s1 + s2);
        Guarded<uint16_t> src(random_samples(random, 2 * margin + size, Spread::high), Against::back),
            dst(size);
        std::fill(dst.begin(), dst.end(), uint16_t{3});
        std::vector<uint16_t> expected = dst.copy();
        for (int32_t row = 0; row < s1; ++row) {
            for (int32_t at = row * s1; at < row * s1 + s2; ++at)
                expected[static_cast<size_t>(at)] = level_at(src.data() + margin + at, s1, filter);
        }
        for (const char* const cpu : {"base", "neon", "avx2", "avx512"}) {
            setenv("ZERKLSC_CPU", cpu, 1);
            std::fill(dst.begin(), dst.end(), uint16_t{3});
            EXPECT_EQ(img_filter(src.data() + margin, dst.data(), s1, s2, &filter), 0);
            EXPECT_EQ(dst.copy(), expected) << s1 << ' ' << s2 << " radius " << filter.filter_radius << cpu;
        }
        unsetenv("ZERKLSC_CPU");
    }
}

// The disc of sigma 1.5 has one tap in the third row from its centre, which is the last: a caller need not
// have more.
TEST(Filter, ReadsNoSampleWithoutAWeight) {
    Random random(11);
    float sigma = 1.5f;
    const imfilter_t filter = gaussian(9, &sigma);
    const int32_t s1 = 11, s2 = 11;
    for (const Against side : {Against::front, Against::back}) {
        Guarded<uint16_t> src(random_samples(random, (s1 + 6) * s1), side), dst(s1 * s1);
        ASSERT_EQ(img_filter(src.data() + 3 * s1, dst.data(), s1, s2, &filter), 0);
        EXPECT_EQ(dst[5 * s1 + 5], level_at(src.data() + 8 * s1 + 5, s1, filter));
    }
}

TEST(Filter, RefusalsWriteNothing) {
    float usual = 1.0f, zero = 0.0f;
    uint16_t sample = 9;
    for (const imfilter_t& filter :
         {box(-1), imfilter_t{2, 1, 0, &usual}, gaussian(1, nullptr), gaussian(1, &zero), box(11585)})
        EXPECT_EQ(img_filter(&sample, &sample, 1, 1, &filter), -1) << filter.filter_radius;
    const imfilter_t point = box(0);
    EXPECT_EQ(img_filter(&sample, &sample, -1, 5, &point), 0);
    EXPECT_EQ(img_filter(&sample, &sample, 5, -1, &point), 0);
    EXPECT_EQ(sample, 9);
}

} // namespace
