// The numbers of a frame, and what is done to its samples, against the same sample by sample.
#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "imaging/levels.h"

namespace {

using namespace zerklsc::tool;

// Samples at random about a level and a slope of each plane's own, some below black and some clipped.
RawFrame frame_of(int width, int height, int bits) {
    RawFrame frame;
    frame.width = width;
    frame.height = height;
    frame.bits = bits;
    std::mt19937 engine(11);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int level = 200 + 90 * plane_of_pixel(x, y) + x / 3 - y / 4;
            const auto draw = static_cast<int>(engine() % 100);
            frame.samples.push_back(
                static_cast<uint16_t>(draw < 3   ? 40
                                      : draw < 6 ? frame.full_scale()
                                                 : std::clamp(level + draw, 0, frame.full_scale())));
        }
    return frame;
}

const BlackLevel black{60, 64, 168, 272};

// The mean of a plane's light in column `i` of `columns` and row `j` of `rows`.
double mean_of(const RawFrame& frame, int plane, int i, int columns, int j, int rows) {
    const int w = frame.width / 2, h = frame.height / 2;
    double sum = 0;
    int count = 0;
    for (int y = h * j / rows; y < h * (j + 1) / rows; ++y)
        for (int x = w * i / columns; x < w * (i + 1) / columns; ++x, ++count)
            sum += std::max(
                frame.at(2 * x + plane % 2, 2 * y + plane / 2) - black[static_cast<size_t>(plane)], 0);
    return sum / count;
}

TEST(Levels, BlocksOfEachPlane) {
    struct {
        int width, height, blocks, columns, rows;
    } const cases[]{{214, 166, 5, 13, 9}, {1100, 1060, 3, 65, 63}, {34, 50, 11, 1, 3}, {352, 34, 1, 21, 1}};
    for (const auto& one : cases) {
        const RawFrame frame = frame_of(one.width, one.height, 10);
        const FrameLevels levels = measure_planes(frame, black, one.blocks);
        for (int plane = 0; plane < 4; ++plane) {
            const PlaneLevels& own = levels[static_cast<size_t>(plane)];
            ASSERT_EQ(own.coarse.columns, one.blocks);
            ASSERT_EQ(own.coarse.rows, one.blocks);
            ASSERT_EQ(own.fine.columns, one.columns);
            ASSERT_EQ(own.fine.rows, one.rows);
            for (const BlockMeans* const blocks : {&own.coarse, &own.fine}) {
                ASSERT_EQ(blocks->values.size(), static_cast<size_t>(blocks->columns * blocks->rows));
                for (int j = 0; j < blocks->rows; ++j)
                    for (int i = 0; i < blocks->columns; ++i)
                        EXPECT_NEAR(blocks->at(i, j),
                                    mean_of(frame, plane, i, blocks->columns, j, blocks->rows), 1e-9);
            }
            EXPECT_NEAR(own.mean, mean_of(frame, plane, 0, 1, 0, 1), 1e-9);
            const auto fine = [&](int i, int j) {
                return mean_of(frame, plane, i, one.columns, j, one.rows);
            };
            const std::array<double, 4> corners{fine(0, 0), fine(one.columns - 1, 0), fine(0, one.rows - 1),
                                                fine(one.columns - 1, one.rows - 1)};
            double sum = 0;
            for (size_t k = 0; k < 4; ++k) {
                EXPECT_NEAR(own.corners()[k], corners[k], 1e-9);
                sum += corners[k];
            }
            EXPECT_NEAR(own.centre(), fine(one.columns / 2, one.rows / 2), 1e-9);
            EXPECT_NEAR(own.corner_to_centre(), sum / 4 / own.centre(), 1e-9);
            double flatness = 0, worst = 0;
            int at_x = 0, at_y = 0;
            for (const double value : own.coarse.values)
                flatness = std::max(flatness, std::abs(value / own.mean - 1));
            for (int j = 0; j < one.rows; ++j)
                for (int i = 0; i < one.columns; ++i)
                    if (const double off = fine(i, j) / own.mean - 1; std::abs(off) > std::abs(worst)) {
                        worst = off;
                        at_x = (2 * i + 1) * one.width / (2 * one.columns);
                        at_y = (2 * j + 1) * one.height / (2 * one.rows);
                    }
            EXPECT_NEAR(own.flatness(), flatness, 1e-9);
            EXPECT_NEAR(own.worst().fraction, worst, 1e-9);
            EXPECT_EQ(own.worst().x, at_x);
            EXPECT_EQ(own.worst().y, at_y);
        }
        // Of GBRG, red is plane 2 and the greens are 3 and 0.
        const BlockMeans changes = colour_changes(levels, BayerPattern::gbrg, Colour::r);
        const auto to_green = [&](int i, int j) {
            return levels[2].fine.at(i, j) / (levels[3].fine.at(i, j) + levels[0].fine.at(i, j));
        };
        double worst = 0;
        for (int j = 0; j < one.rows; ++j)
            for (int i = 0; i < one.columns; ++i) {
                const double change = to_green(i, j) / to_green(one.columns / 2, one.rows / 2) - 1;
                EXPECT_NEAR(changes.at(i, j), change, 1e-9);
                worst = std::abs(change) > std::abs(worst) ? change : worst;
            }
        EXPECT_NEAR(colour_shading(levels, BayerPattern::gbrg, Colour::r).fraction, worst, 1e-9);
        EXPECT_EQ(usual_blocks(frame), std::min({11, one.width / 2, one.height / 2}));
    }
}

TEST(Levels, NothingIsSaidOfNoLight) {
    RawFrame frame = frame_of(40, 40, 10);
    frame.samples.assign(1600, 50);
    FrameLevels levels = measure_planes(frame, black, 2);
    EXPECT_EQ(levels[0].corner_to_centre(), 0);
    EXPECT_EQ(levels[0].flatness(), 0);
    EXPECT_EQ(levels[0].worst().fraction, 0);
    // One colour without light, and then a place or the centre of another.
    levels[2].fine.values = {5, 5};
    levels[3].fine.values = {0, 8};
    levels[2].fine.columns = levels[3].fine.columns = levels[0].fine.columns = 2;
    levels[2].fine.rows = levels[3].fine.rows = levels[0].fine.rows = 1;
    levels[0].fine.values = {0, 8};
    EXPECT_EQ(colour_changes(levels, BayerPattern::gbrg, Colour::r).values, (std::vector<double>{0, 0}));
    levels[3].fine.values = {8, 0};
    EXPECT_EQ(colour_changes(levels, BayerPattern::gbrg, Colour::r).values, (std::vector<double>{0, 0}));
    levels[2].fine.values = {5, 0};
    EXPECT_EQ(colour_changes(levels, BayerPattern::gbrg, Colour::r).values, (std::vector<double>{0, 0}));
    levels[0].fine.values = levels[3].fine.values = {0, 0};
    EXPECT_EQ(colour_changes(levels, BayerPattern::gbrg, Colour::r).values, (std::vector<double>{0, 0}));
}

TEST(Levels, ClippedSamples) {
    for (const int white : {0, 1, 300, 1023, 65535}) {
        RawFrame frame = frame_of(46, 22, 10);
        frame.white = white;
        const auto fractions = clipped_fractions(frame);
        std::array<double, 4> expected{};
        for (int y = 0; y < 22; ++y)
            for (int x = 0; x < 46; ++x)
                expected[static_cast<size_t>(plane_of_pixel(x, y))] +=
                    frame.at(x, y) >= white ? 1 / (23.0 * 11) : 0;
        for (size_t plane = 0; plane < 4; ++plane)
            EXPECT_NEAR(fractions[plane], expected[plane], 1e-12) << white;
    }
}

// What becomes of each sample, of the black levels and of the white level.
TEST(RawFrame, BlackLevelsAndDepth) {
    struct {
        void (*change)(RawFrame&);
        int (*sample)(int v, int b);
        int (*level)(int b);
        int white, bits;
    } const cases[]{
        {[](RawFrame& f) { subtract_black(f, black); }, [](int v, int b) { return std::max(v - b, 0); },
         [](int) { return 0; }, 4000 - 272, 12},
        {[](RawFrame& f) { add_black(f, black); }, [](int v, int b) { return std::min(v + b, 4095); },
         [](int b) { return b; }, 4095, 12},
        {[](RawFrame& f) { scale_to_10_bits(f); }, [](int v, int) { return std::min((v + 2) / 4, 1023); },
         [](int b) { return (b + 2) / 4; }, 1000, 10},
        {[](RawFrame& f) { scale_light_to_10_bits(f, black); },
         [](int v, int b) { return std::max(std::min((v + b + 2) / 4, 1023) - (b + 2) / 4, 0); },
         [](int b) { return b; }, 1023 - 68, 10},
    };
    for (const auto& one : cases) {
        RawFrame frame = frame_of(94, 38, 12); // beside whole groups of 32 samples
        frame.black = black;
        frame.white = 4000;
        const RawFrame before = frame;
        one.change(frame);
        for (int y = 0; y < 38; ++y)
            for (int x = 0; x < 94; ++x)
                ASSERT_EQ(frame.at(x, y),
                          one.sample(before.at(x, y), black[static_cast<size_t>(plane_of_pixel(x, y))]))
                    << x << " " << y;
        for (size_t plane = 0; plane < 4; ++plane)
            EXPECT_EQ((*frame.black)[plane], one.level(black[plane]));
        EXPECT_EQ(frame.white, one.white);
        EXPECT_EQ(frame.bits, one.bits);
        EXPECT_EQ(largest_sample(before), 4095);
    }
    // A frame of fewer bits keeps its samples, and the white level is never below 1.
    for (void (*const scale)(RawFrame&) : {+[](RawFrame& f) { scale_to_10_bits(f); },
                                           +[](RawFrame& f) { scale_light_to_10_bits(f, black); }}) {
        RawFrame frame = frame_of(34, 6, 9);
        const RawFrame before = frame;
        scale(frame);
        EXPECT_EQ(frame.samples, before.samples);
        EXPECT_EQ(frame.bits, 10);
    }
    RawFrame frame = frame_of(34, 6, 12);
    frame.white = 272;
    subtract_black(frame, black);
    EXPECT_EQ(frame.white, 1);
    frame.white = 0;
    scale_light_to_10_bits(frame, black);
    EXPECT_EQ(frame.white, 1);
    EXPECT_EQ(text_of(black), "60,64,168,272");
    EXPECT_EQ(text_of({7, 7, 7, 7}), "7");
}

} // namespace
