#include "zerklsc.h"

#include <cstring>
#include <utility>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

TEST(Align, ThenExpandEqualsUpdateTableBorderToTheBit) {
    Random random(21);
    for (int n = 0; n < 600; ++n) {
        const auto any = [&](int low, int high) { return static_cast<int32_t>(random.between(low, high)); };
        const int32_t edge = n % 3 + 1, fill = n % 2, fewest = edge == 1 && fill == 0 ? 2 : 3;
        const int32_t grid_w = any(fewest, 12), grid_h = any(fewest, 12), width = any(-5, 300);
        const int32_t height = any(1, 300), step_x = any(1, 40), step_y = any(1, 40);
        const int32_t row = grid_w + 2, room = grid_w + any(0, 5);
        const auto node = [grid_w](int32_t k, int32_t length) {
            return static_cast<size_t>((k / grid_w + 1) * length + k % grid_w + 1);
        };
        Guarded<float> whole(static_cast<size_t>(row * (grid_h + 2))), packed(whole.size());
        std::vector<float> inner, roomy(static_cast<size_t>(room * (grid_h + 2)));
        for (int32_t k = 0; k < grid_w * grid_h; ++k) {
            inner.push_back(static_cast<float>(1 + 15 * random.unit()));
            roomy[node(k, room)] = inner.back();
        }
        update_table_border(inner.data(), whole.data(), width, height, step_x, step_y, grid_w, grid_h, edge,
                            fill);
        if (edge == 1)
            EXPECT_EQ(align_table_linear(roomy.data(), grid_w, grid_h, room, width, height, step_x, step_y),
                      0);
        else
            (edge == 2 ? align_table_cubic_c1 : align_table_cubic_c2)(roomy.data(), grid_w, grid_h, room,
                                                                      width, height, step_x, step_y);
        for (int32_t k = 0; k < grid_w * grid_h; ++k)
            packed[node(k, row)] = std::exchange(roomy[node(k, room)], 0.0f);
        ASSERT_EQ(roomy, std::vector<float>(roomy.size())) << "the caller's border";
        if (fill == 0)
            expand_lsc_table_c1(packed.data(), grid_w, grid_h);
        else
            expand_lsc_table_c2(packed.data(), grid_w, grid_h);
        ASSERT_EQ(std::memcmp(packed.data(), whole.data(), whole.size() * sizeof(float)), 0) << edge << fill;
    }
}

TEST(Align, ImpossibleGeometryTouchesNothing) {
    EXPECT_EQ(align_table_linear(nullptr, 5, 5, 7, 45, 45, 0, 10), -1);
    EXPECT_EQ(align_table_linear(nullptr, 5, 5, 4, 45, 45, 10, 10), -1);
    EXPECT_EQ(align_table_linear(nullptr, 5, 1, 7, 45, 45, 10, 10), -1);
    EXPECT_EQ(align_table_linear(nullptr, INT32_MIN, 5, INT32_MIN, 45, 45, 10, 10), -1);
    align_table_cubic_c1(nullptr, 2, 5, 7, 45, 45, 10, 10);
    align_table_cubic_c2(nullptr, 5, 2, 7, 45, 45, 10, 10);
    expand_lsc_table_c1(nullptr, 1, 5);
    expand_lsc_table_c2(static_cast<float*>(nullptr), 5, INT32_MIN);
}

} // namespace
