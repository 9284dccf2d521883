#include "zerklsc.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using zerklsc::testing::Guarded;

TEST(PixelPosition, RoundsHalfUpAndKeepsSixteenBits) {
    const struct {
        uint16_t offset, position, dst_extent, src_extent, mapped;
    } cases[] = {{10, 5, 4, 6, 18},
                 {0, 1, 2, 1, 1},
                 {7, 9, 0, 3, 7},
                 {65535, 1, 1, 2, 1},
                 {0, 65535, 1, 65535, 0},
                 {0, 65535, 65535, 65535, 65535},
                 {3, 40000, 50000, 65000, 52003}};
    for (const auto& c : cases)
        EXPECT_EQ(pixel_position_mapping(c.offset, c.position, c.dst_extent, c.src_extent), c.mapped);
}

lsc2d_table_desc described(Guarded<uint16_t>& table, uint16_t width, uint16_t height, uint16_t step) {
    int32_t w, h;
    lsc2d_table_size(width, height, step, step, &w, &h);
    EXPECT_EQ(table.size(), static_cast<size_t>(w * h));
    return {width, height, step, step, static_cast<uint16_t>(w), static_cast<uint16_t>(h), table.data()};
}

TEST(TableMapping, CropAndScaleFollowThePlaneUnderneath) {
    // Gains rise with the source position; the destination shows a 120 x 80 window at half size.
    const auto incline = [](int x, int y) { return 4000 + 3 * x + 5 * y; };
    Guarded<uint16_t> from(13 * 11), to(9 * 7);
    const lsc2d_table_desc src = described(from, 200, 150, 20), dst = described(to, 60, 40, 10);
    for (int n = 0; n < 143; ++n)
        from[static_cast<size_t>(n)] = static_cast<uint16_t>(incline((n % 13 - 1) * 20, (n / 13 - 1) * 20));
    for (const lsc2d_crop crop : {lsc2d_crop{30, 10, 120, 80}, lsc2d_crop{190, 140, 120, 80}}) {
        ASSERT_EQ(lsc2d_table_mapping(&src, &dst, &crop), 0);
        for (int j = 0; j < 4; ++j)
            for (int i = 0; i < 6; ++i)
                ASSERT_EQ(dst.table[(j + 1) * 9 + i + 1],
                          incline(std::min(crop.x + 20 * i, 199), std::min(crop.y + 20 * j, 149)));
    }
}

TEST(TableMapping, TheWholeImageIsTheIdenticalGridConversion) {
    Guarded<uint16_t> from(13 * 11), mapped(13 * 11), converted(13 * 11);
    const lsc2d_table_desc src = described(from, 200, 150, 20), dst = described(mapped, 200, 150, 20);
    for (size_t n = 0; n < 143; ++n)
        from[n] = static_cast<uint16_t>(1024 + n * n % 997);
    const lsc2d_crop crop{0, 0, 200, 150};
    ASSERT_EQ(lsc2d_table_mapping(&src, &dst, &crop), 0);
    const lsc2d_grid a{from.data(), 20, 20, 11, 9}, b{converted.data(), 20, 20, 11, 9};
    ASSERT_EQ(lsc2d_grid_convert(&a, &b, 200, 150), 0);
    EXPECT_EQ(mapped.copy(), converted.copy());
}

TEST(TableMapping, RefusalsLeaveTheDestination) {
    Guarded<uint16_t> from(13 * 11), to(13 * 11);
    const lsc2d_table_desc src = described(from, 200, 150, 20), dst = described(to, 200, 150, 20);
    const lsc2d_crop crop{0, 0, 200, 150};
    const std::vector<uint16_t> before = to.copy();
    const struct {
        uint16_t lsc2d_table_desc::*field;
        bool of_source;
        uint16_t value;
    } cases[] = {{&lsc2d_table_desc::step_x, true, 0},   {&lsc2d_table_desc::step_y, false, 0},
                 {&lsc2d_table_desc::table_w, false, 4}, {&lsc2d_table_desc::table_h, false, 0},
                 {&lsc2d_table_desc::table_w, true, 12}, {&lsc2d_table_desc::table_h, true, 10}};
    for (const auto& c : cases) {
        lsc2d_table_desc a = src, b = dst;
        lsc2d_table_desc& changed = c.of_source ? a : b;
        changed.*c.field = c.value;
        EXPECT_EQ(lsc2d_table_mapping(&a, &b, &crop), -1);
    }
    EXPECT_EQ(to.copy(), before);
}

} // namespace
