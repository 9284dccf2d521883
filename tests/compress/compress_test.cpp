#include <fstream>

#include <gtest/gtest.h>

#include "compress/otp_set.h"
#include "support/allocations.h"

namespace {

using namespace zerklsc::testing;

// Smooth tables, one of them with a node that saturates its fields.
void fill_golden_tables(const lsc_otp_info& info) {
    for (int k = 0; k < 4; ++k)
        for (int i = 0; i < info.grid_width * info.grid_height; ++i) {
            const int c = i % info.grid_width, x = 2 * c + 1 - info.grid_width;
            const int r = i / info.grid_width, y = 2 * r + 1 - info.grid_height;
            const int fall = (x * x * (5 + k) + y * y * (9 - k)) / 2 + (r * 7 + c * 13 + k * 5) % 9;
            const int bump = k == 2 && r == 4 && c == 5 ? 900 : 0;
            info.lsc_table[k][i] = static_cast<uint16_t>(1024 + fall + bump);
        }
}

// Each line of the file, made once by a separate model of the format: table width, table height, Bayer
// pattern, mode, the sum of h = 31 * h + gain over the decoded tables modulo 2^32, the stream in hexadecimal.
TEST(Compress, GoldenStreamsAndTheTablesTheyDecodeTo) {
    std::ifstream file(GOLDEN_STREAMS);
    int w, h, pattern, mode, lines = 0;
    uint32_t sum;
    std::string expected;
    for (; file >> w >> h >> pattern >> mode >> sum >> expected; ++lines) {
        OtpSet set(w - 2, h - 2, pattern, mode);
        fill_golden_tables(set.info);
        EXPECT_EQ(lsc_compress(&set.info), 0);
        std::string stream;
        for (const uint8_t b : set.stream)
            stream += {"0123456789abcdef"[b >> 4], "0123456789abcdef"[b & 15]};
        EXPECT_EQ(stream, expected) << "line " << lines;
        EXPECT_EQ(lsc_decompress(&set.info), 0);
        uint32_t decoded = 0;
        for (const uint16_t gain : set.gains)
            decoded = 31 * decoded + gain;
        EXPECT_EQ(decoded, sum) << "line " << lines;
    }
    EXPECT_EQ(lines, 12);
}

TEST(Compress, EqualsItsSeparatePasses) {
    Random random(3);
    for (int i = 0; i < 880; ++i) {
        OtpSet set = random_set(i);
        const int w = set.info.grid_width - 2, h = set.info.grid_height - 2,
                  base = 3 - set.info.bayer_pattern;
        const uint8_t mode = set.info.precision_mode;
        for (uint16_t& gain : set.gains)
            gain = static_cast<uint16_t>(i % 5 == 0 ? random.next() : 1024 + random.next() % 256);
        std::vector<int16_t> p[4];
        for (int k = 0; k < 4; ++k) {
            const auto quantised = [&](int table, int n) {
                return mode == 1 ? (set.gain(table, n) + 32) / 64 : (set.gain(table, n) + 8) / 16;
            };
            for (int n = 0; n < w * h; ++n)
                p[k].push_back(static_cast<int16_t>(quantised(base, n) - (k ? quantised(base ^ k, n) : 0)));
            intra_cnl_diff(p[k].data(), w, h, k == 0, mode);
        }
        std::vector<uint8_t> expected(set.stream.size());
        store_data(expected.data(), p[0].data(), p[1].data(), p[2].data(), p[3].data(), w, h, mode);
        EXPECT_EQ(lsc_compress(&set.info), 0);
        ASSERT_EQ(set.stream.copy(), expected) << w << " x " << h;
        ASSERT_TRUE(set.intact());
    }
}

TEST(Compress, UnknownPatternStoresZeroPlanesAndUnknownModeNothing) {
    OtpSet set(9, 1, 4, 0), none(9, 1, 0, 2);
    EXPECT_EQ(lsc_compress(&set.info), 0);
    std::vector<uint8_t> expected(27, 0);
    expected[12] = 0x20; // the anchor, 0 less unity gain, saturated
    EXPECT_EQ(set.stream.copy(), expected);
    EXPECT_EQ(lsc_compress(&none.info), 0);
    EXPECT_TRUE(none.intact());
}

// Both directions, in the plain and the fast form.
TEST(Compress, NoInnerNodeIsNothingToDoAndNoMemoryAFailureThatWritesNothing) {
    for (const auto function : {lsc_compress, lsc_decompress})
        for (const int width : {3, 20}) {
            OtpSet set(width, 3, 0, 0);
            const auto content = [&] { return std::pair(set.gains.copy(), set.stream.copy()); };
            const auto before = content();
            const int sizes[][2] = {{2, 15}, {19, 2}, {0, 0}, {-5, 9}, {INT32_MIN, INT32_MIN}};
            for (const auto& size : sizes) {
                lsc_otp_info info = set.info;
                info.grid_width = size[0];
                info.grid_height = size[1];
                EXPECT_EQ(function(&info), 0);
            }
            EXPECT_EQ(content(), before);
            bool failed = true;
            for (size_t n = 0; failed; ++n) {
                const AllocationScope scope(n);
                const int32_t status = function(&set.info);
                failed = scope.failed();
                EXPECT_EQ(status, failed ? -1 : 0);
                EXPECT_EQ(content() == before, failed) << n;
                EXPECT_TRUE(scope.leftovers().empty());
            }
        }
}

} // namespace
