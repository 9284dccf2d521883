#include "zerklsc.h"

#include <cmath>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

// The model in double precision, on a plane of 160 x 100.
double model(int32_t type, int32_t percent, int x, int y) {
    const double s = percent / 100.0, r2 = ((x - 80) * (x - 80) + (y - 50) * (y - 50)) / 8900.0;
    return type == 0   ? std::sqrt(r2 * (s * s - 1) + 1)
           : type == 1 ? std::pow(s, r2)
           : type == 2 ? r2 * (s - 1) + 1
                       : 1;
}

TEST(Shading, TheFloatTableHasNoBorderAndStaysInsideThePlane) {
    for (const int32_t type : {0, 1, 2, 3})
        for (const int32_t percent : {80, 100, 120}) {
            const shading_t shading{type, percent, percent - 100}; // the last is not read
            Guarded<uint16_t> table(std::vector<uint16_t>(11 * 8, 4096), Against::back);
            Guarded<float> factors(11 * 8);
            apply_shading_table(table.data(), 160, 100, 20, 24, 11, 8, &shading);
            EXPECT_EQ(calc_shading_table(factors.data(), 160, 100, 20, 24, 11, 8, &shading), 0);
            for (int n = 0; n < 88; ++n) {
                const int i = n % 11, j = n / 11;
                ASSERT_NEAR(table.data()[n], model(type, percent, (i - 1) * 20, (j - 1) * 24) * 4096, 0.51)
                    << n;
                ASSERT_NEAR(static_cast<double>(factors.data()[n]),
                            model(type, percent, std::min(i * 20, 159), std::min(j * 24, 99)), 1e-6)
                    << n;
            }
        }
}

// On a 16 x 16 plane with step 8, table node (0, 0) stands at (-8, -8), where r2 is 4.
uint16_t corner(int32_t type, int32_t percent, uint16_t gain) {
    const shading_t shading{type, percent, 0};
    apply_shading_table(&gain, 16, 16, 8, 8, 1, 1, &shading);
    return gain;
}

TEST(Shading, ProductsOutsideSixteenBitsWrapAndAFactorThatIsNoNumberStoresZero) {
    EXPECT_EQ(corner(ZERKLSC_SHADING_LINEAR, 50, 5), 65531);
    EXPECT_EQ(corner(ZERKLSC_SHADING_LINEAR, 200, 40000), 200000 - 3 * 65536);
    EXPECT_EQ(corner(7, 50, 40000), 40000);
    EXPECT_EQ(corner(ZERKLSC_SHADING_SQUARE_ROOT, 0, 1024), 0);
    EXPECT_EQ(corner(ZERKLSC_SHADING_EXPONENTIAL, INT32_MAX, 1024), 0);
}

TEST(Shading, ExtremeSizesAreArithmeticOnly) {
    for (const int32_t type : {0, 1, 2})
        for (const int32_t size : {0, INT32_MIN, INT32_MAX}) {
            Guarded<uint16_t> gain(1);
            Guarded<float> factor(1);
            gain[0] = 0;
            factor[0] = 7;
            const shading_t shading{type, INT32_MIN, 0};
            apply_shading_table(gain.data(), size, 0, size, INT32_MAX, 1, 1, &shading);
            EXPECT_EQ(gain[0], 0) << "no factor lifts a gain of 0";
            EXPECT_EQ(calc_shading_table(factor.data(), size, 0, size, INT32_MIN, 1, 1, &shading), 0);
            EXPECT_NE(factor[0], 7.0f) << "written";
            EXPECT_TRUE(gain.intact() && factor.intact());
        }
}

} // namespace
