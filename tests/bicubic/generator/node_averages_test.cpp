#include "bicubic/generator/node_averages.h"

#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/instruction_sets.h"
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

// The plane in the right columns of a frame whose last sample is the last that can be read.
void compare_to_blocks(int32_t width, int32_t step, int32_t margin, testing::Random& random) {
    const GeneratorGeometry g{width, 5, step, margin, (width - 1) / step + 2, 4 / step + 2};
    std::vector<uint16_t> samples = testing::random_samples(random, static_cast<size_t>(20 * width));
    std::transform(samples.begin(), samples.end(), samples.begin(), [](int s) { return s % 1100; });
    testing::Guarded<uint16_t> raw(samples, testing::Against::back);
    const ColourPlane plane{{raw.data(), 2 * width, 10, 2 * width}, 3, 64};
    BlockSums sums;
    ASSERT_TRUE(allocate_sums(g, sums));
    std::vector<double> averages(static_cast<size_t>(g.grid_w * g.grid_h));
    const View<double> view = packed_view(averages.data(), g.grid_w, g.grid_h);
    const double largest = measure_nodes(plane, g, sums, view);
    EXPECT_EQ(largest, std::max(0.0, *std::max_element(averages.begin(), averages.end())));
    for (int32_t j = 0; j < g.grid_h; ++j)
        for (int32_t i = 0; i < g.grid_w; ++i)
            ASSERT_EQ(view.at(i, j), block_mean(plane, g, i, j)) << width << ' ' << step << ' ' << margin;
}

TEST(BlockAverages, AreTheMeansOfTheMirroredBlocksAtEveryMarginAndStep) {
    testing::on_each_instruction_set([](const std::string& word) {
        SCOPED_TRACE(word);
        testing::Random random(7);
        for (const int32_t width : {7, 39})
            for (int32_t step = 1; step <= 6; ++step)
                for (int32_t margin = 0; margin < 5; ++margin)
                    compare_to_blocks(width, step, margin, random);
    });
}

} // namespace
} // namespace zerklsc
