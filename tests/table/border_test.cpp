#include "zerklsc.h"

#include <cmath>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using zerklsc::testing::Against;
using zerklsc::testing::Guarded;
using zerklsc::testing::Random;

struct Shape {
    int32_t width, height, step_x, step_y, grid_w, grid_h;
};

// Last sample inside the last cell, on a node, one before a node; non-square; the smallest grid.
const Shape shapes[] = {{100, 80, 10, 16, 11, 6},
                        {101, 81, 10, 16, 12, 7},
                        {22, 25, 10, 8, 4, 5},
                        {15, 13, 10, 12, 3, 3},
                        {2000, 1500, 64, 64, 33, 25}};

struct Bordered {
    Shape s;
    Guarded<float> table;
    int32_t status;

    Bordered(const Shape& shape, const std::vector<float>& nodes, int32_t edge, int32_t fill)
        : s(shape), table(static_cast<size_t>((s.grid_w + 2) * (s.grid_h + 2))) {
        std::fill(table.begin(), table.end(), -77.0f);
        Guarded<float> inner(nodes, Against::back);
        status = update_table_border(inner.data(), table.data(), s.width, s.height, s.step_x, s.step_y,
                                     s.grid_w, s.grid_h, edge, fill);
    }

    // Node (0, 0) is the first inner one.
    float at(int32_t i, int32_t j) { return table[static_cast<size_t>((j + 1) * (s.grid_w + 2) + i + 1)]; }
};

std::vector<float> nodes_of(const Shape& s, auto value) {
    std::vector<float> nodes;
    for (int32_t j = 0; j < s.grid_h; ++j)
        for (int32_t i = 0; i < s.grid_w; ++i)
            nodes.push_back(static_cast<float>(value(i, j)));
    return nodes;
}

std::vector<float> random_nodes(const Shape& s, uint64_t seed) {
    Random random(seed);
    return nodes_of(s, [&](int32_t, int32_t) { return 1.0 + 15.0 * random.unit(); });
}

TEST(Border, ConstantGainsFillTheWholeTable) {
    for (const Shape& s : shapes)
        for (const int32_t edge : {1, 2, 3})
            for (const int32_t fill : {0, 1}) {
                Bordered b(s, nodes_of(s, [](int32_t, int32_t) { return 3.0; }), edge, fill);
                for (const float v : b.table)
                    ASSERT_NEAR(static_cast<double>(v), 3.0, edge == 1 ? 0.0 : 1e-4) << edge << fill;
            }
}

TEST(Border, LinesContinueExactly) {
    for (const Shape& s : shapes)
        for (const int32_t fill : {0, 1}) {
            const auto plane = [](int32_t i, int32_t j) { return 100.0 + 3 * i - 5 * j; };
            Bordered b(s, nodes_of(s, plane), 0, fill);
            for (int32_t j = -1; j <= s.grid_h; ++j)
                for (int32_t i = -1; i <= s.grid_w; ++i)
                    ASSERT_EQ(static_cast<double>(b.at(i, j)), plane(i, j)) << i << ',' << j;
        }
}

// What the interpolation of the matching border rule returns at the last sample.
double interpolated(int32_t edge, double t, double before, double left, double right) {
    if (edge == 1)
        return left + t * (right - left);
    const double after = edge == 2 ? 2 * right - left : 3 * right - 3 * left + before;
    const auto k = [](double x) {
        const double a = std::fabs(x);
        return a <= 1 ? (1.5 * a - 2.5) * a * a + 1 : ((-0.5 * a + 2.5) * a - 4) * a + 2;
    };
    return before * k(-1 - t) + left * k(-t) + right * k(1 - t) + after * k(2 - t);
}

TEST(Border, CorrectedEdgeReturnsTheMeasuredValueAtTheLastSample) {
    for (const Shape& s : shapes)
        for (const int32_t edge : {1, 2, 3}) {
            const std::vector<float> nodes = random_nodes(s, 5);
            const auto measured = [&](int32_t i, int32_t j) {
                return static_cast<double>(nodes[static_cast<size_t>(j * s.grid_w + i)]);
            };
            Bordered b(s, nodes, edge, 1);
            const int32_t w = s.grid_w, h = s.grid_h;
            const double tx = (s.width - 1) % s.step_x / double(s.step_x);
            const double ty = (s.height - 1) % s.step_y / double(s.step_y);
            const auto node = [&](int32_t i, int32_t j) { return static_cast<double>(b.at(i, j)); };
            for (int32_t j = 0; j < h - 1; ++j)
                ASSERT_NEAR(tx == 0 ? node(w - 1, j)
                                    : interpolated(edge, tx, node(w - 3, j), node(w - 2, j), node(w - 1, j)),
                            measured(w - 1, j), 2e-4)
                    << edge;
            for (int32_t i = 0; i < w - 1; ++i)
                ASSERT_NEAR(ty == 0 ? node(i, h - 1)
                                    : interpolated(edge, ty, node(i, h - 3), node(i, h - 2), node(i, h - 1)),
                            measured(i, h - 1), 2e-4)
                    << edge;
        }
}

TEST(Border, CubicQuadraticEdgeSumsDifferentlyAlongRowsAndColumns) {
    const Shape s{20, 20, 10, 10, 3, 3};
    const float c0 = get_cubic_coef(-1.9f), c1 = get_cubic_coef(-0.9f);
    const float c2 = get_cubic_coef(1 - 0.9f), c3 = get_cubic_coef(2 - 0.9f);
    Random random(11);
    int differing = 0;
    for (int n = 0; n < 200; ++n) {
        const float q = static_cast<float>(1 + random.unit()), p = static_cast<float>(1 + random.unit()),
                    m = static_cast<float>(1 + random.unit());
        float along_row = p * (3 * c3);
        along_row -= q * c3;
        along_row += m;
        along_row -= p * c1 + q * c0;
        float along_column = p * (3 * c3);
        along_column -= q * c0;
        along_column -= q * c3;
        along_column += m - p * c1;
        const float scale = 1 / (c2 + 3 * c3);
        EXPECT_EQ(Bordered(s, {q, p, m, q, p, m, q, p, m}, 3, 1).at(2, 0), along_row * scale);
        EXPECT_EQ(Bordered(s, {q, q, q, p, p, p, m, m, m}, 3, 1).at(0, 2), along_column * scale);
        differing += along_row != along_column;
    }
    EXPECT_GT(differing, 0);
}

TEST(Border, UnknownModesLeaveTheEdgeAndTheBorder) {
    for (const int32_t unknown : {-1, 7, INT32_MIN}) {
        const std::vector<float> nodes = random_nodes(shapes[0], 3);
        Bordered b(shapes[0], nodes, unknown, unknown);
        EXPECT_EQ(b.status, 0);
        for (int32_t j = -1; j <= 6; ++j)
            for (int32_t i = -1; i <= 11; ++i) {
                const bool inside = i >= 0 && j >= 0 && i < 11 && j < 6;
                ASSERT_EQ(b.at(i, j), inside ? nodes[static_cast<size_t>(j * 11 + i)] : -77.0f);
            }
    }
}

TEST(Border, StepOfOneIsPlainFloatArithmetic) {
    Bordered b({8, 8, 1, 1, 9, 9}, random_nodes({8, 8, 1, 1, 9, 9}, 1), 1, 0);
    EXPECT_EQ(b.status, 0);
    EXPECT_TRUE(std::isinf(b.at(8, 0)));
}

TEST(Border, RefusesWhatTheStencilsCannotReach) {
    const struct {
        int32_t step_x, step_y, grid_w, grid_h, edge, fill, status;
    } cases[] = {{0, 10, 5, 5, 1, 1, -1},  {10, 0, 5, 5, 1, 1, -1},    {INT32_MIN, 10, 5, 5, 1, 1, -1},
                 {10, -1, 5, 5, 1, 1, -1}, {10, 10, 2, 5, 1, 1, -1},   {10, 10, 5, 2, 1, 1, -1},
                 {10, 10, 2, 5, 2, 0, -1}, {10, 10, 5, 2, 3, 0, -1},   {10, 10, 2, 2, 1, 0, 0},
                 {10, 10, 1, 2, 1, 9, -1}, {10, 10, 2, 1, 0, 0, -1},   {10, 10, 1, 1, 0, 9, 0},
                 {10, 10, 0, 5, 0, 9, -1}, {10, 10, -5, -5, 1, 1, -1}, {10, 10, INT32_MAX, 3, 1, 1, -1}};
    for (const auto& c : cases) {
        Guarded<float> inner(25), table(49);
        std::fill(inner.begin(), inner.end(), 1.0f);
        std::fill(table.begin(), table.end(), -77.0f);
        EXPECT_EQ(update_table_border(inner.data(), table.data(), 45, INT32_MIN, c.step_x, c.step_y, c.grid_w,
                                      c.grid_h, c.edge, c.fill),
                  c.status);
        const bool untouched = table.copy() == std::vector<float>(49, -77.0f);
        EXPECT_EQ(untouched, c.status == -1) << c.grid_w << c.grid_h << c.edge << c.fill;
    }
}

} // namespace
