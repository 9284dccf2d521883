#include "zerklsc.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/allocations.h"
#include "support/guarded.h"
#include "support/instruction_sets.h"
#include "support/random.h"
#include "table/float_correction_plain.h"

namespace {

using namespace zerklsc::testing;

TEST(FloatCorrection, GainsOnAnInclineAreInterpolatedExactlyAndBrightSamplesWrap) {
    Guarded<uint16_t> dst(65 * 40), table(8 * 9);
    for (int n = 0; n < 72; ++n)
        table.data()[n] = static_cast<uint16_t>(1000 + 32 * (n % 8) + 8 * (n / 8));
    // Gains below 2048 and these samples keep all values exact in single precision.
    for (const int sample : {1024, 40960}) {
        const std::vector<uint16_t> src(65 * 40, static_cast<uint16_t>(sample));
        lsc2d_bicubic_correction(src.data(), dst.data(), 65, 40, table.data(), 16, 8, 8);
        for (int n = 0; n < 65 * 40; ++n)
            ASSERT_EQ(dst.data()[n], sample / 1024 * (1040 + 2 * (n % 65) + n / 65) % 65536) << n;
    }
}

// One plane, corrected at every instruction set, with the memory it asks for and without, against the plain
// form.
void expect_equal_to_plain(Random& random, int32_t width, int32_t height, int32_t step_x, int32_t step_y,
                           Spread spread, Against side) {
    int32_t table_w, table_h;
    lsc2d_table_size(width, height, step_x, step_y, &table_w, &table_h);
    const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
    Guarded<uint16_t> src(random_samples(random, count, spread), side);
    Guarded<uint16_t> table(random_samples(random,
                                           static_cast<size_t>(table_w) * static_cast<size_t>(table_h),
                                           spread == Spread::any ? Spread::any : Spread::high),
                            side);
    Guarded<uint16_t> plain(count, side), fast(count, side);
    zerklsc::plain::bicubic_correction(
        {src.data(), plain.data(), width, height, table.data(), step_x, step_y, table_w});
    on_each_instruction_set([&](const std::string& level) {
        for (const size_t fail_at : {size_t{0}, AllocationScope::never}) {
            std::fill(fast.begin(), fast.end(), uint16_t{0xBEEF});
            AllocationScope heap(fail_at);
            lsc2d_bicubic_correction(src.data(), fast.data(), width, height, table.data(), step_x, step_y,
                                     table_w);
            EXPECT_TRUE(heap.leftovers().empty());
            EXPECT_EQ(fast.copy(), plain.copy()) << level << ' ' << width << 'x' << height << ' ' << step_x;
            EXPECT_TRUE(fast.intact());
        }
    });
}

TEST(FloatCorrection, FastFormEqualsThePlainOneToTheBit) {
    Random random(77);
    for (const Against side : {Against::front, Against::back})
        for (const Spread spread : {Spread::low, Spread::high, Spread::any}) {
            for (int32_t width = 1; width <= 67 && !HasFailure(); ++width)
                expect_equal_to_plain(random, width, width % 6 + 1, width % 13 + 1, 2, spread, side);
            for (const int32_t step : {1, 2, 3, 7, 8, 16, 31, 64, 127, 255, 1000, INT32_MAX})
                for (const int32_t width : {255, 257, 519})
                    if (!HasFailure())
                        expect_equal_to_plain(random, width, 13, step, std::max(step % 6, 1), spread, side);
        }
}

TEST(FloatCorrection, ImpossibleGeometryTouchesNothing) {
    const int32_t cases[][5] = {
        {5, 5, 0, 1, 9}, {5, 5, 1, INT32_MIN, 9}, {5, 5, 1, 1, 0}, {0, 5, 1, 1, 9}, {5, -1, 1, 1, 9}};
    for (const auto& [width, height, step_x, step_y, row_length] : cases)
        lsc2d_bicubic_correction(nullptr, nullptr, width, height, nullptr, step_x, step_y, row_length);
}

} // namespace
