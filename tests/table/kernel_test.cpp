#include "zerklsc.h"

#include <cmath>

#include <gtest/gtest.h>

namespace {

// The published kernel in double precision and Horner's order.
double keys(double a) {
    return a <= 1 ? (1.5 * a - 2.5) * a * a + 1 : a <= 2 ? ((-0.5 * a + 2.5) * a - 4) * a + 2 : 0;
}

TEST(CubicKernel, FollowsThePublishedCurveAndIsExactAtTheNodes) {
    for (int n = -3 * 256; n <= 3 * 256; ++n)
        ASSERT_NEAR(static_cast<double>(get_cubic_coef(static_cast<float>(n) / 256)),
                    keys(std::abs(n / 256.0)), n % 256 == 0 ? 0 : 1e-6)
            << n;
    EXPECT_EQ(get_cubic_coef(std::nanf("")), 0);
}

} // namespace
