#include "zerklsc.h"

#include <gtest/gtest.h>

#include "sampling/filters.h"
#include "sampling/plain.h"
#include "support/guarded.h"
#include "support/instruction_sets.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

struct Case {
    int32_t width, height, step_x, step_y, out_w, out_h;
};

void expect_plain_samples(uint16_t* plane, const Case& c, const imfilter_t& filter) {
    std::vector<float> plain(static_cast<size_t>(c.out_w * c.out_h));
    zerklsc::plain::sample_grid(plane, plain.data(), c.width, c.height, c.step_x, c.step_y, c.out_w, c.out_h,
                                filter);
    on_each_instruction_set([&](const std::string& cpu) {
        Guarded<float> samples(plain.size());
        EXPECT_EQ(img_sample_grid(plane, samples.data(), c.width, c.height, c.step_x, c.step_y, c.out_w,
                                  c.out_h, &filter),
                  0);
        EXPECT_EQ(samples.copy(), plain)
            << c.width << 'x' << c.height << " radius " << filter.filter_radius << cpu;
        EXPECT_TRUE(samples.intact());
    });
}

// Planes against both guard pages, with windows over all edges, on every instruction set.
TEST(GridSampling, EqualsThePlainFormToTheBit) {
    const Case hostile[] = {{20, 12, 5, 4, 6, 5},      {1, 1, 1, 1, 3, 3},   {37, 23, 16, 7, 4, 5},
                            {64, 3, 21, 1, 4, 4},      {5, 40, -3, 0, 3, 4}, {130, 101, 64, 33, 4, 5},
                            {19, 19, 1 << 29, 9, 3, 3}};
    Random random(6);
    for (const Case& c : hostile) {
        for (const Against side : {Against::front, Against::back}) {
            const Spread spread = side == Against::front ? Spread::high : Spread::any;
            Guarded<uint16_t> plane(random_samples(random, static_cast<size_t>(c.width * c.height), spread),
                                    side);
            for (const int32_t r : {0, 1, 2, 3, 4, 7, 11, 18, 24, 97}) {
                float sigma = 0.4f * static_cast<float>(r + 1);
                for (const int32_t mode : {ZERKLSC_BOUNDARY_MIRROR, ZERKLSC_BOUNDARY_CLAMP}) {
                    if (mode == ZERKLSC_BOUNDARY_MIRROR && r >= std::min(c.width, c.height))
                        continue;
                    expect_plain_samples(plane.data(), c, box(r, mode));
                    expect_plain_samples(plane.data(), c, gaussian(r, &sigma, mode));
                }
            }
        }
    }
}

// The largest radius that is taken, and sums of full-scale samples far beyond the 32 bits of a lane.
TEST(GridSampling, LargestRadiusKeepsAConstant) {
    const std::vector<uint16_t> plane(2000 * 1500, uint16_t{65535});
    on_each_instruction_set([&](const std::string& cpu) {
        for (const imfilter_t& filter : {box(11584, ZERKLSC_BOUNDARY_CLAMP), box(1499)}) {
            float sample = 0;
            EXPECT_EQ(img_sample_grid(plane.data(), &sample, 2000, 1500, 2, 1, 1, 1, &filter), 0);
            EXPECT_FLOAT_EQ(sample, 65535.0f) << cpu;
        }
    });
}

} // namespace
