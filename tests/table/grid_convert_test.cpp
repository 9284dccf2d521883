#include "zerklsc.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using zerklsc::testing::Against;
using zerklsc::testing::AllocationScope;
using zerklsc::testing::Guarded;
using zerklsc::testing::Random;

// A grid over a plane with its table against a guard page.
struct Grid {
    lsc2d_grid record{};
    Guarded<uint16_t> table;

    Grid(int32_t width, int32_t height, int32_t step_x, int32_t step_y, auto gain)
        : record(sized(width, height, step_x, step_y)),
          table(static_cast<size_t>((record.grid_w + 2) * (record.grid_h + 2))) {
        record.table = table.data();
        for (int32_t j = -1; j <= record.grid_h; ++j)
            for (int32_t i = -1; i <= record.grid_w; ++i)
                at(i, j) = static_cast<uint16_t>(gain(i * step_x, j * step_y));
    }

    static lsc2d_grid sized(int32_t width, int32_t height, int32_t step_x, int32_t step_y) {
        lsc2d_grid grid{nullptr, step_x, step_y, 0, 0};
        lsc2d_grid_samples(width, height, step_x, step_y, &grid.grid_w, &grid.grid_h);
        return grid;
    }

    uint16_t& at(int32_t i, int32_t j) { return record.table[(j + 1) * (record.grid_w + 2) + i + 1]; }
};

uint16_t untouched(int32_t, int32_t) {
    return 0xBEEF;
}

TEST(GridConvert, AnInclinedPlaneComesOutTheSameAtEveryStep) {
    const auto incline = [](int32_t x, int32_t y) { return 5000 + 3 * x + 5 * y; };
    for (const int32_t width : {200, 207})
        for (const int32_t from : {16, 25, 64})
            for (const int32_t to : {7, 16, 100}) {
                Grid src(width, 150, from, from + 3, incline), dst(width, 150, to, to + 1, untouched);
                ASSERT_EQ(lsc2d_grid_convert(&src.record, &dst.record, width, 150), 0);
                for (int32_t j = -1; j <= dst.record.grid_h; ++j)
                    for (int32_t i = -1; i <= dst.record.grid_w; ++i)
                        ASSERT_NEAR(dst.at(i, j), incline(i * to, j * (to + 1)), 1) << i << ' ' << j;
            }
}

TEST(GridConvert, TheSameGridKeepsTheNodesInsideThePlaneAndLimitsThem) {
    Random random(4);
    Grid src(201, 150, 25, 25, [&](int32_t, int32_t) { return random.next(); });
    Grid dst(201, 150, 25, 25, untouched);
    ASSERT_EQ(lsc2d_grid_convert(&src.record, &dst.record, 201, 150), 0);
    for (int32_t j = 0; j < 6; ++j)
        for (int32_t i = 0; i < 9; ++i)
            ASSERT_EQ(dst.at(i, j), std::min(src.at(i, j), uint16_t{16383})) << i << ' ' << j;
}

TEST(GridConvert, RefusalsAndFailedAllocationsLeaveTheDestination) {
    const Grid sound(100, 100, 10, 10, [](int32_t, int32_t) { return 1024; });
    const struct {
        int32_t lsc2d_grid::*field;
        bool of_source;
        int32_t value;
    } cases[] = {{&lsc2d_grid::step_x, true, 0},         {&lsc2d_grid::step_y, true, -1},
                 {&lsc2d_grid::step_x, false, 0},        {&lsc2d_grid::step_y, false, INT32_MIN},
                 {&lsc2d_grid::grid_w, false, 2},        {&lsc2d_grid::grid_h, false, INT32_MIN},
                 {&lsc2d_grid::grid_w, true, 10},        {&lsc2d_grid::grid_h, true, 10},
                 {&lsc2d_grid::grid_h, true, INT32_MIN}, {&lsc2d_grid::step_x, true, 9}};
    Grid dst(100, 100, 10, 10, untouched);
    for (const auto& c : cases) {
        lsc2d_grid from = sound.record, to = dst.record;
        lsc2d_grid& changed = c.of_source ? from : to;
        changed.*c.field = c.value;
        EXPECT_EQ(lsc2d_grid_convert(&from, &to, 100, 100), -1);
    }
    for (size_t n = 0;; ++n) {
        EXPECT_TRUE(std::all_of(dst.table.begin(), dst.table.end(), [](uint16_t g) { return g == 0xBEEF; }));
        AllocationScope heap(n);
        const int32_t status = lsc2d_grid_convert(&sound.record, &dst.record, 100, 100);
        EXPECT_TRUE(heap.leftovers().empty());
        EXPECT_EQ(status, heap.failed() ? -1 : 0);
        if (!heap.failed())
            break;
    }
    EXPECT_EQ(dst.table.copy(), std::vector<uint16_t>(dst.table.size(), 1024));
}

} // namespace
