#include "bicubic/generator/gains.h"

#include <limits>

#include <gtest/gtest.h>

namespace zerklsc {
namespace {

TEST(GeneratorGain, IsTruncatedAndLimitedAndDefinedForEveryTargetAndAverage) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const double cases[][4] = {// ISP type, target, average, gain
                               {3, 2.0, 3.0, 682},   {0, 9.0, 5.0, 460},  {3, 1e300, 1e-9, 16383},
                               {3, 5.0, 0.0, 16383}, {1, nan, 0.0, 4095}, {3, 0.0, -0.0, 16383},
                               {3, nan, 5.0, 0},     {3, -5.0, 5.0, 0},   {3, -5.0, -5.0, 0},
                               {3, 5.0, -5.0, 0},    {4, 5.0, 5.0, 0},    {4, 1e300, 1e-300, 0}};
    for (const auto& [type, target, average, gain] : cases)
        EXPECT_EQ(generator_gain(target, average, gain_format(static_cast<uint8_t>(type))), gain)
            << type << ' ' << target << ' ' << average;
}

} // namespace
} // namespace zerklsc
