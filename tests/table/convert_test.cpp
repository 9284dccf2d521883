#include "zerklsc.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

TEST(Convert, EveryGainSurvivesTheWayThroughFloatsAndOnlyHighOnesAreLimited) {
    for (const Against side : {Against::front, Against::back}) {
        Guarded<uint16_t> gains(65536, side), back(65536, side);
        Guarded<float> floats(65536, side);
        std::iota(gains.begin(), gains.end(), uint16_t{0});
        lsc_table_itof(gains.data(), floats.data(), 256, 256);
        lsc_table_ftoi(floats.data(), back.data(), 256, 256);
        format_lsc_table(gains.data(), 65536, 1);
        for (size_t g = 0; g < 65536; ++g) {
            ASSERT_EQ(static_cast<double>(floats[g]), static_cast<double>(g) / 1024);
            ASSERT_EQ(back[g], g);
            ASSERT_EQ(gains[g], std::min<size_t>(g, 16383));
        }
    }
}

TEST(Convert, RoundsHalfUpAndSaturatesAtBothEnds) {
    const float gains[] = {1023.5f / 1024, 1023.4375f / 1024, -0.25f,     -0.5f / 1024, 65534.5f / 1024, 64,
                           1e30f,          HUGE_VALF,         -HUGE_VALF, std::nanf("")};
    const std::vector<uint16_t> expected = {1024, 1023, 0, 0, 65535, 65535, 65535, 65535, 0, 0};
    std::vector<uint16_t> stored(10);
    lsc_table_ftoi(gains, stored.data(), 2, 5);
    EXPECT_EQ(stored, expected);
}

TEST(Convert, SizesThatAreNotPositiveTouchNothing) {
    for (const int32_t w : {INT32_MIN, -3, 0}) {
        lsc_table_itof(nullptr, nullptr, w, -5);
        lsc_table_ftoi(nullptr, nullptr, 5, w);
        format_lsc_table(nullptr, w, 5);
    }
}

} // namespace
