#include "zerklsc.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using zerklsc::testing::Guarded;
using zerklsc::testing::Random;

using Align = void (*)(float*, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t);
const Align aligns[] = {
    [](float* table, int32_t grid_w, int32_t grid_h, int32_t row_length, int32_t width, int32_t height,
       int32_t step_x, int32_t step_y) {
        EXPECT_EQ(align_table_linear(table, grid_w, grid_h, row_length, width, height, step_x, step_y),
                  step_x < 1 || row_length < grid_w ? -1 : 0);
    },
    align_table_cubic_c1, align_table_cubic_c2};
using Expand = void (*)(float*, int32_t, int32_t);
const Expand expands[] = {expand_lsc_table_c1, expand_lsc_table_c2};

// Copies the table into rows of another length, or back.
void move_rows(const float* from, size_t from_length, float* to, size_t to_length, size_t width,
               size_t height) {
    for (size_t y = 0; y < height; ++y)
        std::copy_n(from + y * from_length, width, to + y * to_length);
}

TEST(Align, ThenExpandEqualsUpdateTableBorderToTheBit) {
    Random random(21);
    for (int n = 0; n < 500; ++n) {
        const auto any = [&](int low, int high) { return static_cast<int32_t>(random.between(low, high)); };
        const int32_t grid_w = any(3, 12), grid_h = any(3, 12), width = any(-5, 300), height = any(1, 300);
        const int32_t step_x = any(1, 40), step_y = any(1, 40), edge = any(0, 2), fill = any(0, 1);
        std::vector<float> inner(static_cast<size_t>(grid_w * grid_h));
        for (float& v : inner)
            v = static_cast<float>(1 + 15 * random.unit());
        const size_t w = static_cast<size_t>(grid_w + 2), h = static_cast<size_t>(grid_h + 2);
        const size_t room = w + static_cast<size_t>(any(0, 3));
        Guarded<float> whole(w * h), packed(w * h), roomy(room * h);
        ASSERT_EQ(update_table_border(inner.data(), whole.data(), width, height, step_x, step_y, grid_w,
                                      grid_h, edge + 1, fill),
                  0);
        move_rows(inner.data(), w - 2, &roomy[room + 1], room, w - 2, h - 2);
        aligns[edge](roomy.data(), grid_w, grid_h, static_cast<int32_t>(room), width, height, step_x, step_y);
        move_rows(roomy.data(), room, packed.data(), w, w, h);
        expands[fill](packed.data(), grid_w, grid_h);
        ASSERT_EQ(std::memcmp(packed.data(), whole.data(), w * h * sizeof(float)), 0) << edge << fill;
    }
}

TEST(Align, ImpossibleGeometryTouchesNothing) {
    Guarded<float> table(0);
    for (const Align align : aligns) {
        align(table.data(), 5, 5, 7, 45, 45, 0, 10);
        align(table.data(), 5, 5, 4, 45, 45, 10, 10);
        align(table.data(), INT32_MIN, 5, INT32_MIN, 45, 45, -1, 10);
    }
    for (const Expand expand : expands) {
        expand(table.data(), 1, 5);
        expand(table.data(), 5, INT32_MIN);
        expand(table.data(), INT32_MAX, 3);
    }
}

} // namespace
