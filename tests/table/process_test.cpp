#include "zerklsc.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"

namespace {

using zerklsc::testing::AllocationScope;
using zerklsc::testing::Guarded;
using zerklsc::testing::Random;

constexpr uint16_t untouched = 0xBEEF;

// Four tables of w x h against guard pages, and the array of their addresses that the interface takes.
struct TableSet {
    Guarded<uint16_t> channel[4];
    uint16_t* pointers[4];

    TableSet(size_t nodes, uint16_t value)
        : channel{Guarded<uint16_t>(nodes), Guarded<uint16_t>(nodes), Guarded<uint16_t>(nodes),
                  Guarded<uint16_t>(nodes)} {
        for (int c = 0; c < 4; ++c) {
            std::fill(channel[c].begin(), channel[c].end(), value);
            pointers[c] = channel[c].data();
        }
    }

    bool all(uint16_t value) {
        for (auto& table : channel)
            if (table.copy() != std::vector<uint16_t>(table.size(), value))
                return false;
        return true;
    }
};

TEST(Preproc, BuildsEachChannelFromItsOwnNodes) {
    // Gains rise by 10 per column, 20 per row, 1000 per channel; the last sample lies half a cell before the
    // last node, so the last step is doubled; the border continues the parabola.
    for (const int32_t fill : {1, 9}) {
        lsc2d_calib_param param;
        lsc2d_calib_param_default(&param, 10, 0, 100);
        param.border_aux = fill;
        TableSet src(9, 0), dst(25, untouched);
        for (int n = 0; n < 36; ++n)
            src.pointers[n / 9][n % 9] =
                static_cast<uint16_t>(1000 + n / 9 * 1000 + n % 3 * 10 + n % 9 / 3 * 20);
        ASSERT_EQ(lsc2d_table_preproc(src.pointers, dst.pointers, 16, 16, 5, 5, &param), 0);
        const int x[5] = {0, 0, 10, 30, 60}, y[5] = {0, 0, 20, 60, 120};
        for (int c = 0; c < 4; ++c)
            for (int n = 0; n < 25; ++n) {
                const int i = n % 5, j = n / 5;
                const bool border = i == 0 || i == 4 || j == 0 || j == 4;
                ASSERT_EQ(dst.pointers[c][n], border && fill == 9 ? 0 : 1000 + c * 1000 + x[i] + y[j]) << n;
            }
    }
}

TEST(Preproc, RefusalsAndFailedAllocationsWriteNothing) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, 10, 0, 100);
    TableSet src(9, 1024), dst(25, untouched);
    EXPECT_EQ(lsc2d_table_preproc(nullptr, dst.pointers, 16, 16, 5, 5, &param), -1);
    EXPECT_EQ(lsc2d_table_preproc(src.pointers, nullptr, 16, 16, 5, 5, &param), -1);
    for (const int32_t size : {INT32_MIN, -5, 0, 1, 2, 4}) {
        EXPECT_EQ(lsc2d_table_preproc(src.pointers, dst.pointers, 16, 16, size, 5, &param), -1);
        EXPECT_EQ(lsc2d_table_preproc(src.pointers, dst.pointers, 16, 16, size, size, &param), -1);
    }
    lsc2d_calib_param no_step = param;
    no_step.grid = 0;
    EXPECT_EQ(lsc2d_table_preproc(src.pointers, dst.pointers, 16, 16, 5, 5, &no_step), -1);
    for (size_t n = 0;; ++n) {
        EXPECT_TRUE(dst.all(untouched));
        AllocationScope heap(n);
        const int32_t status = lsc2d_table_preproc(src.pointers, dst.pointers, 16, 16, 5, 5, &param);
        EXPECT_TRUE(heap.leftovers().empty());
        EXPECT_EQ(status, heap.failed() ? -1 : 0);
        if (!heap.failed())
            break;
    }
    EXPECT_TRUE(dst.all(1024));
}

TEST(Postproc, FullStrengthLeavesOnlyTheClamp) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, 10, 0, 100);
    for (param.shading_type = 0; param.shading_type < 4; ++param.shading_type) {
        TableSet set(35, 0);
        Random random(9);
        std::vector<uint16_t> before = zerklsc::testing::random_samples(random, 35);
        for (auto& table : set.channel)
            std::copy(before.begin(), before.end(), table.begin());
        EXPECT_EQ(lsc2d_table_postproc(set.pointers, 40, 20, 7, 5, &param), 0);
        for (auto& table : set.channel)
            for (size_t n = 0; n < 35; ++n)
                ASSERT_EQ(table[n], std::min(before[n], uint16_t{16383}));
    }
}

TEST(Postproc, ATableOfAnotherSizeIsLeftAlone) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, 10, 0, 50);
    TableSet set(35, untouched);
    const int32_t sizes[][2] = {{8, 5}, {6, 5}, {7, 4}, {7, 6}};
    for (const auto& [w, h] : sizes)
        EXPECT_EQ(lsc2d_table_postproc(set.pointers, 40, 20, w, h, &param), -1);
    for (param.grid = -1; param.grid < 1; ++param.grid)
        EXPECT_EQ(lsc2d_table_postproc(set.pointers, 40, 20, 7, 5, &param), -1);
    EXPECT_TRUE(set.all(untouched));
}

} // namespace
