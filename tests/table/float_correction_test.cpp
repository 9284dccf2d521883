#include "zerklsc.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace {

using zerklsc::testing::Against;
using zerklsc::testing::Guarded;
using zerklsc::testing::Random;

TEST(FloatCorrection, ConstantGainsScaleEverySampleAndWrap) {
    Random random(8);
    const std::vector<uint16_t> samples = zerklsc::testing::random_samples(random, 37 * 23);
    for (const uint16_t gain : std::initializer_list<uint16_t>{1024, 2048, 0}) {
        Guarded<uint16_t> src(samples, Against::back), dst(samples.size());
        Guarded<uint16_t> table(std::vector<uint16_t>(7 * 6, gain), Against::back);
        lsc2d_bicubic_correction(src.data(), dst.data(), 37, 23, table.data(), 10, 8, 7);
        for (size_t n = 0; n < samples.size(); ++n)
            ASSERT_EQ(dst[n], static_cast<uint16_t>(samples[n] * gain / 1024));
    }
}

TEST(FloatCorrection, GainsOnAnInclineAreInterpolatedExactly) {
    // Unity is 1024 samples of 1.0, so a plane of 1024 shows the gains; all values are exact in single
    // precision.
    Guarded<uint16_t> src(std::vector<uint16_t>(65 * 40, 1024), Against::back), dst(65 * 40), table(8 * 9);
    for (int n = 0; n < 72; ++n)
        table[static_cast<size_t>(n)] = static_cast<uint16_t>(1000 + 32 * (n % 8) + 8 * (n / 8));
    lsc2d_bicubic_correction(src.data(), dst.data(), 65, 40, table.data(), 16, 8, 8);
    for (int n = 0; n < 65 * 40; ++n)
        ASSERT_EQ(dst[static_cast<size_t>(n)], 1000 + 32 + 2 * (n % 65) + 8 + n / 65) << n;
}

TEST(FloatCorrection, ImpossibleGeometryTouchesNothing) {
    const int32_t cases[][5] = {
        {5, 5, 0, 1, 9}, {5, 5, 1, INT32_MIN, 9}, {5, 5, 1, 1, 0}, {0, 5, 1, 1, 9}, {5, -1, 1, 1, 9}};
    for (const auto& [width, height, step_x, step_y, row_length] : cases)
        lsc2d_bicubic_correction(nullptr, nullptr, width, height, nullptr, step_x, step_y, row_length);
}

} // namespace
