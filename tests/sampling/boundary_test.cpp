#include "zerklsc.h"

#include <vector>

#include <gtest/gtest.h>

#include "sampling/boundary.h"

namespace {

TEST(Boundary, MirrorsOnceWithoutTheEdgeOrStopsAtIt) {
    const struct {
        int n, p, mode, position;
    } cases[] = {
        {10, -3, 0, 3},       {10, 10, 0, 8},       {10, 12, 0, 6},
        {10, 0, 0, 0},        {10, 9, 0, 9},        {10, -3, 1, 0},
        {10, 12, 1, 9},       {10, 5, 1, 5},        {10, 5, 2, -1},
        {10, 5, -1, -1},      {10, 25, 0, -7},      {10, -20, 0, 20},
        {1, INT32_MAX, 1, 0}, {1, INT32_MIN, 1, 0}, {10, -INT32_MAX, 0, INT32_MAX},
    };
    for (const auto& c : cases)
        EXPECT_EQ(get_boundary_pos(c.n, c.p, c.mode), c.position) << c.n << ' ' << c.p << ' ' << c.mode;
    // Beyond 32 bits only the low ones count, without overflow on the way.
    EXPECT_EQ(get_boundary_pos(1, INT32_MIN, 0), INT32_MIN);
}

// Runs hold the same positions, equally often, as the rule gives tap by tap.
TEST(Boundary, RunsAreTheTapsOneByOne) {
    for (int32_t n = 1; n <= 6; ++n) {
        for (const int32_t mode : {0, 1}) {
            for (int32_t first = -9; first <= 12; ++first) {
                for (int32_t last = first; last <= 12; ++last) {
                    std::vector<int> expected(static_cast<size_t>(n)), found(static_cast<size_t>(n));
                    bool fit = true;
                    for (int32_t p = first; p <= last; ++p) {
                        const int position = get_boundary_pos(n, p, mode);
                        fit = fit && position >= 0 && position < n;
                        if (fit)
                            ++expected[static_cast<size_t>(position)];
                    }
                    ASSERT_EQ(zerklsc::taps_fit(n, first, last, mode), fit)
                        << n << ' ' << first << ' ' << last;
                    if (!fit)
                        continue;
                    for (const zerklsc::Run& run : zerklsc::tap_runs(n, first, last, mode)) {
                        for (int32_t i = 0; i < run.count; ++i)
                            found.at(static_cast<size_t>(run.first + i)) += run.weight;
                    }
                    ASSERT_EQ(found, expected) << n << ' ' << first << ' ' << last << ' ' << mode;
                }
            }
        }
    }
    EXPECT_FALSE(zerklsc::taps_fit(0, 0, 0, 1));
}

} // namespace
