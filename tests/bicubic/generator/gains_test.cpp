#include "bicubic/generator/gains.h"

#include <limits>
#include <vector>

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

TEST(GeneratorBorder, ContinuesAQuadraticSurfaceIntoTheCorners) {
    const auto surface = [](int x, int y) { return (3 * x * x - 2 * x + 5) * (y * y + 4 * y + 2) + 100; };
    std::vector<uint16_t> table(7 * 6);
    const View<uint16_t> view = packed_view(table.data(), 7, 6);
    for (int i = 0; i < 5 * 4; ++i)
        view.at(1 + i % 5, 1 + i / 5) = static_cast<uint16_t>(surface(1 + i % 5, 1 + i / 5));
    extrapolate_border(view);
    for (int i = 0; i < 7 * 6; ++i)
        EXPECT_EQ(view.at(i % 7, i / 7), surface(i % 7, i / 7)) << i % 7 << ',' << i / 7;
}

TEST(GeneratorBorder, WrappedNegativeBorderBecomesTheHighestGain) {
    std::vector<uint16_t> table(5 * 5, 2000);
    const View<uint16_t> view = packed_view(table.data(), 5, 5);
    view.at(1, 2) = 1000;
    extrapolate_border(view);
    EXPECT_EQ(view.at(0, 2), 65536 + 3 * 1000 - 3 * 2000 + 2000);
    limit_table(view);
    EXPECT_EQ(view.at(0, 2), 16383);
}

} // namespace
} // namespace zerklsc
