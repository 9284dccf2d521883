// What the public header says of tables that a caller would hardly expect.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "zerklsc.h"

namespace zerklsc::testing {
namespace {

// 7 x 6 entries that rise by 37 to the right and by 11 downwards.
std::vector<uint16_t> source_table() {
    std::vector<uint16_t> table;
    for (int i = 0; i < 7 * 6; ++i)
        table.push_back(static_cast<uint16_t>(1024 + 37 * (i % 7) + 11 * (i / 7)));
    return table;
}

TEST(HeaderClaims, ADestinationStepOfOneLosesTheLastColumnAndRow) {
    std::vector<uint16_t> source = source_table(), fine(16 * 12, 999);
    const lsc2d_grid from{source.data(), 4, 4, 5, 4}, to{fine.data(), 1, 1, 14, 10};
    ASSERT_EQ(lsc2d_grid_convert(&from, &to, 13, 9), 0);
    EXPECT_EQ(fine[16 + 1], 1024 + 37 + 11); // the first inner node
    for (size_t row = 1; row < 11; ++row) {
        const uint16_t last = fine[row * 16 + 14];
        EXPECT_TRUE(last == 0 || last == 16383) << last;
    }
}

TEST(HeaderClaims, ACropOrADestinationWithoutExtentGivesAConstantDirection) {
    std::vector<uint16_t> source = source_table(), table(8 * 7);
    const lsc2d_table_desc from{16, 12, 4, 4, 7, 6, source.data()};
    struct {
        lsc2d_crop crop;
        uint16_t width;
    } const cases[] = {{{4, 2, 0, 8}, 20}, {{4, 2, 9, 8}, 0}};
    for (const auto& c : cases) {
        const lsc2d_table_desc to{c.width, 16, 4, 4, 8, 7, table.data()};
        ASSERT_EQ(lsc2d_table_mapping(&from, &to, &c.crop), 0);
        for (size_t row = 0; row < 7; ++row)
            for (size_t column = 0; column < 8; ++column)
                EXPECT_EQ(table[row * 8 + column], table[row * 8]) << row << ' ' << column;
        EXPECT_EQ(table[8 + 1], 1024 + 37 * 2 + 11 + 5 + 1); // (4, 2): between rows 0 and 1, 5.5 up
    }
}

TEST(HeaderClaims, ATableMayBeConvertedInItsOwnMemory) {
    std::vector<uint16_t> source = source_table(), apart(12 * 10), in_place(12 * 10);
    const lsc2d_crop crop{2, 1, 12, 11};
    for (const bool mapped : {false, true}) {
        const auto convert = [&](uint16_t* table, uint16_t* to) {
            const lsc2d_grid a{table, 4, 4, 5, 4}, b{to, 2, 2, 10, 8};
            const lsc2d_table_desc src{16, 12, 4, 4, 7, 6, table}, dst{19, 15, 2, 2, 12, 10, to};
            return mapped ? lsc2d_table_mapping(&src, &dst, &crop) : lsc2d_grid_convert(&a, &b, 16, 12);
        };
        std::copy(source.begin(), source.end(), in_place.begin());
        ASSERT_EQ(convert(source.data(), apart.data()), 0);
        ASSERT_EQ(convert(in_place.data(), in_place.data()), 0);
        EXPECT_EQ(in_place, apart);
    }
}

} // namespace
} // namespace zerklsc::testing
