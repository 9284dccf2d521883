#include <gtest/gtest.h>

#include "bicubic/reference.h"
#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::testing;

using Gains = std::vector<uint16_t>;

class Cubic : public ::testing::Test {
  protected:
    uint16_t programmed(const Gains& p, int phase, int step) {
        return cubic_1D(p[0], p[1], p[2], p[3], static_cast<uint16_t>(phase), static_cast<uint16_t>(step),
                        block.data());
    }
    static uint16_t fixed(const Gains& p, int phase, int step) {
        return cubic_1D(p[0], p[1], p[2], p[3], static_cast<uint16_t>(phase), static_cast<uint16_t>(step));
    }
    Guarded<lnc_bicubic_weight_t_64_tag> block{1};
};

TEST_F(Cubic, EveryPhaseOfEveryStepIsTheKernel) {
    Random random{6};
    for (int step = 1; step <= 255; ++step) {
        generate_bicubic_weight_table(block.data(), static_cast<uint16_t>(step));
        for (int round = 0; round < 24 * step; ++round) {
            const int phase = round / 24;
            Gains p = random_samples(random, 4, Spread(round % 3));
            if (round % 4 == 0)
                for (uint16_t& gain : p)
                    gain = static_cast<uint16_t>(900 + gain % 16500);
            const std::array<int64_t, 4> q = {p[0], p[1], p[2], p[3]};
            ASSERT_EQ(programmed(p, phase, step), reference_cubic(q, reference_taps(step, phase))) << step;
            ASSERT_EQ(fixed(p, phase, step), reference_cubic(q, reference_taps(64, 64 / step * phase)))
                << step;
        }
    }
}

TEST_F(Cubic, KnownValues) {
    generate_bicubic_weight_table(block.data(), 64);
    const struct {
        Gains p;
        int phase, result;
    } cases[] = {{{9, 2000, 9, 9}, 0, 2000},
                 {{1000, 1000, 1000, 1000}, 5, 1024},
                 {{20000, 20000, 20000, 20000}, 60, 16383},
                 {{2000, 4000, 4000, 2000}, 32, 4250},
                 {{2000, 2000, 4000, 4000}, 16, 2406}, // (2000 * (888 - 72) + 4000 * (232 - 24)) / 1024
                 {{2000, 2000, 4000, 4000}, 48, 3594},
                 // 40000 - 1024 counts as 38976 - 65536.
                 {{1024, 40000, 1024, 1024}, 0, 1024}};
    for (const auto& c : cases) {
        EXPECT_EQ(programmed(c.p, c.phase, 64), c.result) << c.phase;
        EXPECT_EQ(fixed(c.p, c.phase, 64), c.result) << c.phase;
    }
    // 2^25 + 3 * 2^30 wraps to a negative sum.
    block[0].weights[1][0] = block[0].weights[1][1] = block[0].weights[1][2] = -32768;
    EXPECT_EQ(programmed({0, 0, 0, 32768}, 1, 64), 1024);
}

TEST_F(Cubic, StepsAndPhasesOutsideTheCellStayInsideTheTables) {
    const Gains p = {1100, 1200, 1300, 1400};
    generate_bicubic_weight_table(block.data(), 255);
    for (int step : {0, 1, 2, 63, 64, 65, 254, 255, 256, 257, 1000, 32768, 65535})
        for (int phase : {0, 1, 31, 64, 65, 127, 128, 129, 255, 256, 1025, 32768, 65535})
            ASSERT_GE(programmed(p, phase, step), 1024) << step << ' ' << phase;
    EXPECT_EQ(programmed(p, 300, 255), 1300);
    // 1025 * 64 keeps 64 in 16 bits, 1024 * 64 keeps 0.
    const int fixed_cases[][3] = {{77, 0, 1200},     {77, 65, 1200},  {64, 64, 1300},
                                  {65535, 64, 1300}, {1025, 1, 1300}, {1024, 1, 1200}};
    for (const auto& [phase, step, result] : fixed_cases)
        EXPECT_EQ(fixed(p, phase, step), result) << phase;
}

} // namespace
