#include <cstring>

#include <gtest/gtest.h>

#include "bicubic/correction/cubic_1d.h"
#include "bicubic/correction/reference.h"
#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::testing;

using Gains = std::vector<uint16_t>;

struct Cubic : ::testing::Test {
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
            for (uint16_t& gain : p)
                gain = static_cast<uint16_t>(gain >> round % 4);
            const std::array<int64_t, 4> q = {p[0], p[1], p[2], p[3]};
            ASSERT_EQ(programmed(p, phase, step), reference_cubic(q, step, phase)) << step << ' ' << phase;
            ASSERT_EQ(fixed(p, phase, step), reference_cubic(q, 64, 64 / step * phase))
                << step << ' ' << phase;
        }
    }
}

TEST_F(Cubic, StepsAndPhasesOutsideTheCellStayInsideTheTablesAndSumsWrap) {
    const Gains p = {1100, 1200, 1300, 1400};
    generate_bicubic_weight_table(block.data(), 255);
    for (int step : {0, 1, 2, 64, 254, 255, 256, 257, 1000, 32768, 65535})
        for (int phase : {0, 1, 64, 127, 128, 129, 255, 256, 1025, 32768, 65535})
            ASSERT_GE(programmed(p, phase, step), 1024) << step << ' ' << phase;
    EXPECT_EQ(programmed(p, 300, 255), 1300);
    // Above 255, every phase that is further from both ends than the block reaches takes its last row.
    std::fill(block[0].weights[127], block[0].weights[127] + 3, int16_t{0});
    block[0].weights[127][2] = 1024;
    for (int phase : {127, 128, 149, 150})
        EXPECT_EQ(programmed(p, phase, 300), 1300) << phase;
    for (int phase : {151, 173})
        EXPECT_EQ(programmed(p, phase, 300), 1200) << phase;
    // 1025 * 64 keeps 64 in 16 bits, 1024 * 64 keeps 0.
    const int cases[][3] = {
        {77, 0, 1200}, {77, 65, 1200}, {65535, 64, 1300}, {1025, 1, 1300}, {1024, 1, 1200}};
    for (const auto& [phase, step, result] : cases)
        EXPECT_EQ(fixed(p, phase, step), result) << phase;
    // 2^25 + 3 * 2^30 is negative in 32 bits.
    std::fill(block[0].weights[1], block[0].weights[1] + 3, int16_t{-32768});
    EXPECT_EQ(programmed({0, 0, 0, 32768}, 1, 64), 1024);
}

TEST(Weights, EveryStepHoldsTheRoundedKernelAndNothingElse) {
    Guarded<lnc_bicubic_weight_t_64_tag> block(1);
    for (int step = 0; step <= 65535; step += step < 300 ? 1 : 997) {
        std::memset(block.data(), 0x5B, sizeof block[0]);
        generate_bicubic_weight_table(block.data(), static_cast<uint16_t>(step));
        for (int i = 0; i < 128; ++i) {
            const bool filled = step >= 1 && step <= 255 && i <= step / 2;
            const auto expected = filled ? reference_row(step, i) : std::array<int64_t, 3>{};
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), block[0].weights[i]))
                << step << ' ' << i;
        }
        ASSERT_EQ(block[0].reserved_0 | block[0].reserved_1 | block[0].reserved_2, 0) << step;
        const bool same =
            std::memcmp(zerklsc::fixed_weights, block.data(), sizeof zerklsc::fixed_weights) == 0;
        ASSERT_EQ(same, step == 64) << step;
    }
}

} // namespace
