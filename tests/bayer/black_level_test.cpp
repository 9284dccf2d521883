#include "zerklsc.h"

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

// All samples against levels where a signed or a wrapping subtraction would show; odd sizes.
TEST(BlackLevel, StopsAtZeroAndFollowsTheParityOfColumnAndRow) {
    const uint8_t levels[] = {0, 1, 64, 127, 128, 255};
    for (size_t k = 0; k < 6; ++k) {
        isp_blc_param param = {.width = 257, .height = 255, .blc = {}};
        for (size_t c = 0; c < 4; ++c)
            param.blc[c] = levels[(k + c) % 6];
        Guarded<uint16_t> raw(257 * 255, k % 2 ? Against::front : Against::back);
        for (size_t i = 0; i < raw.size(); ++i)
            raw[i] = static_cast<uint16_t>(i);
        isp_blc_process(raw.data(), &param);
        for (size_t i = 0; i < raw.size(); ++i) {
            const int difference = static_cast<int>(i) - param.blc[i % 257 % 2 + i / 257 % 2 * 2];
            ASSERT_EQ(raw[i], difference < 0 ? 0 : difference) << i;
        }
        EXPECT_TRUE(raw.intact());
    }
}

} // namespace
