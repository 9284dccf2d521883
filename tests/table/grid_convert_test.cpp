#include "zerklsc.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

int32_t incline(int32_t x, int32_t y) {
    return 15000 + 3 * x + 5 * y;
}

// A grid over a plane of 207 x 150 whose gains rise with the position.
lsc2d_grid inclined(Guarded<uint16_t>& table, int32_t step_x, int32_t step_y) {
    lsc2d_grid grid{table.data(), step_x, step_y, 0, 0};
    lsc2d_grid_samples(207, 150, step_x, step_y, &grid.grid_w, &grid.grid_h);
    const int32_t row = grid.grid_w + 2, count = row * (grid.grid_h + 2);
    grid.table += static_cast<int32_t>(table.size()) - count; // ends at the guard page
    for (int32_t n = 0; n < count; ++n)
        grid.table[n] = static_cast<uint16_t>(incline((n % row - 1) * step_x, (n / row - 1) * step_y));
    return grid;
}

TEST(GridConvert, AnInclineComesOutTheSameAtEveryStepUpToTheHighestGain) {
    Guarded<uint16_t> from(2000), to(2000);
    for (const auto& [step_x, step_y] : {std::pair{16, 19}, {25, 28}, {64, 1}, {1, 67}})
        for (const int32_t dst_step : {7, 16, 100}) {
            const lsc2d_grid src = inclined(from, step_x, step_y), dst = inclined(to, dst_step, dst_step + 1);
            ASSERT_EQ(lsc2d_grid_convert(&src, &dst, 207, 150), 0);
            for (int32_t j = -1; j <= dst.grid_h; ++j)
                for (int32_t i = -1; i <= dst.grid_w; ++i)
                    ASSERT_NEAR(dst.table[(j + 1) * (dst.grid_w + 2) + i + 1],
                                std::min(incline(i * dst.step_x, j * dst.step_y), 16383), 1);
        }
}

TEST(GridConvert, TheSourceMayLeaveItsRowsUncounted) {
    Guarded<uint16_t> from(2000), to(2000);
    lsc2d_grid src = inclined(from, 16, 25);
    const lsc2d_grid dst = inclined(to, 30, 20);
    ASSERT_EQ(lsc2d_grid_convert(&src, &dst, 207, 150), 0);
    const std::vector<uint16_t> expected = to.copy();
    for (const int32_t unset : {0, 1, INT32_MIN, INT32_MAX}) {
        src.grid_h = unset;
        std::fill(to.begin(), to.end(), uint16_t{0});
        EXPECT_EQ(lsc2d_grid_convert(&src, &dst, 207, 150), 0) << unset;
        EXPECT_TRUE(std::equal(dst.table, to.end(), expected.end() - (to.end() - dst.table))) << unset;
    }
}

TEST(GridConvert, RefusalsLeaveTheDestination) {
    Guarded<uint16_t> from(2000), to(2000);
    lsc2d_grid src = inclined(from, 10, 10), dst = inclined(to, 10, 10);
    const struct {
        lsc2d_grid* grid;
        int32_t lsc2d_grid::*field;
        int32_t value;
    } cases[] = {{&src, &lsc2d_grid::step_x, 0}, {&src, &lsc2d_grid::step_y, -1},
                 {&dst, &lsc2d_grid::step_x, 0}, {&dst, &lsc2d_grid::step_y, INT32_MIN},
                 {&dst, &lsc2d_grid::grid_w, 2}, {&dst, &lsc2d_grid::grid_h, INT32_MIN},
                 {&src, &lsc2d_grid::grid_w, 21}};
    const std::vector<uint16_t> before = to.copy();
    for (const auto& c : cases) {
        const lsc2d_grid sound = *c.grid;
        c.grid->*c.field = c.value;
        EXPECT_EQ(lsc2d_grid_convert(&src, &dst, 207, 150), -1);
        *c.grid = sound;
    }
    EXPECT_EQ(to.copy(), before);
}

} // namespace
