#include "zerklsc.h"

#include <gtest/gtest.h>

namespace {

TEST(Boundary, MirrorsOnceWithoutTheEdgeOrStopsAtIt) {
    const struct {
        int n, p, mode, position;
    } cases[] = {{10, -3, 0, 3},  {10, 10, 0, 8},       {10, 12, 0, 6},       {10, 9, 0, 9},
                 {10, -3, 1, 0},  {10, 12, 1, 9},       {10, 5, 2, -1},       {10, 5, -1, -1},
                 {10, 25, 0, -7}, {1, INT32_MAX, 1, 0}, {1, INT32_MIN, 1, 0}, {1, INT32_MIN, 0, INT32_MIN}};
    for (const auto& c : cases)
        EXPECT_EQ(get_boundary_pos(c.n, c.p, c.mode), c.position) << c.n << ' ' << c.p << ' ' << c.mode;
}

} // namespace
