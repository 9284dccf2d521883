#include "zerklsc.h"

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

TEST(PixelPosition, RoundsHalfUpAndKeepsSixteenBits) {
    const uint16_t cases[][5] = {{10, 5, 4, 6, 18},
                                 {0, 1, 2, 1, 1},
                                 {7, 9, 0, 3, 7},
                                 {65535, 1, 1, 2, 1},
                                 {0, 65535, 1, 65535, 0},
                                 {0, 65535, 65535, 65535, 65535},
                                 {3, 40000, 50000, 65000, 52003}};
    for (const auto& [offset, position, dst_extent, src_extent, mapped] : cases)
        EXPECT_EQ(pixel_position_mapping(offset, position, dst_extent, src_extent), mapped);
}

int incline(int x, int y) {
    return 4000 + 3 * x + 5 * y;
}

TEST(TableMapping, CropAndScaleFollowThePlaneUnderneath) {
    // The destination shows a window of 120 x 80 at half size, two inner nodes of which may lie beyond the
    // source.
    Guarded<uint16_t> from(13 * 11), to(9 * 7);
    for (int n = 0; n < 143; ++n)
        from.data()[n] = static_cast<uint16_t>(incline((n % 13 - 1) * 20, (n / 13 - 1) * 20));
    const lsc2d_table_desc src{200, 150, 20, 20, 13, 11, from.data()}, dst{60, 40, 10, 10, 9, 7, to.data()};
    for (const lsc2d_crop crop : {lsc2d_crop{30, 10, 120, 80}, lsc2d_crop{190, 140, 120, 80}}) {
        ASSERT_EQ(lsc2d_table_mapping(&src, &dst, &crop), 0);
        for (int i = 0; i < 6; ++i)
            for (int j = 0; j < 4; ++j)
                ASSERT_EQ(to.data()[(j + 1) * 9 + i + 1],
                          incline(std::min(crop.x + 20 * i, 199), std::min(crop.y + 20 * j, 149)));
    }
    const std::vector<uint16_t> before = to.copy();
    const lsc2d_crop whole{0, 0, 200, 150};
    const struct {
        uint16_t lsc2d_table_desc::*field;
        uint16_t of_src, of_dst;
    } cases[] = {{&lsc2d_table_desc::step_x, 0, 0},
                 {&lsc2d_table_desc::step_y, 0, 0},
                 {&lsc2d_table_desc::table_w, 12, 4},
                 {&lsc2d_table_desc::table_h, 10, 4}};
    for (const auto& c : cases) {
        lsc2d_table_desc bad_src = src, bad_dst = dst;
        bad_src.*c.field = c.of_src;
        bad_dst.*c.field = c.of_dst;
        EXPECT_EQ(lsc2d_table_mapping(&bad_src, &dst, &whole), -1);
        EXPECT_EQ(lsc2d_table_mapping(&src, &bad_dst, &whole), -1);
    }
    EXPECT_EQ(to.copy(), before);
}

TEST(TableMapping, NodePositionsKeepSixteenBits) {
    // Column 3 of the destination stands at 90000, which is 24464 in 16 bits.
    Guarded<uint16_t> from(6 * 5), to(6 * 5);
    for (int n = 0; n < 30; ++n)
        from.data()[n] = static_cast<uint16_t>(4000 + (n % 6 - 1) * 3000);
    const lsc2d_table_desc src{60001, 20, 30000, 10, 6, 5, from.data()},
        dst{60001, 20, 30000, 10, 6, 5, to.data()};
    const lsc2d_crop whole{0, 0, 60001, 20};
    ASSERT_EQ(lsc2d_table_mapping(&src, &dst, &whole), 0);
    EXPECT_EQ(to[1 * 6 + 4], 4000 + 2446);
    // The furthest position is not that of the last node but of one in between, or the first: a source that
    // holds no more than the last one needs is refused.
    const std::vector<uint16_t> before = to.copy();
    lsc2d_table_desc narrow = src;
    narrow.table_w = 5;
    EXPECT_EQ(lsc2d_table_mapping(&narrow, &dst, &whole), -1);
    const lsc2d_table_desc few{20001, 20, 10000, 10, 5, 5, to.data()}; // from 60000, 4464 and 14464
    const lsc2d_crop far_right{60000, 0, 20001, 20};
    EXPECT_EQ(lsc2d_table_mapping(&narrow, &few, &far_right), -1);
    const lsc2d_table_desc low{20, 60001, 10, 30000, 5, 5, from.data()},
        tall{20, 60001, 10, 30000, 5, 6, to.data()};
    const lsc2d_crop upright{0, 0, 20, 60001};
    EXPECT_EQ(lsc2d_table_mapping(&low, &tall, &upright), -1);
    EXPECT_EQ(to.copy(), before);
}

} // namespace
