#include "zerklsc.h"

#include <gtest/gtest.h>

namespace {

TEST(Geometry, NodesCoverThePlane) {
    const struct {
        int32_t size, step, nodes;
    } cases[] = {{64, 32, 3},
                 {65, 32, 4},
                 {96, 32, 4},
                 {2000, 64, 33},
                 {1500, 64, 25},
                 {1, 255, 2},
                 {0, 16, 1},
                 // The sum of size and step does not fit 32 bits.
                 {INT32_MAX, INT32_MAX, 2},
                 {INT32_MAX, 2, 1073741825},
                 // No division by zero.
                 {100, 0, 0}};
    for (const auto& [size, step, nodes] : cases) {
        SCOPED_TRACE(testing::Message() << size << " samples, step " << step);
        int32_t w = -1, h = -1;
        lsc2d_grid_samples(size, 64, step, 32, &w, &h);
        EXPECT_EQ(w, nodes);
        EXPECT_EQ(h, 3);
        lsc2d_grid_samples(64, size, 32, step, &w, &h);
        EXPECT_EQ(w, 3);
        EXPECT_EQ(h, nodes);
        lsc2d_table_size(size, size, step, step, &w, &h);
        EXPECT_EQ(w, nodes == 0 ? 0 : nodes + 2);
        EXPECT_EQ(h, nodes == 0 ? 0 : nodes + 2);
    }
}

} // namespace
