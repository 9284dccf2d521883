#include "zerklsc.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using zerklsc::testing::Against;
using zerklsc::testing::Guarded;

// The model in double precision.
double model(int32_t type, int32_t percent, double x, double y, double width, double height) {
    const double cx = width / 2, cy = height / 2, s = percent / 100.0;
    const double r2 = ((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (cx * cx + cy * cy);
    const double factors[] = {std::sqrt(r2 * (s * s - 1) + 1), std::pow(s, r2), r2 * (s - 1) + 1, 1};
    return factors[type];
}

TEST(Shading, EveryNodeFollowsTheModelFromTheBorderOn) {
    for (const int32_t type : {0, 1, 2, 3})
        for (const int32_t percent : {80, 100, 120}) {
            const shading_t shading{type, percent, 0};
            Guarded<uint16_t> table(std::vector<uint16_t>(11 * 8, 4096), Against::back);
            apply_shading_table(table.data(), 160, 100, 20, 24, 11, 8, &shading);
            for (int n = 0; n < 88; ++n) {
                const double f = model(type, percent, (n % 11 - 1) * 20, (n / 11 - 1) * 24, 160, 100);
                ASSERT_NEAR(table[static_cast<size_t>(n)], f * 4096, 0.51)
                    << type << ' ' << percent << ' ' << n;
            }
        }
}

TEST(Shading, TheFloatTableHasNoBorderAndStaysInsideThePlane) {
    for (const int32_t type : {0, 1, 2, 3}) {
        const shading_t shading{type, 70, 0};
        Guarded<float> table(9 * 6);
        EXPECT_EQ(calc_shading_table(table.data(), 150, 90, 20, 24, 9, 6, &shading), 0);
        for (int n = 0; n < 54; ++n) {
            const double f = model(type, 70, std::min(n % 9 * 20, 149), std::min(n / 9 * 24, 89), 150, 90);
            ASSERT_NEAR(static_cast<double>(table[static_cast<size_t>(n)]), f, 1e-6) << type << ' ' << n;
        }
    }
}

// On a 16 x 16 plane with step 8, table node (0, 0) stands at (-8, -8), where r2 is 4.
uint16_t corner(int32_t type, int32_t percent, uint16_t gain) {
    const shading_t shading{type, percent, 0};
    apply_shading_table(&gain, 16, 16, 8, 8, 1, 1, &shading);
    return gain;
}

TEST(Shading, ProductsOutsideSixteenBitsWrap) {
    EXPECT_EQ(corner(ZERKLSC_SHADING_LINEAR, 50, 5), 65531);
    EXPECT_EQ(corner(ZERKLSC_SHADING_LINEAR, 200, 40000), 200000 - 3 * 65536);
    EXPECT_EQ(corner(7, 50, 40000), 40000);
}

TEST(Shading, AFactorThatIsNoNumberStoresZero) {
    EXPECT_EQ(corner(ZERKLSC_SHADING_SQUARE_ROOT, 0, 1024), 0);
    EXPECT_EQ(corner(ZERKLSC_SHADING_EXPONENTIAL, INT32_MAX, 1024), 0);
    uint16_t gains[9];
    float factors[9];
    for (int32_t type = 0; type < 4; ++type)
        for (const int32_t size : {0, INT32_MIN, INT32_MAX}) {
            const shading_t shading{type, INT32_MIN, 0};
            apply_shading_table(gains, size, 0, size, INT32_MAX, 3, 3, &shading);
            calc_shading_table(factors, size, 0, size, INT32_MIN, 3, 3, &shading);
            apply_shading_table(nullptr, size, size, size, size, INT32_MIN, 3, &shading);
            calc_shading_table(nullptr, size, size, size, size, 3, 0, &shading);
        }
}

} // namespace
