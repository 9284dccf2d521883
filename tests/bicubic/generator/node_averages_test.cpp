#include "bicubic/generator/node_averages.h"

#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "support/random.h"

namespace zerklsc {
namespace {

// The edge sample is not repeated: -1 is 1, and one past the end is one before it.
int32_t mirrored(int32_t p, int32_t size) {
    return size - 1 - std::abs(size - 1 - std::abs(p));
}

double block_mean(const ColourPlane& plane, const GeneratorGeometry& g, int32_t i, int32_t j) {
    const int32_t cx = std::min(i * g.step, g.width - 1), cy = std::min(j * g.step, g.height - 1);
    double sum = 0.0;
    for (int32_t y = cy - g.margin; y <= cy + g.margin; ++y)
        for (int32_t x = cx - g.margin; x <= cx + g.margin; ++x)
            sum += plane.at(mirrored(x, g.width), mirrored(y, g.height));
    const double side = 2 * g.margin + 1;
    return sum * (1.0 / (side * side));
}

TEST(BlockAverages, AreTheMeansOfTheMirroredBlocksAtEveryMarginAndStep) {
    testing::Random random(7);
    for (int32_t step = 1; step <= 6; ++step)
        for (int32_t margin = 0; margin < 5; ++margin) {
            const GeneratorGeometry g{7, 5, step, margin, 6 / step + 2, 4 / step + 2};
            std::vector<uint16_t> raw = testing::random_samples(random, 14 * 10);
            std::transform(raw.begin(), raw.end(), raw.begin(), [](int s) { return s % 1100; });
            const ColourPlane plane{{raw.data(), 14, 10, 14}, 3, 64};
            const BlockSums sums{allocate<int32_t>(7), allocate<int64_t>(8)};
            std::vector<double> averages(static_cast<size_t>(g.grid_w * g.grid_h));
            const View<double> view = packed_view(averages.data(), g.grid_w, g.grid_h);
            const double largest = measure_nodes(plane, g, sums, view);
            EXPECT_EQ(largest, std::max(0.0, *std::max_element(averages.begin(), averages.end())));
            for (int32_t j = 0; j < g.grid_h; ++j)
                for (int32_t i = 0; i < g.grid_w; ++i)
                    ASSERT_EQ(view.at(i, j), block_mean(plane, g, i, j)) << step << ' ' << margin;
        }
}

} // namespace
} // namespace zerklsc
