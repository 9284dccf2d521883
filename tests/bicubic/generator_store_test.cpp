#include "bicubic/generator_store.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace zerklsc {
namespace {

TEST(GeneratorGain, IsTruncatedAndLimitedPerIspType) {
    const struct {
        uint8_t isp_type;
        double target, measured;
        int gain;
    } cases[] = {
        {3, 100.0, 50.0, 2048}, {3, 2.0, 3.0, 682},     {0, 100.0, 50.0, 512},   {0, 100.0, 1.0, 1024},
        {1, 100.0, 1.0, 4095},  {2, 100.0, 1.0, 16383}, {3, 1e300, 1e-9, 16383}, {3, 5.0, 0.0, 16383},
        {1, NAN, 0.0, 4095},    {3, 0.0, -0.0, 16383}, // measured as 0
        {3, NAN, 5.0, 0},       {3, -5.0, 5.0, 0},      {3, -5.0, -5.0, 0},      {3, 5.0, -5.0, 0},
        {4, 5.0, 5.0, 0},       {4, 1e300, 1e-300, 0},  {255, 5.0, 0.0, 0}, // no format
    };
    for (const auto& c : cases)
        EXPECT_EQ(generator_gain(c.target, c.measured, gain_format(c.isp_type)), c.gain)
            << int{c.isp_type} << ' ' << c.target << ' ' << c.measured;
}

TEST(GeneratorBorder, ContinuesAQuadraticSurfaceIntoTheCorners) {
    const auto surface = [](int x, int y) { return (3 * x * x - 2 * x + 5) * (y * y + 4 * y + 2) + 100; };
    std::vector<uint16_t> table(7 * 6);
    const View<uint16_t> view = packed_view(table.data(), 7, 6);
    for (int y = 1; y < 5; ++y)
        for (int x = 1; x < 6; ++x)
            view.at(x, y) = static_cast<uint16_t>(surface(x, y));
    extrapolate_border(view);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(view.at(x, y), surface(x, y)) << x << ',' << y;
}

TEST(GeneratorBorder, WrappedNegativeBorderBecomesTheHighestGain) {
    std::vector<uint16_t> table(5 * 5, 2000);
    const View<uint16_t> view = packed_view(table.data(), 5, 5);
    view.at(1, 2) = 1000; // 3 * 1000 - 3 * 2000 + 2000 = -1000
    extrapolate_border(view);
    EXPECT_EQ(view.at(0, 2), 64536);
    limit_table(view);
    EXPECT_EQ(view.at(0, 2), 16383);
}

} // namespace
} // namespace zerklsc
