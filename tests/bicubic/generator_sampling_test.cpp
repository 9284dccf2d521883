#include "bicubic/generator_sampling.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"

namespace zerklsc {
namespace {

// The edge sample is not repeated: -1 is 1, and one past the end is one before it.
int32_t beside_the_edge(int32_t p, int32_t size) {
    return size - 1 - std::abs(size - 1 - std::abs(p));
}

double block_mean(const Channel& channel, const GeneratorGeometry& g, int32_t i, int32_t j) {
    const int32_t cx = std::min(i * g.step, g.width - 1), cy = std::min(j * g.step, g.height - 1);
    double sum = 0.0;
    for (int32_t y = cy - g.margin; y <= cy + g.margin; ++y)
        for (int32_t x = cx - g.margin; x <= cx + g.margin; ++x)
            sum += channel.sample(beside_the_edge(x, g.width), beside_the_edge(y, g.height));
    const double side = 2 * g.margin + 1;
    return sum * (1.0 / (side * side));
}

TEST(BlockAverages, AreTheMeansOfTheMirroredBlocksAtEveryMarginAndStep) {
    testing::Random random(7);
    for (int32_t step = 1; step <= 6; ++step)
        for (int32_t margin = 0; margin < 5; ++margin) {
            const GeneratorGeometry g{7, 5, step, margin, 6 / step + 2, 4 / step + 2};
            testing::Guarded<uint16_t> raw(testing::random_samples(random, 14 * 10), testing::Against::front);
            for (uint16_t& s : raw)
                s %= 1100;
            const Channel channel{{raw.data(), 14, 10, 14}, 3, 64};
            const BlockSums sums{allocate<int32_t>(7), allocate<int64_t>(8)};
            const size_t nodes = static_cast<size_t>(g.grid_w * g.grid_h);
            testing::Guarded<double> averages(nodes);
            doubled_margin = 2 * margin;
            const View<double> view = packed_view(averages.data(), g.grid_w, g.grid_h);
            const double largest = block_averages(channel, g, sums, view);
            for (int32_t j = 0; j < g.grid_h; ++j)
                for (int32_t i = 0; i < g.grid_w; ++i)
                    ASSERT_EQ(view.at(i, j), block_mean(channel, g, i, j))
                        << "step " << step << " margin " << margin << " node " << i << ',' << j;
            EXPECT_EQ(largest, std::max(0.0, *std::max_element(averages.begin(), averages.end())));
        }
}

TEST(LastNodes, ContinueTheLineFromThePreviousNodeAndWarnUnlessAboveZero) {
    const struct {
        int32_t width, step;
        double previous, last, extended;
        int warnings;
    } cases[] = {
        {100, 10, 5.0, 14.0, 15.0, 0}, // the last sample is 9 of 10 samples on
        {103, 10, 5.0, 8.0, 20.0, 0},  // 2 of 10
        {103, 10, 5.0, 4.0, 0.0, 1},   // 0 is not above 0
        {103, 10, 5.0, 3.0, -5.0, 1},  //
        {101, 10, 5.0, 8.0, 8.0, 0},   // the last sample is a node
        {100, 1, 5.0, -8.0, -8.0, 0},  // every sample is one
    };
    for (const auto& c : cases) {
        std::vector<double> row = {9.0, c.previous, c.last};
        ::testing::internal::CaptureStdout();
        extend_last_nodes({c.width, 50, c.step, 0, 3, 1}, packed_view(row.data(), 3, 1));
        EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                  c.warnings == 0 ? "" : "Warning:raw image data maybe wrong \n");
        EXPECT_EQ(row, (std::vector<double>{9.0, c.previous, c.extended})) << c.width << ' ' << c.step;
    }
}

} // namespace
} // namespace zerklsc
