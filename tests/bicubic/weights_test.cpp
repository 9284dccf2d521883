#include <cstring>

#include <gtest/gtest.h>

#include "bicubic/cubic_1d.h"
#include "bicubic/reference.h"
#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

TEST(Weights, EveryStepHoldsTheRoundedKernelAndNothingElse) {
    Guarded<lnc_bicubic_weight_t_64_tag> block(1);
    for (int step = 0; step <= 65535; step += step < 300 ? 1 : 997) {
        std::memset(block.data(), 0x5B, sizeof block[0]);
        generate_bicubic_weight_table(block.data(), static_cast<uint16_t>(step));
        for (int i = 0; i < 128; ++i) {
            const bool filled = step >= 1 && step <= 255 && i <= step / 2;
            const auto expected = filled ? reference_row(step, i) : std::array<int64_t, 3>{};
            for (size_t k = 0; k < 3; ++k)
                ASSERT_EQ(block[0].weights[i][k], expected[k]) << step << ' ' << i << ' ' << k;
        }
        ASSERT_EQ(block[0].reserved_0 | block[0].reserved_1 | block[0].reserved_2, 0) << step;
    }
}

TEST(Weights, FixedTableIsTheTableOfStep64) {
    const int16_t known[3][4] = {{0, 0, 1024, 0}, {16, -72, 888, 232}, {32, -64, 576, 576}};
    for (const auto& row : known)
        EXPECT_EQ(std::memcmp(zerklsc::fixed_weights[row[0]], row + 1, 3 * sizeof *row), 0) << row[0];
    lnc_bicubic_weight_t_64_tag block;
    generate_bicubic_weight_table(&block, 64);
    EXPECT_EQ(std::memcmp(zerklsc::fixed_weights, block.weights, sizeof zerklsc::fixed_weights), 0);
}

} // namespace
