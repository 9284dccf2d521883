#include "zerklsc.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "sampling/plain.h"
#include "support/guarded.h"
#include "support/instruction_sets.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

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
                 {1, 9, box(2)},
                 {9, 12, box(3)},
                 {40, 33, box(7)},
                 {20, 99, box(90)},
                 {8, 35, box(128)},
                 {3, 70, box(9)},
                 {41, 67, gaussian(9, &sigma)},
                 {30, 40, gaussian(12, &broad)},
                 {3, 2500, box(2)},
                 {2, 700, gaussian(40, &broad)},
                 {4, 9, gaussian(150, &wide)}};
    for (const auto& c : cases) {
        const int32_t s1 = c.s1, s2 = c.s2;
        const imfilter_t& filter = c.filter;
        const size_t margin = static_cast<size_t>(filter.filter_radius * (s1 + 1));
        const size_t size = static_cast<size_t>((s1 - 1) * s1 + s2);
        Guarded<uint16_t> src(random_samples(random, 2 * margin + size, Spread::high), Against::back),
            dst(size);
        std::fill(dst.begin(), dst.end(), uint16_t{3});
        std::vector<uint16_t> expected = dst.copy();
        zerklsc::plain::filter_plane(src.data() + margin, expected.data(), s1, s2, filter);
        on_each_instruction_set([&](const std::string& cpu) {
            std::fill(dst.begin(), dst.end(), uint16_t{3});
            EXPECT_EQ(img_filter(src.data() + margin, dst.data(), s1, s2, &filter), 0);
            EXPECT_EQ(dst.copy(), expected) << s1 << ' ' << s2 << " radius " << filter.filter_radius << cpu;
        });
    }
}

// Rows of few samples lie over each other, so that large boxes need little memory. Where all samples that
// enter are bright and all that leave are dark, or the other way round, the sums change the most.
TEST(Filter, SumsUpLargeBoxesOfExtremes) {
    Random random(12);
    const struct {
        int32_t radius, s1, s2;
    } cases[] = {{200, 3, 2100}, {511, 9, 77}, {2048, 4, 97}, {11584, 3, 41}};
    for (const auto& one : cases)
        for (const uint16_t first : std::vector<uint16_t>{0, 65534, 65535}) {
            const int32_t radius = one.radius, s1 = one.s1, s2 = one.s2;
            const int64_t margin = int64_t{radius} * (s1 + 1), size = 2 * margin + (s1 - 1) * s1 + s2;
            std::vector<uint16_t> src(static_cast<size_t>(size), first);
            std::fill(src.begin() + static_cast<ptrdiff_t>(size / 2), src.end(),
                      first == 65534 ? uint16_t{0} : uint16_t{65535});
            for (int64_t i = radius % 7; i < size && first < 65535; i += 700)
                src[static_cast<size_t>(i)] = static_cast<uint16_t>(random.between(0, 65535));
            std::vector<int64_t> up_to = {0};
            for (const uint16_t sample : src)
                up_to.push_back(up_to.back() + sample);
            std::vector<uint16_t> dst(static_cast<size_t>((s1 - 1) * s1 + s2)), expected(dst.size());
            const float side = static_cast<float>(2 * radius + 1), scale = 1.0f / (side * side);
            for (int32_t row = 0; row < s1; ++row)
                for (int64_t at = row * s1; at < row * s1 + s2; ++at) {
                    int64_t sum = 0;
                    for (int64_t y = 0; y <= 2 * radius; ++y)
                        sum += up_to[static_cast<size_t>(at + y * s1 + 2 * radius + 1)]
                               - up_to[static_cast<size_t>(at + y * s1)];
                    expected[static_cast<size_t>(at)] =
                        static_cast<uint16_t>(static_cast<int32_t>(static_cast<float>(sum) * scale + 0.5f));
                }
            const imfilter_t filter = box(radius);
            on_each_instruction_set([&](const std::string& cpu) {
                EXPECT_EQ(img_filter(&src[static_cast<size_t>(margin)], dst.data(), s1, s2, &filter), 0);
                EXPECT_EQ(dst, expected) << radius << ' ' << first << ' ' << cpu;
            });
        }
}

// The disc of sigma 1.5 has one tap in the third row from its centre, which is the last, that of sigma 0.5 in
// the first: a caller need not have more.
TEST(Filter, ReadsNoSampleWithoutAWeight) {
    Random random(11);
    float narrow = 0.5f, wide = 1.5f;
    const int32_t s1 = 11;
    for (const auto& [sigma, reach] : {std::pair{&narrow, 1}, std::pair{&wide, 3}})
        for (const Against side : {Against::front, Against::back}) {
            const imfilter_t filter = gaussian(9, sigma), same = gaussian(reach, sigma);
            Guarded<uint16_t> src(random_samples(random, static_cast<size_t>((s1 + 2 * reach) * s1)), side),
                dst(s1 * s1);
            ASSERT_EQ(img_filter(src.data() + reach * s1, dst.data(), s1, s1, &filter), 0);
            std::vector<uint16_t> roomy = src.copy(), expected(dst.size());
            roomy.insert(roomy.begin(), static_cast<size_t>(reach), 0);
            roomy.insert(roomy.end(), static_cast<size_t>(reach), 0);
            zerklsc::plain::filter_plane(&roomy[static_cast<size_t>(reach + reach * s1)], expected.data(), s1,
                                         s1, same);
            EXPECT_EQ(dst.copy(), expected) << reach;
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
