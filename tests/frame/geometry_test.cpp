#include "zerklsc.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    int32_t size, step, nodes;
};

class Geometry : public ::testing::TestWithParam<Case> {};

TEST_P(Geometry, NodesCoverThePlane) {
    const auto [size, step, nodes] = GetParam();
    int32_t w = -1, h = -1;
    lsc2d_grid_samples(size, 64, step, 32, &w, &h);
    EXPECT_EQ(w, nodes);
    EXPECT_EQ(h, 3);
    lsc2d_grid_samples(64, size, 32, step, &w, &h);
    EXPECT_EQ(w, 3);
    EXPECT_EQ(h, nodes);
    lsc2d_table_size(size, size, step, step, &w, &h);
    EXPECT_EQ(w, step == 0 ? 0 : nodes + 2);
    EXPECT_EQ(h, step == 0 ? 0 : nodes + 2);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Geometry,
                         ::testing::Values(Case{64, 32, 3}, Case{65, 32, 4}, Case{96, 32, 4},
                                           Case{2000, 64, 33}, Case{1500, 64, 25}, Case{1, 255, 2},
                                           Case{0, 16, 1},
                                           // The sum of size and step does not fit 32 bits.
                                           Case{INT32_MAX, INT32_MAX, 2}, Case{INT32_MAX, 2, 1073741825},
                                           // No division by zero.
                                           Case{100, 0, 0}));

} // namespace
