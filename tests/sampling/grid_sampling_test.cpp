#include "zerklsc.h"

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "sampling/grid_sampling.h"
#include "sampling/plain.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

struct Case {
    int32_t width, height, step_x, step_y, out_w, out_h;
};

const Case hostile[] = {{20, 12, 5, 4, 6, 5},
                        {1, 1, 1, 1, 3, 3},
                        {37, 23, 16, 7, 4, 5},
                        {64, 3, 21, 1, 4, 4},
                        {5, 40, -3, 0, 3, 4},
                        {130, 101, 64, 33, 4, 5},
                        {19, 19, 1000000, INT32_MAX, 3, 3}};

TEST(GridSampling, EqualsThePlainFormToTheBit) {
    Random random(6);
    for (const Case& c : hostile) {
        const size_t size = static_cast<size_t>(c.width * c.height),
                     nodes = static_cast<size_t>(c.out_w * c.out_h);
        for (const Against side : {Against::front, Against::back}) {
            Guarded<uint16_t> plane(
                random_samples(random, size, side == Against::front ? Spread::high : Spread::any), side);
            for (const int32_t mode : {ZERKLSC_BOUNDARY_MIRROR, ZERKLSC_BOUNDARY_CLAMP}) {
                for (const int32_t r : {0, 1, 2, 3, 4, 7, 11, 18, 24, 97, 100}) {
                    if (mode == ZERKLSC_BOUNDARY_MIRROR && r >= std::min(c.width, c.height))
                        continue;
                    float sigma = 0.4f * static_cast<float>(r + 1);
                    for (const imfilter_t& filter : {box(r, mode), gaussian(r, &sigma, mode)}) {
                        Guarded<float> samples(nodes, side);
                        ASSERT_EQ(img_sample_grid(plane.data(), samples.data(), c.width, c.height, c.step_x,
                                                  c.step_y, c.out_w, c.out_h, &filter),
                                  0);
                        std::vector<float> plain(nodes);
                        const int32_t far_x = std::min(c.step_x, c.width),
                                      far_y = std::min(c.step_y, c.height);
                        ASSERT_TRUE(zerklsc::plain::sample_grid(plane.data(), plain.data(), c.width, c.height,
                                                                far_x, far_y, c.out_w, c.out_h, filter));
                        ASSERT_EQ(samples.copy(), plain) << c.width << 'x' << c.height << " radius " << r;
                        ASSERT_TRUE(samples.intact());
                    }
                }
            }
        }
    }
}

// Straight from the mosaic, odd frame sizes included: as from four planes split off before.
TEST(GridSampling, MosaicGivesTheSamplesOfItsPlanes) {
    Random random(7);
    for (const int32_t width : {20, 43, 75}) {
        const int32_t height = width / 2 + 5, w = width / 2, h = height / 2;
        const size_t size = static_cast<size_t>(w * h);
        Guarded<uint16_t> raw(random_samples(random, static_cast<size_t>(width * height)), Against::back);
        std::vector<uint16_t> split(4 * size);
        uint16_t* planes[4] = {&split[0], &split[size], &split[2 * size], &split[3 * size]};
        bayer_split_channel(raw.data(), planes, width, height);
        for (const int32_t r : {0, 1, 4, 6}) {
            float sigma = 1.1f;
            for (const imfilter_t& filter : {box(r), gaussian(r, &sigma)}) {
                float from_mosaic[4][30], from_plane[30];
                float* const samples[] = {from_mosaic[0], from_mosaic[1], from_mosaic[2], from_mosaic[3]};
                zerklsc::sample_grid(zerklsc::mosaic_field(raw.data(), width, height),
                                     zerklsc::make_window(filter), {4, 3, 6, 5}, samples);
                for (int c = 0; c < 4; ++c) {
                    ASSERT_TRUE(zerklsc::plain::sample_grid(planes[c], from_plane, w, h, 4, 3, 6, 5, filter));
                    for (int k = 0; k < 30; ++k)
                        ASSERT_EQ(from_mosaic[c][k], from_plane[k])
                            << width << " plane " << c << " node " << k;
                }
            }
        }
    }
}

TEST(GridSampling, RefusalsWriteNothing) {
    const std::vector<uint16_t> plane(20 * 12, uint16_t{100});
    for (const imfilter_t& filter : refused_filters()) {
        float samples[4] = {1, 2, 3, 4};
        EXPECT_EQ(img_sample_grid(plane.data(), samples, 20, 12, 10, 6, 2, 2, &filter), -1)
            << filter.filter_type << ' ' << filter.filter_radius << ' ' << filter.boundary_mode;
        EXPECT_EQ(samples[0], 1);
        EXPECT_EQ(samples[3], 4);
    }
    float sample = 7;
    const imfilter_t clamped = box(0, ZERKLSC_BOUNDARY_CLAMP);
    for (const auto& [w, h] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-4, 4}})
        EXPECT_EQ(img_sample_grid(plane.data(), &sample, w, h, 1, 1, 1, 1, &clamped), -1);
    EXPECT_EQ(img_sample_grid(plane.data(), &sample, 20, 12, 1, 1, 0, 1, &clamped), 0);
    EXPECT_EQ(img_sample_grid(plane.data(), &sample, 20, 12, 1, 1, 1, -1, &clamped), 0);
    EXPECT_EQ(sample, 7);
}

// The largest radius that is taken: sums far beyond 32 bits, on a plane of one level.
TEST(GridSampling, LargestRadiusKeepsAConstant) {
    const std::vector<uint16_t> plane(3 * 2, uint16_t{65535});
    float samples[4] = {};
    const imfilter_t filter = box(11584, ZERKLSC_BOUNDARY_CLAMP);
    EXPECT_EQ(img_sample_grid(plane.data(), samples, 3, 2, 2, 1, 2, 2, &filter), 0);
    for (const float s : samples)
        EXPECT_FLOAT_EQ(s, 65535.0f);
}

TEST(GridSampling, WithoutMemoryNothingIsWritten) {
    const std::vector<uint16_t> plane(20 * 12, uint16_t{100});
    const imfilter_t filter = box(2);
    float sample = 7;
    {
        const AllocationScope scope(0);
        EXPECT_EQ(img_sample_grid(plane.data(), &sample, 20, 12, 1, 1, 1, 1, &filter), -1);
        EXPECT_TRUE(scope.leftovers().empty());
    }
    EXPECT_EQ(sample, 7);
    const AllocationScope scope;
    EXPECT_EQ(img_sample_grid(plane.data(), &sample, 20, 12, 1, 1, 1, 1, &filter), 0);
    EXPECT_TRUE(scope.leftovers().empty());
    EXPECT_EQ(sample, 100);
}

} // namespace
