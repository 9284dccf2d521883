#include <cstring>

#include <gtest/gtest.h>

#include "bicubic/correction/cubic_1d.h"
#include "bicubic/correction/reference.h"
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
