#include "zerklsc.h"

#include <cmath>

#include <gtest/gtest.h>

#include "calibration/call.h"
#include "support/allocations.h"

namespace {

using namespace zerklsc::testing;

// A flat frame but for two nodes: one half as bright as the rest, and one that asks for more than the highest
// gain. The methods that sample follow them, and all follow the shading model, on the border too.
TEST(Wrapper, ShadesAndLimitsEachTableAndOnlyReadsTheFrame) {
    std::vector<uint16_t> flat(128 * 110, uint16_t{512}), marked = flat;
    marked[static_cast<size_t>((2 * 24 + 1) * 128 + 2 * 24)] = 256; // node (3, 3) of plane 2
    marked[static_cast<size_t>(2 * 32 * 128 + 2 * 40 + 1)] = 20;    // node (5, 4) of plane 1
    for (const int32_t algorithm : {2, 3, 4})
        for (const int32_t percent : {100, 80}) {
            const bool samples = algorithm != 3;
            Guarded<uint16_t> raw(samples ? marked : flat, Against::back);
            const Case c = {algorithm, 128, 110, 8, samples ? 0 : 2};
            Call call(c, percent);
            const AllocationScope scope;
            ASSERT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), 0) << algorithm;
            for (int plane = 0; plane < 4; ++plane)
                for (int j = -1; j < 9; ++j)
                    for (int i = -1; i < 10; ++i) {
                        const double dx = 8 * i - 32, dy = 8 * j - 27.5, share = percent / 100.0;
                        const double square =
                            1 + (share * share - 1) * (dx * dx + dy * dy) / (32 * 32 + 27.5 * 27.5);
                        const bool half = samples && plane == 2 && i == 3 && j == 3;
                        const bool dark = samples && plane == 1 && i == 5 && j == 4;
                        const double unshaded = half ? 2048 : dark ? 26214.4 : 1024;
                        const double gain =
                            std::min(unshaded * std::sqrt(square), double{ZERKLSC_HIGHEST_GAIN});
                        ASSERT_NEAR(call.tables->table[plane][static_cast<size_t>((j + 1) * 11 + i + 1)],
                                    gain, 1)
                            << "algorithm " << algorithm << ", plane " << plane << ", node " << i << ' ' << j;
                    }
            EXPECT_EQ(raw.copy(), samples ? marked : flat);
            EXPECT_EQ(call.same_weights(Call(c)), algorithm != 4);
        }
}

} // namespace
