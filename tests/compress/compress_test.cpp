#include <fstream>

#include "compress/otp_set.h"

namespace {

using namespace zerklsc::testing;

std::string hex(Guarded<uint8_t>& bytes) {
    std::string text;
    for (const uint8_t b : bytes)
        text += {"0123456789abcdef"[b >> 4], "0123456789abcdef"[b & 15]};
    return text;
}

// Smooth tables, one of them with a node that saturates its fields.
void fill_golden_tables(OtpSet& set) {
    for (int k = 0; k < 4; ++k)
        for (int i = 0; i < set.info.grid_width * set.info.grid_height; ++i) {
            const int c = i % set.info.grid_width, x = 2 * c + 1 - set.info.grid_width;
            const int r = i / set.info.grid_width, y = 2 * r + 1 - set.info.grid_height;
            const int fall = (x * x * (5 + k) + y * y * (9 - k)) / 2 + (r * 7 + c * 13 + k * 5) % 9;
            const int bump = k == 2 && r == 4 && c == 5 ? 900 : 0;
            set.info.lsc_table[k][i] = static_cast<uint16_t>(1024 + fall + bump);
        }
}

// Each line of the file, made once by a separate model of the format: table width, table height, Bayer
// pattern, mode, the sum of h = 31 * h + gain over the decoded tables modulo 2^32, the stream in hexadecimal.
TEST(Compress, GoldenStreamsAndTheTablesTheyDecodeTo) {
    std::ifstream file(GOLDEN_STREAMS);
    int w, h, pattern, mode, lines = 0;
    uint32_t sum;
    std::string stream;
    for (; file >> w >> h >> pattern >> mode >> sum >> stream; ++lines) {
        OtpSet set(w - 2, h - 2, static_cast<uint8_t>(pattern), static_cast<uint8_t>(mode));
        fill_golden_tables(set);
        EXPECT_EQ(lsc_compress(&set.info), 0);
        EXPECT_EQ(hex(set.stream), stream) << "line " << lines;
        EXPECT_EQ(lsc_decompress(&set.info), 0);
        uint32_t decoded = 0;
        for (const uint16_t gain : set.gains())
            decoded = 31 * decoded + gain;
        EXPECT_EQ(decoded, sum) << "line " << lines;
        EXPECT_TRUE(set.intact());
    }
    EXPECT_EQ(lines, 12);
}

TEST(Compress, EqualsItsSeparatePasses) {
    Random random(3);
    for (int i = 0; i < 600; ++i) {
        const int w = 1 + i % 40, h = 1 + i % 11, shift = i / 4 % 2 == 1 ? 6 : 4;
        OtpSet set(w, h, static_cast<uint8_t>(i % 4), static_cast<uint8_t>(i / 4 % 2),
                   i % 3 ? Against::back : Against::front);
        for (auto& table : set.tables)
            for (uint16_t& gain : *table)
                gain = static_cast<uint16_t>(i % 5 == 0 ? random.next() : 1024 + random.next() % 256);
        std::vector<int16_t> planes[4];
        for (size_t k = 0; k < 4; ++k) {
            const size_t base = 3u - set.info.bayer_pattern;
            for (int n = 0; n < w * h; ++n) {
                const auto quantised = [&](size_t t) {
                    return (set.at(t, n / w + 1, n % w + 1) + (1 << shift) / 2) >> shift;
                };
                planes[k].push_back(static_cast<int16_t>(quantised(base) - (k ? quantised(base ^ k) : 0)));
            }
            intra_cnl_diff(planes[k].data(), w, h, k == 0, set.info.precision_mode);
        }
        std::vector<uint8_t> expected(set.stream.size());
        store_data(expected.data(), planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data(), w,
                   h, set.info.precision_mode);
        EXPECT_EQ(lsc_compress(&set.info), 0);
        ASSERT_EQ(set.stream.copy(), expected) << w << " x " << h;
        ASSERT_TRUE(set.intact());
    }
}

TEST(Compress, UnknownPatternStoresZeroPlanesAndUnknownModeNothing) {
    OtpSet set(3, 3, 4, 0), none(3, 3, 0, 2);
    EXPECT_EQ(lsc_compress(&set.info), 0);
    std::vector<uint8_t> expected(27, 0);
    expected[12] = 0x20; // the anchor, 0 less unity gain, saturated
    EXPECT_EQ(set.stream.copy(), expected);
    EXPECT_EQ(lsc_compress(&none.info), 0);
    EXPECT_TRUE(none.intact());
}

TEST(Compress, RefusalsWriteNothing) {
    for (const int width : {3, 20}) // the plain and the fast form
        expect_refusals_write_nothing(lsc_compress, width);
}

} // namespace
