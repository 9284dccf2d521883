#include "zerklsc.h"

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "sampling/plain.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// Points inside and outside the plane; only their taps are moved to it. One step further out a mirrored tap
// has no place, and no point is written.
TEST(PointSampling, EqualsThePlainFormAsLongAsItsTapsFit) {
    Random random(8);
    const int32_t w = 41, h = 26;
    Guarded<uint16_t> plane(random_samples(random, static_cast<size_t>(w * h)), Against::front);
    float sigma = 2.0f;
    for (const int32_t r : {0, 1, 5, 12, 25}) {
        for (const imfilter_t& filter : {box(r), box(r, ZERKLSC_BOUNDARY_CLAMP), gaussian(r, &sigma)}) {
            const bool clamp = filter.boundary_mode == ZERKLSC_BOUNDARY_CLAMP;
            const auto far = [&](int32_t n) { return clamp ? n + 30 : n - 1 - r; };
            Guarded<pix_point> points(50);
            for (pix_point& p : points)
                p = {static_cast<int16_t>(random.between(-far(w), w - 1 + far(w))),
                     static_cast<int16_t>(random.between(-far(h), h - 1 + far(h))), 5};
            std::vector<pix_point> plain = points.copy();
            ASSERT_EQ(img_sample(plane.data(), points.data(), 50, w, h, &filter), 0);
            zerklsc::plain::sample_points(plane.data(), plain.data(), 50, w, h, filter);
            for (size_t k = 0; k < 50; ++k)
                ASSERT_EQ(points[k].value, plain[k].value)
                    << points[k].x << ',' << points[k].y << " radius " << r;
            const int far_w = far(w) + 1, far_h = far(h) + 1;
            for (const auto& [x, y] : {std::pair{-far_w, 0}, std::pair{w - 1 + far_w, 0},
                                       std::pair{0, -far_h}, std::pair{0, h - 1 + far_h}}) {
                pix_point out[2] = {{1, 1, 8}, {static_cast<int16_t>(x), static_cast<int16_t>(y), 9}};
                EXPECT_EQ(img_sample(plane.data(), out, 2, w, h, &filter), clamp ? 0 : -1) << x << ',' << y;
                EXPECT_EQ(out[0].value == 8 && out[1].value == 9, !clamp) << x << ',' << y;
            }
        }
    }
}

} // namespace
