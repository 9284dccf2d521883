#include "zerklsc.h"

#include <cmath>
#include <limits>
#include <numeric>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using zerklsc::testing::Against;
using zerklsc::testing::Guarded;

TEST(Convert, EveryGainSurvivesTheWayThroughFloats) {
    for (const Against side : {Against::front, Against::back}) {
        Guarded<uint16_t> gains(65536, side), back(65536, side);
        Guarded<float> floats(65536, side);
        std::iota(gains.begin(), gains.end(), uint16_t{0});
        lsc_table_itof(gains.data(), floats.data(), 256, 256);
        for (int g = 0; g < 65536; ++g)
            ASSERT_EQ(static_cast<double>(floats[static_cast<size_t>(g)]), g / 1024.0);
        lsc_table_ftoi(floats.data(), back.data(), 256, 256);
        EXPECT_EQ(back.copy(), gains.copy());
    }
}

TEST(Convert, RoundsHalfUpAndSaturatesAtBothEnds) {
    const float inf = std::numeric_limits<float>::infinity();
    const struct {
        float gain;
        uint16_t stored;
    } cases[] = {{1.0f, 1024},   {1023.5f / 1024, 1024}, {1023.4375f / 1024, 1023},
                 {-0.25f, 0},    {-0.5f / 1024, 0},      {65534.5f / 1024, 65535},
                 {64.0f, 65535}, {1e30f, 65535},         {inf, 65535},
                 {-inf, 0},      {std::nanf(""), 0}};
    for (const auto& c : cases) {
        uint16_t stored = 77;
        lsc_table_ftoi(&c.gain, &stored, 1, 1);
        EXPECT_EQ(stored, c.stored) << c.gain;
    }
}

TEST(Convert, OnlyGainsAboveTheHardwareLimitAreClamped) {
    Guarded<uint16_t> table(65536);
    std::iota(table.begin(), table.end(), uint16_t{0});
    format_lsc_table(table.data(), 65536, 1);
    for (size_t g = 0; g < 65536; ++g)
        ASSERT_EQ(table[g], g < 16384 ? g : 16383);
}

TEST(Convert, SizesThatAreNotPositiveTouchNothing) {
    Guarded<uint16_t> gains(0);
    Guarded<float> floats(0);
    const int32_t sizes[][2] = {{0, 5}, {5, 0}, {-1, 5}, {5, -1}, {-3, -3}, {INT32_MIN, INT32_MIN}};
    for (const auto& [w, h] : sizes) {
        lsc_table_itof(gains.data(), floats.data(), w, h);
        lsc_table_ftoi(floats.data(), gains.data(), w, h);
        format_lsc_table(gains.data(), w, h);
    }
}

} // namespace
