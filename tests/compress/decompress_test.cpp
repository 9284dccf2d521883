#include <gtest/gtest.h>

#include "compress/otp_set.h"

namespace {

using namespace zerklsc::testing;

TEST(Decompress, EqualsItsSeparatePassesForAnyBytes) {
    Random random(4);
    for (int i = 0; i < 880; ++i) {
        OtpSet set = random_set(i), expected = random_set(i);
        const int w = set.info.grid_width - 2, h = set.info.grid_height - 2,
                  base = 3 - set.info.bayer_pattern;
        const uint8_t mode = set.info.precision_mode;
        for (uint8_t& byte : set.stream)
            byte = static_cast<uint8_t>(random.next());
        std::vector<std::vector<int16_t>> p(4, std::vector<int16_t>(static_cast<size_t>(w * h)));
        load_data(set.stream.data(), p[0].data(), p[1].data(), p[2].data(), p[3].data(), w, h, mode);
        for (size_t k = 0; k < 4; ++k) {
            deintra_cnl_diff(p[k].data(), w, h, k == 0, mode);
            const int table = base ^ static_cast<int>(k);
            for (size_t n = 0; n < p[k].size(); ++n)
                expected.gain(table, static_cast<int>(n)) =
                    static_cast<uint16_t>((p[0][n] - (k ? p[k][n] : 0)) * (mode == 1 ? 64 : 16));
            expand_lsc_table_c2(expected.info.lsc_table[table], w, h);
        }
        EXPECT_EQ(lsc_decompress(&set.info), 0);
        ASSERT_EQ(set.gains.copy(), expected.gains.copy()) << w << " x " << h;
        ASSERT_TRUE(set.intact());
    }
}

TEST(Decompress, UnknownModeLeavesUnityOffsetUnshiftedAndUnknownPatternTheInnerNodes) {
    OtpSet mode(9, 3, 1, 2), pattern(9, 4, 4, 0);
    for (int n = 0; n < 4 * 36; ++n)
        pattern.gain(n / 36, n % 36) = 7;
    EXPECT_EQ(lsc_decompress(&mode.info), 0);
    EXPECT_EQ(mode.gains.copy(), std::vector<uint16_t>(220, 64));
    EXPECT_EQ(lsc_decompress(&pattern.info), 0);
    EXPECT_EQ(pattern.gains.copy(), std::vector<uint16_t>(264, 7)); // the border continues them
}

} // namespace
