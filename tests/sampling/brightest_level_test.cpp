#include "zerklsc.h"

#include <gtest/gtest.h>

#include "sampling/brightest_level.h"
#include "sampling/filters.h"
#include "sampling/plain.h"
#include "support/guarded.h"
#include "support/instruction_sets.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// Windows that share their columns, that stand apart or that reach over the edges, on every instruction set.
// Those of radius 6 reach one sample over the edge where 14 x 17 and 17 x 14 samples are brightest.
TEST(BrightestLevel, EqualsThePlainForm) {
    Random random(9);
    float sigma = 1.5f;
    for (const auto& size : {std::pair{10, 10}, std::pair{14, 17}, std::pair{17, 14}, std::pair{61, 44},
                             std::pair{350, 280}, std::pair{33000, 12}}) {
        const int32_t w = size.first, h = size.second;
        Guarded<uint16_t> plane(random_samples(random, static_cast<size_t>(w * h)), Against::back);
        for (int32_t k = 0; k < w * h && w + h == 31; ++k)
            plane[static_cast<size_t>(k)] = static_cast<uint16_t>(2000 * (k % w) + 1500 * (k / w));
        const zerklsc::CentreCluster cluster = zerklsc::centre_cluster(w, h);
        for (const int32_t r : {0, 1, 3, 6, 9, 21}) {
            for (const imfilter_t& filter :
                 {box(r, ZERKLSC_BOUNDARY_CLAMP), box(std::min(r, 6)), gaussian(r, &sigma, 1)}) {
                const uint16_t expected = zerklsc::plain::brightest_level(plane.data(), w, h, filter);
                on_each_instruction_set([&](const std::string& cpu) {
                    uint16_t level[4] = {};
                    EXPECT_TRUE(zerklsc::brightest_levels(zerklsc::single_plane(plane.data(), w, h),
                                                          zerklsc::make_window(filter), cluster, level));
                    EXPECT_EQ(level[0], expected) << w << 'x' << h << " radius " << r << ' ' << cpu;
                });
            }
        }
    }
}

// Full-scale samples around the largest radius whose sums fit 32 bits.
TEST(BrightestLevel, FullScaleStaysFullScale) {
    const std::vector<uint16_t> raw(720 * 720, uint16_t{65535});
    for (const int32_t r : {90, 127, 128}) {
        uint16_t levels[4] = {};
        ASSERT_TRUE(zerklsc::brightest_levels(zerklsc::mosaic_planes(raw.data(), 720, 720),
                                              zerklsc::make_window(box(r)), zerklsc::centre_cluster(360, 360),
                                              levels));
        for (const uint16_t level : levels)
            EXPECT_EQ(level, 65535) << r;
    }
}

} // namespace
