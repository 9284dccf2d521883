#include "zerklsc.h"

#include <cmath>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

// A bordered table of 3 x 3 nodes or more, made from what value(i, j) says was measured; -77 before that.
struct Bordered {
    int32_t grid_w, grid_h;
    Guarded<float> inner, table;

    Bordered(int32_t width, int32_t height, int32_t step_x, int32_t step_y, int32_t edge, int32_t fill,
             auto value)
        : grid_w((width - 2) / step_x + 2), grid_h((height - 2) / step_y + 2),
          inner(static_cast<size_t>(grid_w * grid_h), Against::front),
          table(static_cast<size_t>((grid_w + 2) * (grid_h + 2))) {
        for (int32_t n = 0; n < grid_w * grid_h; ++n)
            inner.data()[n] = static_cast<float>(value(n % grid_w, n / grid_w));
        std::fill(table.begin(), table.end(), -77.0f);
        EXPECT_EQ(update_table_border(inner.data(), table.data(), width, height, step_x, step_y, grid_w,
                                      grid_h, edge, fill),
                  0);
    }

    double at(int32_t i, int32_t j) {
        return static_cast<double>(table.data()[(j + 1) * (grid_w + 2) + i + 1]);
    }
};

// The last sample lies inside the last cell, on the last node, just behind a node; the smallest grid.
const int32_t shapes[][4] = {{100, 80, 10, 16}, {101, 65, 10, 16}, {22, 26, 10, 8}, {15, 20, 10, 12}};

TEST(Border, GainsOnAnInclineContinueWhereverTheLastSampleLies) {
    const auto incline = [](int32_t x, int32_t y) { return 100 + 0.25 * x - 0.5 * y; };
    for (const auto& [width, height, step_x, step_y] : shapes)
        for (const int32_t edge : {1, 2, 3})
            for (const int32_t fill : {0, 1, 9}) {
                const auto measured = [&, w = width, h = height, sx = step_x, sy = step_y](int32_t i,
                                                                                           int32_t j) {
                    return incline(std::min(i * sx, w - 1), std::min(j * sy, h - 1));
                };
                Bordered b(width, height, step_x, step_y, edge, fill, measured);
                for (int32_t j = -1; j <= b.grid_h; ++j)
                    for (int32_t i = -1; i <= b.grid_w; ++i) {
                        const bool outside = i < 0 || j < 0 || i == b.grid_w || j == b.grid_h;
                        ASSERT_NEAR(b.at(i, j), fill == 9 && outside ? -77 : incline(i * step_x, j * step_y),
                                    0.1)
                            << edge << fill;
                    }
            }
}

TEST(Border, CubicQuadraticEdgeSumsDifferentlyAlongRowsAndColumns) {
    // Worked out in single precision, operation by operation, outside the library; t = 0.9.
    const float line[] = {2.97f, 2.11f, 2.19f};
    const auto along_row = [&](int32_t i, int32_t) { return line[i]; };
    const auto along_column = [&](int32_t, int32_t j) { return line[j]; };
    EXPECT_EQ(Bordered(20, 20, 10, 10, 3, 1, along_row).at(2, 0), 0x1.1fd9b0p+1);
    EXPECT_EQ(Bordered(20, 20, 10, 10, 3, 1, along_column).at(0, 2), 0x1.1fd9b4p+1);
    EXPECT_EQ(Bordered(20, 20, 10, 10, 2, 1, along_row).at(2, 0), 0x1.1a1174p+1);
    EXPECT_EQ(Bordered(20, 20, 10, 10, 2, 1, along_column).at(0, 2), 0x1.1a1174p+1);
}

TEST(Border, AStepOfOneWithAnEdgeModeDividesByZero) {
    const auto rising = [](int32_t i, int32_t j) { return 1 + 0.5 * i * i + 0.25 * j * j; };
    for (const int32_t edge : {1, 2, 3}) {
        Bordered b(6, 5, 1, 1, edge, 9, rising);
        for (int32_t j = 0; j < b.grid_h; ++j)
            EXPECT_FALSE(std::isfinite(b.at(b.grid_w - 1, j))) << edge;
        EXPECT_EQ(b.at(0, 0), rising(0, 0));
    }
}

TEST(Border, UnknownEdgeModesLeaveTheLastNodesAsMeasured) {
    const auto bent = [](int32_t i, int32_t j) { return 1 + i * i * 0.5 + j * 0.25; };
    for (const int32_t edge : {INT32_MIN, -1, 0, 4, 7}) {
        Bordered b(16, 25, 10, 9, edge, 1, bent);
        for (int32_t j = 0; j < b.grid_h; ++j)
            for (int32_t i = 0; i < b.grid_w; ++i)
                ASSERT_EQ(b.at(i, j), bent(i, j)) << edge;
    }
}

TEST(Border, RefusesWhatTheStencilsCannotReach) {
    const struct {
        int32_t step_x, step_y, grid_w, grid_h, edge, fill, status;
    } cases[] = {
        {0, 10, 5, 5, 1, 1, -1},  {10, INT32_MIN, 5, 5, 1, 1, -1},   {10, 10, 2, 5, 1, 1, -1},
        {10, 10, 5, 2, 3, 0, -1}, {10, 10, 2, 5, 2, 0, -1},          {10, 10, 2, 2, 1, 0, 0},
        {10, 10, 1, 2, 1, 9, -1}, {10, 10, 2, 1, 0, 0, -1},          {10, 10, 1, 1, 0, 9, 0},
        {10, 10, 0, 5, 0, 9, -1}, {10, 10, INT32_MIN, -5, 1, 1, -1}, {10, 10, INT32_MAX, 3, 1, 1, -1},
        {1, 1, 5, 5, 1, 1, 0}};
    for (const auto& c : cases) {
        Guarded<float> inner(25), table(49);
        std::fill(table.begin(), table.end(), -77.0f);
        EXPECT_EQ(update_table_border(inner.data(), table.data(), 45, INT32_MIN, c.step_x, c.step_y, c.grid_w,
                                      c.grid_h, c.edge, c.fill),
                  c.status);
        EXPECT_EQ(table.copy() == std::vector<float>(49, -77.0f), c.status == -1)
            << c.grid_w << ' ' << c.edge;
    }
}

} // namespace
