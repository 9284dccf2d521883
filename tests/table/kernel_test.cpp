#include "table/kernel.h"

#include <cmath>

#include <gtest/gtest.h>

#include "zerklsc.h"

namespace {

TEST(CubicKernel, HasTheTextbookValues) {
    const struct {
        float x, weight;
    } cases[] = {{0, 1},    {1, 0},          {-1, 0},           {2, 0},
                 {-2, 0},   {0.5f, 0.5625f}, {-0.5f, 0.5625f},  {1.5f, -0.0625f},
                 {2.5f, 0}, {1e30f, 0},      {std::nanf(""), 0}};
    for (const auto& c : cases)
        EXPECT_EQ(get_cubic_coef(c.x), c.weight) << c.x;
}

// Keys' kernel in the shape of the paper, in double precision and Horner's order.
double keys(double x) {
    const double a = std::fabs(x);
    return a <= 1 ? ((1.5 * a - 2.5) * a) * a + 1 : ((-0.5 * a + 2.5) * a - 4) * a + 2;
}

TEST(CubicKernel, EveryPhaseOfEveryStepFollowsTheCurveAndSumsToOne) {
    for (int step = 1; step <= 255; ++step)
        for (int phase = 0; phase < step; ++phase) {
            const float t = static_cast<float>(phase) / static_cast<float>(step);
            const auto [c0, c1, c2, c3] = zerklsc::cubic_taps(t);
            const double exact = phase / static_cast<double>(step);
            ASSERT_NEAR(static_cast<double>(c0), keys(-1 - exact), 2e-6);
            ASSERT_NEAR(static_cast<double>(c1), keys(-exact), 2e-6);
            ASSERT_NEAR(static_cast<double>(c2), keys(1 - exact), 2e-6);
            ASSERT_NEAR(static_cast<double>(c3), keys(2 - exact), 2e-6);
            ASSERT_NEAR(static_cast<double>(c0 + c1 + c2 + c3), 1.0, 2e-6);
        }
}

} // namespace
