#include "sampling/row_sum.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;

class RowSum : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override { setenv("ZERKLSC_CPU", GetParam(), 1); }
    void TearDown() override { unsetenv("ZERKLSC_CPU"); }
};

TEST_P(RowSum, AddsAndExchangesEveryWidthModulo32Bits) {
    Random random(12);
    for (const Against side : {Against::front, Against::back}) {
        for (size_t count = 0; count <= 67; ++count) {
            Guarded<uint16_t> entering(random_samples(random, count, Spread::high), side);
            Guarded<uint16_t> leaving(random_samples(random, count), side);
            Guarded<uint32_t> sums(count, side);
            std::vector<uint32_t> expected;
            for (uint32_t& s : sums) {
                s = static_cast<uint32_t>(random.next());
                const size_t i = expected.size();
                expected.push_back(s + 2u * entering[i] - leaving[i]);
            }
            ZERKLSC_KERNEL(add_row)(sums.data(), entering.data(), static_cast<int32_t>(count));
            ZERKLSC_KERNEL(exchange_row)
            (sums.data(), entering.data(), leaving.data(), static_cast<int32_t>(count));
            ASSERT_EQ(sums.copy(), expected) << count;
            ASSERT_TRUE(sums.intact()) << count;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, RowSum, ::testing::Values("base", "neon", "avx2", "avx512"));

} // namespace
