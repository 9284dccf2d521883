#include <gtest/gtest.h>

#include "compress/otp_set.h"
#include "zerklsc_driver.h"

namespace {

using namespace zerklsc::testing;

// Constant tables with another gain at the last node, in units that both modes keep.
void fill_all_but_the_last_node(OtpSet& set, int nodes) {
    for (int n = 0; n < 4 * nodes; ++n)
        set.gain(n / nodes, n % nodes) = static_cast<uint16_t>(1088 + (n % nodes == nodes - 1 ? 64 : 0));
}

TEST(CheckStream, IsRightForTheSizesWhoseTablesComeBackAndForNoOthers) {
    int fitting = 0;
    for (int i = 0; i < 2 * 10 * 10; ++i) {
        const int w = 3 + i % 10, h = 3 + i / 10 % 10, mode = i / 100;
        OtpSet set(w, h, i % 4, mode, i % 3 ? Against::back : Against::front);
        EXPECT_EQ(zerklsc_stream_size(w + 2, h + 2, mode), set.stream.size());
        fill_all_but_the_last_node(set, w * h);
        std::vector<uint16_t> gains, decoded;
        for (int n = 0; n < 4 * w * h; ++n)
            gains.push_back(set.gain(n / (w * h), n % (w * h)));
        ASSERT_EQ(lsc_compress(&set.info), 0);
        std::fill(set.gains.begin(), set.gains.end(), uint16_t{0});
        ASSERT_EQ(lsc_decompress(&set.info), 0);
        for (int n = 0; n < 4 * w * h; ++n)
            decoded.push_back(set.gain(n / (w * h), n % (w * h)));
        const bool darkens = w % 2 == 1 && h % 2 == 0;
        const zerklsc_status expected = darkens                         ? ZERKLSC_STREAM_DARKENS
                                        : mode == 1 && (w * h) % 4 != 0 ? ZERKLSC_STREAM_DROPS_NODES
                                                                        : ZERKLSC_OK;
        EXPECT_EQ(zerklsc_check_stream(&set.info), expected) << w << " x " << h;
        EXPECT_EQ(decoded == gains, expected == ZERKLSC_OK) << w << " x " << h << ", mode " << mode;
        fitting += expected == ZERKLSC_OK;
    }
    EXPECT_GT(fitting, 80);
}

TEST(CheckStream, RefusesWhatTheCodecPassesOver) {
    const struct {
        uint8_t pattern;
        int32_t width, height;
        uint8_t mode;
        zerklsc_status status;
    } cases[] = {{4, 1, 1, 2, ZERKLSC_UNKNOWN_PATTERN},
                 {3, 1, 1, 2, ZERKLSC_UNKNOWN_PRECISION},
                 {3, 4, 9, 1, ZERKLSC_TOO_FEW_NODES},
                 {0, 9, 4, 0, ZERKLSC_TOO_FEW_NODES},
                 {0, -9, 9, 0, ZERKLSC_TOO_FEW_NODES},
                 {0, INT32_MIN, INT32_MIN, 0, ZERKLSC_TOO_FEW_NODES},
                 {0, 5, 5, 0, ZERKLSC_OK},
                 {0, INT32_MAX, INT32_MAX, 0, ZERKLSC_OK}};
    for (const auto& c : cases) {
        const lsc_otp_info info{c.pattern, c.width, c.height, {}, nullptr, c.mode};
        EXPECT_EQ(zerklsc_check_stream(&info), c.status) << &c - cases;
    }
    EXPECT_EQ(zerklsc_check_stream(nullptr), ZERKLSC_NULL_POINTER);
}

TEST(StreamSize, CountsInnerNodesInFullAndWholeGroupsOnly) {
    const struct {
        int32_t width, height, mode;
        uint64_t bytes;
    } cases[] = {{35, 27, 0, 3 * 33 * 25},
                 {35, 27, 1, 7 * (33 * 25 / 4)},
                 {3, 3, 0, 3},
                 {3, 3, 1, 0},
                 {2, 9, 0, 0},
                 {9, 2, 1, 0},
                 {9, 9, 2, 0},
                 {9, 9, -1, 0},
                 {INT32_MIN, 9, 0, 0},
                 {INT32_MAX, INT32_MAX, 0, uint64_t{3} * 2147483645 * 2147483645}};
    for (const auto& c : cases)
        EXPECT_EQ(zerklsc_stream_size(c.width, c.height, c.mode), c.bytes) << c.width << " x " << c.height;
}

} // namespace
