#include "zerklsc.h"

#include <cmath>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

// The addresses of four tables that stand one behind the other.
struct Channels {
    uint16_t* table[4];

    explicit Channels(Guarded<uint16_t>& all) {
        for (size_t c = 0; c < 4; ++c)
            table[c] = all.data() + c * all.size() / 4;
    }
};

lsc2d_calib_param params(int32_t grid, int32_t percent = 100) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, grid, 0, percent);
    return param;
}

TEST(Preproc, BuildsEachChannelFromItsOwnNodesOrWritesNothing) {
    // Gains rise by 10 per column, 20 per row, 1000 per channel. The last sample lies a half of the last cell
    // behind its first node across and 0.4 of it down, so that the last step is 2 and 2.5 times as large; the
    // border continues the parabola.
    const int x[] = {0, 0, 10, 30, 60}, y[] = {10, 0, 20, 70, 150};
    Guarded<uint16_t> from(36), to(100);
    Channels src(from), dst(to);
    for (int n = 0; n < 36; ++n)
        from.data()[n] = static_cast<uint16_t>(1000 + n / 9 * 1000 + n % 3 * 10 + n % 9 / 3 * 20);
    lsc2d_calib_param param = params(10), no_step = params(0);
    const std::vector<uint16_t> before = to.copy();
    EXPECT_EQ(lsc2d_table_preproc(nullptr, dst.table, 16, 15, 5, 5, &param), -1);
    EXPECT_EQ(lsc2d_table_preproc(src.table, nullptr, 16, 15, 5, 5, &param), -1);
    EXPECT_EQ(lsc2d_table_preproc(src.table, dst.table, 16, 15, 5, 5, &no_step), -1);
    for (const int32_t size : {INT32_MIN, -5, 0, 2, 4})
        EXPECT_EQ(lsc2d_table_preproc(src.table, dst.table, 16, 15, size, size, &param), -1);
    EXPECT_EQ(lsc2d_table_preproc(src.table, dst.table, 16, 15, 2, 5, &param), -1);
    EXPECT_EQ(lsc2d_table_preproc(src.table, dst.table, 16, 15, 5, 2, &param), -1);
    EXPECT_EQ(to.copy(), before);
    for (const int32_t fill : {1, 9}) {
        param.border_aux = fill;
        ASSERT_EQ(lsc2d_table_preproc(src.table, dst.table, 16, 15, 5, 5, &param), 0);
        for (int n = 0; n < 100; ++n) {
            const int i = n % 5, j = n % 25 / 5;
            const bool zero = fill == 9 && (i % 4 == 0 || j % 4 == 0);
            ASSERT_EQ(to.data()[n], zero ? 0 : 1000 + n / 25 * 1000 + x[i] + y[j]) << n;
        }
    }
}

// The square-root model on a plane of 40 x 20, in double precision: node (i, j) of the table stands one step
// before node (i, j) of the grid. The limit comes after it.
TEST(Postproc, ShadesEveryChannelAsStronglyAsAskedAndLimitsItAndLeavesAnotherSizeAlone) {
    for (const int32_t percent : {35, 80, 100}) {
        Guarded<uint16_t> all(140);
        Channels set(all);
        for (size_t n = 0; n < 140; ++n)
            all[n] = static_cast<uint16_t>(n * 450);
        const lsc2d_calib_param param = params(10, percent), no_step = params(0, percent);
        const std::vector<uint16_t> before = all.copy();
        const int32_t sizes[][2] = {{8, 5}, {6, 5}, {7, 4}, {7, 6}};
        for (const auto& [w, h] : sizes)
            EXPECT_EQ(lsc2d_table_postproc(set.table, 40, 20, w, h, &param), -1);
        EXPECT_EQ(lsc2d_table_postproc(set.table, 40, 20, 7, 5, &no_step), -1);
        EXPECT_EQ(all.copy(), before);
        EXPECT_EQ(lsc2d_table_postproc(set.table, 40, 20, 7, 5, &param), 0);
        for (int n = 0; n < 140; ++n) {
            const double dx = (n % 7 - 1) * 10 - 20, dy = (n % 35 / 7 - 1) * 10 - 10, share = percent / 100.0;
            const double square = 1 + (dx * dx + dy * dy) / 500 * (share * share - 1);
            const double gain = square < 0 ? 0 : std::min(n * 450 * std::sqrt(square), 16383.0);
            ASSERT_NEAR(all[static_cast<size_t>(n)], gain, percent == 100 ? 0 : 0.6) << n;
        }
    }
}

} // namespace
