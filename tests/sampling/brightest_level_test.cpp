#include "zerklsc.h"

#include <gtest/gtest.h>

#include "sampling/center_points.h"
#include "sampling/filters.h"
#include "sampling/plain.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// The level of the brightest point of a plane, point by point in the plain form.
uint16_t plain_brightest(const uint16_t* plane, int32_t w, int32_t h, const imfilter_t& filter) {
    pix_point* points = nullptr;
    int32_t count = 0;
    EXPECT_EQ(init_center_points(w, h, &points, &count), 0);
    EXPECT_TRUE(zerklsc::plain::sample_points(plane, points, count, w, h, filter));
    const uint16_t level = count == 0 ? uint16_t{0} : points[get_pixel_maximum(points, count)].value;
    release_center_points(points);
    return level;
}

// Plane sizes with overlapping and with separate windows, down to none; radii that reach over the edges.
TEST(BrightestLevel, EqualsThePlainFormForMosaicAndPlane) {
    Random random(9);
    for (const auto& [width, height] :
         {std::pair{8, 30}, std::pair{20, 21}, std::pair{61, 44}, std::pair{700, 560}}) {
        const int32_t w = width / 2, h = height / 2;
        const size_t size = static_cast<size_t>(w * h);
        Guarded<uint16_t> raw(random_samples(random, static_cast<size_t>(width * height)), Against::back);
        std::vector<uint16_t> split(4 * size);
        uint16_t* planes[4] = {&split[0], &split[size], &split[2 * size], &split[3 * size]};
        bayer_split_channel(raw.data(), planes, width, height);
        for (const int32_t r : {0, 1, 3, 6, 9, 21}) {
            if (r >= std::min(w, h))
                continue;
            float sigma = 1.5f;
            for (const imfilter_t& filter : {box(r), box(r, ZERKLSC_BOUNDARY_CLAMP), gaussian(r, &sigma)}) {
                const zerklsc::Window window = zerklsc::make_window(filter);
                const zerklsc::CentreCluster cluster = zerklsc::centre_cluster(w, h);
                uint16_t levels[4], level[4];
                ASSERT_TRUE(zerklsc::brightest_levels(zerklsc::mosaic_field(raw.data(), width, height),
                                                      window, cluster, levels));
                for (int c = 0; c < 4; ++c) {
                    ASSERT_TRUE(zerklsc::brightest_levels(zerklsc::plane_field(planes[c], w, h), window,
                                                          cluster, level));
                    const uint16_t expected = plain_brightest(planes[c], w, h, filter);
                    ASSERT_EQ(levels[c], expected)
                        << width << 'x' << height << " radius " << r << " plane " << c;
                    ASSERT_EQ(level[0], expected)
                        << width << 'x' << height << " radius " << r << " plane " << c;
                }
            }
        }
    }
}

// Full-scale samples around the largest radius whose sums fit 32 bits.
TEST(BrightestLevel, FullScaleStaysFullScale) {
    const std::vector<uint16_t> raw(720 * 720, uint16_t{65535});
    const zerklsc::CentreCluster cluster = zerklsc::centre_cluster(360, 360);
    for (const int32_t r : {90, 126, 127, 128}) {
        uint16_t levels[4] = {};
        ASSERT_TRUE(zerklsc::brightest_levels(zerklsc::mosaic_field(raw.data(), 720, 720),
                                              zerklsc::make_window(box(r)), cluster, levels));
        for (const uint16_t level : levels)
            EXPECT_EQ(level, 65535) << r;
    }
}

} // namespace
