#include "compress/otp_set.h"

namespace {

using namespace zerklsc::testing;

TEST(Decompress, EqualsItsSeparatePassesForAnyBytes) {
    Random random(4);
    for (int i = 0; i < 600; ++i) {
        const int w = 1 + i % 40, h = 1 + i % 11, unit = i / 4 % 2 == 1 ? 64 : 16;
        const Against side = i % 3 ? Against::back : Against::front;
        OtpSet set(w, h, static_cast<uint8_t>(i % 4), static_cast<uint8_t>(i / 4 % 2), side);
        for (uint8_t& byte : set.stream)
            byte = static_cast<uint8_t>(random.next());
        OtpSet expected(w, h, set.info.bayer_pattern, set.info.precision_mode);
        std::vector<int16_t> p[4];
        for (auto& plane : p)
            plane.resize(static_cast<size_t>(w * h));
        load_data(set.stream.data(), p[0].data(), p[1].data(), p[2].data(), p[3].data(), w, h,
                  set.info.precision_mode);
        for (size_t k = 0; k < 4; ++k) {
            deintra_cnl_diff(p[k].data(), w, h, k == 0, set.info.precision_mode);
            const size_t table = k ^ (3u - set.info.bayer_pattern);
            for (size_t n = 0; n < p[k].size(); ++n) {
                const int r = static_cast<int>(n) / w + 1, c = static_cast<int>(n) % w + 1;
                expected.at(table, r, c) = static_cast<uint16_t>((p[0][n] - (k ? p[k][n] : 0)) * unit);
            }
            expand_lsc_table_c2(expected.info.lsc_table[table], w, h);
        }
        EXPECT_EQ(lsc_decompress(&set.info), 0);
        ASSERT_EQ(set.gains(), expected.gains()) << w << " x " << h;
        ASSERT_TRUE(set.intact());
    }
}

// The fields have one sign per role, so that no gain leaves 0..65535 on the way.
TEST(Decompress, GainsAreTheQuantisedOnesAndCompressToTheSameStream) {
    Random random(5);
    for (int i = 0; i < 400; ++i) {
        const int w = 1 + i % 9, h = w % 2 + 2 * static_cast<int>(random.between(1, 4)), n = w * h;
        const uint8_t mode = static_cast<uint8_t>(i / 4 % 2);
        OtpSet set(w, h, static_cast<uint8_t>(i % 4), mode);
        std::vector<int16_t> base(static_cast<size_t>(n)), less(base);
        for (int16_t& v : base)
            v = static_cast<int16_t>(random.between(0, mode == 1 ? 7 : 31));
        for (int16_t& v : less)
            v = static_cast<int16_t>(random.between(mode == 1 ? -4 : -16, 0));
        store_data(set.stream.data(), base.data(), less.data(), less.data(), less.data(), w, h, mode);
        const std::vector<uint8_t> stream = set.stream.copy();
        lsc_decompress(&set.info);
        const int half = mode == 1 ? 32 : 8;
        for (auto& table : set.tables)
            for (uint16_t& gain : *table)
                gain = static_cast<uint16_t>(gain + random.between(-half, half - 1));
        lsc_compress(&set.info);
        ASSERT_EQ(set.stream.copy(), stream) << w << " x " << h;
    }
}

TEST(Decompress, AddsNoRoundingTerm) {
    OtpSet set(3, 3, 3, 0);
    set.fill(1035);
    lsc_compress(&set.info);
    lsc_decompress(&set.info);
    EXPECT_EQ(set.gains(), std::vector<uint16_t>(100, 1040));
}

TEST(Decompress, UnstoredTailDecodesFromZeroDifferences) {
    OtpSet set(3, 3, 0, 1);
    set.fill(1024);
    set.at(3, 3, 3) = 2000; // the ninth of nine nodes
    lsc_compress(&set.info);
    lsc_decompress(&set.info);
    EXPECT_EQ(set.gains(), std::vector<uint16_t>(100, 1024));
}

TEST(Decompress, UnknownModeLeavesUnityOffsetUnshifted) {
    OtpSet set(3, 3, 1, 2);
    EXPECT_EQ(lsc_decompress(&set.info), 0);
    EXPECT_EQ(set.gains(), std::vector<uint16_t>(100, 64));
}

TEST(Decompress, UnknownPatternOnlyExtrapolatesTheBorder) {
    OtpSet set(3, 4, 4, 0);
    for (size_t n = 0; n < 48; ++n)
        set.at(n / 12, static_cast<int>(n % 12 / 3 + 1), static_cast<int>(n % 3 + 1)) = 7;
    EXPECT_EQ(lsc_decompress(&set.info), 0);
    EXPECT_EQ(set.gains(), std::vector<uint16_t>(120, 7));
}

TEST(Decompress, RefusalsWriteNothing) {
    for (const int width : {3, 20}) // the plain and the fast form
        expect_refusals_write_nothing(lsc_decompress, width);
}

} // namespace
