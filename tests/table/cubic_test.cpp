#include "table/cubic.h"

#include <cmath>

#include <gtest/gtest.h>

#include "zerklsc.h"

namespace {

// The published weights in double precision and Horner's order.
double keys(double a) {
    return a <= 1 ? (1.5 * a - 2.5) * a * a + 1 : a <= 2 ? ((-0.5 * a + 2.5) * a - 4) * a + 2 : 0;
}

TEST(CubicWeights, FollowsThePublishedCurveAndIsExactAtTheNodes) {
    for (int n = -3 * 256; n <= 3 * 256; ++n)
        ASSERT_NEAR(static_cast<double>(get_cubic_coef(static_cast<float>(n) / 256)),
                    keys(std::abs(n / 256.0)), n % 256 == 0 ? 0 : 1e-6)
            << n;
    EXPECT_EQ(get_cubic_coef(std::nanf("")), 0);
}

// Worked out outside the library, rounding to single precision after every operation.
TEST(CubicWeights, AllFourTapsKeepTheirLastBit) {
    const struct {
        float t;
        float taps[4];
    } cases[] = {{0x0p+0f, {0x0p+0f, 0x1p+0f, 0x0p+0f, 0x0p+0f}},
                 {0x1p-6f, {-0x1.f02p-8f, 0x1.ffb0cp-1f, 0x1.0fdp-7f, -0x1.f8p-14f}},
                 {0x1.eb851ep-5f, {-0x1.b24ep-6f, 0x1.fb8ed2p-1f, 0x1.2e164p-5f, -0x1.bb9p-10f}},
                 {0x1.555556p-2f, {-0x1.2f686p-4f, 0x1.8e38e4p-1f, 0x1.55555cp-2f, -0x1.2f68p-5f}},
                 {0x1p-1f, {-0x1p-4f, 0x1.2p-1f, 0x1.2p-1f, -0x1p-4f}},
                 {0x1.7ae148p-1f, {-0x1.99cbp-6f, 0x1.e922dp-3f, 0x1.b6f86ap-1f, -0x1.23962p-4f}},
                 {0x1.f8p-1f, {-0x1.f8p-14f, 0x1.0fdp-7f, 0x1.ffb0cp-1f, -0x1.f02p-8f}}};
    for (const auto& [t, taps] : cases) {
        const zerklsc::Taps found = zerklsc::cubic_taps(t);
        EXPECT_EQ(found.c0, taps[0]) << t;
        EXPECT_EQ(found.c1, taps[1]) << t;
        EXPECT_EQ(found.c2, taps[2]) << t;
        EXPECT_EQ(found.c3, taps[3]) << t;
    }
}

} // namespace
