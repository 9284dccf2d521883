#include "sampling/pair_sum.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

class PairSum : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override { setenv("ZERKLSC_CPU", GetParam(), 1); }
    void TearDown() override { unsetenv("ZERKLSC_CPU"); }
};

TEST_P(PairSum, ReadsEachPairOnceAndNothingElse) {
    Random random(5);
    for (const Against side : {Against::front, Against::back}) {
        for (int32_t pairs = 0; pairs <= 35; ++pairs) {
            const int32_t rows = 1 + pairs % 4;
            const ptrdiff_t stride = 2 * pairs + pairs % 3;
            const size_t count = static_cast<size_t>((rows - 1) * stride + 2 * pairs);
            Guarded<uint16_t> block(random_samples(random, count, pairs % 2 ? Spread::high : Spread::any),
                                    side);
            uint64_t expected[2] = {3, 4}, sums[2] = {3, 4};
            for (int32_t y = 0; y < rows; ++y) {
                for (int32_t x = 0; x < 2 * pairs; ++x)
                    expected[x % 2] += block[static_cast<size_t>(y * stride + x)];
            }
            ZERKLSC_KERNEL(add_pairs)(block.data(), stride, pairs, rows, sums);
            ASSERT_EQ(sums[0], expected[0]) << pairs;
            ASSERT_EQ(sums[1], expected[1]) << pairs;
        }
    }
}

// A window of full-scale samples beyond what a 32-bit lane holds, in rows and in columns.
TEST_P(PairSum, LargeBlocksDoNotOverflow) {
    for (const int32_t pairs : {3, 4, 1000, 23169}) {
        const std::vector<uint16_t> row(static_cast<size_t>(2 * pairs), uint16_t{65535});
        const int32_t rows = 300000 / pairs + 70;
        uint64_t sums[2] = {};
        ZERKLSC_KERNEL(add_pairs)(row.data(), 0, pairs, rows, sums);
        EXPECT_EQ(sums[0], 65535u * static_cast<uint64_t>(pairs) * static_cast<uint64_t>(rows)) << pairs;
        EXPECT_EQ(sums[1], sums[0]) << pairs;
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, PairSum, ::testing::Values("base", "neon", "avx2", "avx512"));

} // namespace
