// What the public header says of tables and streams that a caller would hardly expect.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "zerklsc.h"

namespace zerklsc::testing {
namespace {

TEST(HeaderClaims, ADestinationStepOfOneLosesTheLastColumnAndRow) {
    std::vector<uint16_t> source(7 * 6), fine(16 * 12, 999);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<uint16_t>(1024 + 37 * (i % 7) + 11 * (i / 7));
    const lsc2d_grid from{source.data(), 4, 4, 5, 4}, to{fine.data(), 1, 1, 14, 10};
    ASSERT_EQ(lsc2d_grid_convert(&from, &to, 13, 9), 0);
    EXPECT_EQ(fine[16 + 1], 1024 + 37 + 11); // the first inner node
    for (size_t row = 1; row < 11; ++row) {
        const uint16_t last = fine[row * 16 + 14];
        EXPECT_TRUE(last == 0 || last == 16383) << last;
    }
}

TEST(HeaderClaims, ACropOrADestinationWithoutExtentGivesAConstantDirection) {
    std::vector<uint16_t> source(7 * 6), table(8 * 7);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<uint16_t>(1024 + 37 * (i % 7) + 11 * (i / 7));
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
    std::vector<uint16_t> source(7 * 6), apart(12 * 10), in_place(12 * 10);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<uint16_t>(1024 + 37 * (i % 7) + 11 * (i / 7) * (i / 7));
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

TEST(HeaderClaims, DecodedGainsAreNotLimitedAndComeBackExchangedInAnotherPattern) {
    constexpr int w = 67, h = 5;
    std::vector<uint16_t> tables[4];
    std::vector<uint8_t> stream(3 * (w - 2) * (h - 2));
    lsc_otp_info info{1, w, h, {}, stream.data(), 0};
    for (size_t c = 0; c < 4; ++c) {
        for (int i = 0; i < w * h; ++i)
            tables[c].push_back(static_cast<uint16_t>(
                std::min(1024 + 480 * std::abs(i % w - w / 2) + 32 * static_cast<int>(c), 16383)));
        info.lsc_table[c] = tables[c].data();
    }
    ASSERT_EQ(lsc_compress(&info), 0);
    ASSERT_EQ(lsc_decompress(&info), 0);
    EXPECT_EQ(tables[2][2 * w + 1], 16384);
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(tables[c][2 * w + w / 2], 1024 + 32 * c);
    info.bayer_pattern = 2;
    ASSERT_EQ(lsc_decompress(&info), 0);
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(tables[c][2 * w + w / 2], 1024 + 32 * (3 - c));
    // 1.0 beside 1.5: the parabola through both is below 0 one node further.
    lsc_otp_info small{
        1, 5, 5, {tables[0].data(), tables[1].data(), tables[2].data(), tables[3].data()}, stream.data(), 0};
    for (size_t c = 0; c < 4; ++c)
        for (size_t i = 0; i < 25; ++i)
            tables[c][i] = i % 5 == 2 ? 1520 : 1024;
    ASSERT_EQ(lsc_compress(&small), 0);
    ASSERT_EQ(lsc_decompress(&small), 0);
    EXPECT_EQ(tables[0][2 * 5], 65536 + 3 * 1024 - 3 * 1520 + 1024);
}

} // namespace
} // namespace zerklsc::testing
