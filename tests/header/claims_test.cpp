// What the public header warns of: each would be found first in somebody's picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "header/lens.h"
#include "support/allocations.h"

namespace zerklsc::testing {
namespace {

// Mean level of a block of 20 x 20 pixels.
double mean(const std::vector<uint16_t>& frame, int width, int x0, int y0) {
    double sum = 0;
    for (int y = y0; y < y0 + 20; ++y)
        for (int x = x0; x < x0 + 20; ++x)
            sum += frame[static_cast<size_t>(y * width + x)];
    return sum / 400;
}

// How bright the lower left corner is beside the centre, after calibration and correction with one record.
double corrected_corner(int width, int height, int step, int algorithm) {
    const std::vector<uint16_t> flat = lens_frame(width, height, 800);
    std::vector<uint16_t> out(flat.size());
    Shading shading(width, height, step, algorithm);
    AllocationScope leftovers_are_meant;
    EXPECT_EQ(lsc2d_calibration_wrapper(flat.data(), &shading.info), 0);
    EXPECT_EQ(lsc2d_correction_wrapper(const_cast<uint16_t*>(flat.data()), out.data(), &shading.info), 0);
    return mean(out, width, 0, height - 20) / mean(out, width, width / 2, height / 2);
}

TEST(HeaderClaims, AGridOneSamplePastACellIsCorrectedWronglyForTvessa2) {
    for (const int algorithm : {0, 1, 2, 3})
        EXPECT_LT(corrected_corner(514, 386, 32, algorithm), 0.65) << algorithm;
    EXPECT_NEAR(corrected_corner(514, 386, 32, ZERKLSC_ALGORITHM_ORVEL_WEIGHTS), 1, 0.02);
    EXPECT_NEAR(corrected_corner(512, 384, 32, ZERKLSC_ALGORITHM_ORVEL), 1, 0.02);
}

TEST(HeaderClaims, AStepAbove64CorrectsWeakly) {
    EXPECT_LT(corrected_corner(1024, 768, 128, ZERKLSC_ALGORITHM_ORVEL), 0.85);
    EXPECT_NEAR(corrected_corner(1024, 768, 128, ZERKLSC_ALGORITHM_ORVEL_WEIGHTS), 1, 0.02);
}

TEST(HeaderClaims, Tvessa2TakesTheLowByteOfTheStepAndTheTablesOfThatStep) {
    std::vector<uint16_t> frame = lens_frame(132, 74, 700), low(frame.size()), whole(frame.size());
    Shading shading(132, 74, 4, ZERKLSC_ALGORITHM_ORVEL);
    for (std::vector<uint16_t>& table : shading.tables)
        for (size_t i = 0; i < table.size(); ++i)
            table[i] = static_cast<uint16_t>(1024 + 7 * i % 600);
    EXPECT_EQ(lsc2d_correction_wrapper(frame.data(), low.data(), &shading.info), 0);
    shading.info.grid = 256 + 4;
    EXPECT_EQ(lsc2d_correction_wrapper(frame.data(), whole.data(), &shading.info), 0);
    EXPECT_EQ(low, whole);
}

// The gains of the upper left corner for a percentage.
int corner_gain(int algorithm, int percent) {
    const std::vector<uint16_t> flat = lens_frame(1024, 768, 800);
    Shading shading(1024, 768, 32, algorithm);
    shading.info.shading_percent = percent;
    AllocationScope leftovers_are_meant;
    EXPECT_EQ(lsc2d_calibration_wrapper(flat.data(), &shading.info), 0);
    return shading.gain(0, 0);
}

TEST(HeaderClaims, ThePercentageMeansThreeThings) {
    // The corner has 0.6 of the centre: a gain of 1.67, 1706 of 1024.
    for (const int algorithm : {0, 1, 2, 3, 4})
        EXPECT_NEAR(corner_gain(algorithm, 100), 1706, 30) << algorithm;
    // Of the share of the gain, 0 leaves nothing.
    for (const int algorithm : {2, 3, 4}) {
        EXPECT_NEAR(corner_gain(algorithm, 80), 0.8 * 1706, 30) << algorithm;
        EXPECT_EQ(corner_gain(algorithm, 0), 0) << algorithm;
    }
    // Twice: 0.8 of 0.8.
    EXPECT_NEAR(corner_gain(1, 80), 0.64 * 1706, 30);
    EXPECT_EQ(corner_gain(1, 0), 0);
    // Of the fall-off from 1 to 0.6, 80 % leave 0.92.
    EXPECT_NEAR(corner_gain(0, 80), 0.92 * 1706, 30);
    // 0 leaves it, but for the blocks that the fall-off is measured on, which are brighter than the corner
    // itself.
    EXPECT_NEAR(corner_gain(0, 0), 1024, 150);
}

TEST(HeaderClaims, SampledMethodsTakeAnyDepthAndNoneTakesTheBlackLevelOff) {
    const std::vector<uint16_t> flat = lens_frame(512, 384, 800);
    AllocationScope leftovers_are_meant;
    for (const int algorithm : {0, 1, 2, 3, 4}) {
        const auto tables_of = [&](const auto& change) {
            std::vector<uint16_t> frame = flat;
            for (uint16_t& sample : frame)
                sample = static_cast<uint16_t>(change(sample));
            Shading shading(512, 384, 32, algorithm);
            EXPECT_EQ(lsc2d_calibration_wrapper(frame.data(), &shading.info), 0);
            return shading;
        };
        const Shading clean = tables_of([](int sample) { return sample; });
        const Shading pedestal = tables_of([](int sample) { return sample + 64; });
        EXPECT_NEAR(pedestal.gain(0, 0), 1024.0 * (800 + 64) / (480 + 64), 50) << algorithm;
        EXPECT_GT(clean.gain(0, 0), pedestal.gain(0, 0) + 60) << algorithm;
        if (algorithm < 2)
            continue;
        const Shading deep = tables_of([](int sample) { return 64 * sample; });
        for (size_t i = 0; i < clean.tables[2].size(); ++i) // the surface fit rounds the levels of its points
            EXPECT_NEAR(deep.tables[2][i], clean.tables[2][i], algorithm == 3 ? 8 : 0) << algorithm;
    }
}

TEST(HeaderClaims, MethodsOfTheGeneratorsAssumePatternZero) {
    std::vector<uint16_t> frame = lens_frame(512, 384, 500);
    for (size_t i = 0; i < frame.size(); ++i) // Gb of pattern 0, plane 3, is far from the others
        if (i % 2 == 1 && i / 512 % 2 == 1)
            frame[i] = static_cast<uint16_t>(frame[i] / 4);
    const auto front_end = [&](uint8_t pattern) {
        Shading shading(512, 384, 32, ZERKLSC_ALGORITHM_HALVANE);
        uint32_t calib[8] = {32, 0, 4, 0, 0, 0, 0, 60};
        EXPECT_EQ(
            lsc2d_calibration_halvane(frame.data(), 512, 384, shading.info.lsc_table, 0, 0, pattern, calib),
            0);
        return shading.tables[0];
    };
    Shading shading(512, 384, 32, ZERKLSC_ALGORITHM_HALVANE);
    shading.info.shading_percent = 60;
    EXPECT_EQ(lsc2d_calibration_wrapper(frame.data(), &shading.info), 0);
    EXPECT_EQ(shading.tables[0], front_end(0)); // and method 0 leaves them so
    EXPECT_NE(shading.tables[0], front_end(1));
}

TEST(HeaderClaims, AConstantPlaneGivesItsLevelOrTheNumberBesideIt) {
    int beside = 0;
    for (const int level : {1, 3, 700, 1023, 65535})
        for (int radius = 0; radius <= 40; ++radius) {
            const std::vector<uint16_t> plane(82 * 82, static_cast<uint16_t>(level));
            const imfilter_t box{ZERKLSC_FILTER_BOX, radius, ZERKLSC_BOUNDARY_CLAMP, nullptr};
            const float exact = static_cast<float>(level);
            float sample = 0;
            ASSERT_EQ(img_sample_grid(plane.data(), &sample, 82, 82, 8, 8, 1, 1, &box), 0);
            EXPECT_TRUE(sample == exact || sample == std::nextafter(exact, 0.0f)
                        || sample == std::nextafter(exact, 1e9f))
                << level << ' ' << radius;
            beside += sample != exact;
        }
    EXPECT_GT(beside, 0);
}

// 7 x 6 entries that rise by 37 to the right and by 11 downwards.
std::vector<uint16_t> source_table() {
    std::vector<uint16_t> table;
    for (int i = 0; i < 7 * 6; ++i)
        table.push_back(static_cast<uint16_t>(1024 + 37 * (i % 7) + 11 * (i / 7)));
    return table;
}

TEST(HeaderClaims, ADestinationStepOfOneLosesTheLastColumnAndRow) {
    std::vector<uint16_t> source = source_table(), fine(16 * 12, 999);
    const lsc2d_grid from{source.data(), 4, 4, 5, 4}, to{fine.data(), 1, 1, 14, 10};
    ASSERT_EQ(lsc2d_grid_convert(&from, &to, 13, 9), 0);
    EXPECT_EQ(fine[16 + 1], 1024 + 37 + 11); // the first inner node
    for (size_t row = 1; row < 11; ++row) {
        const uint16_t last = fine[row * 16 + 14];
        EXPECT_TRUE(last == 0 || last == 16383) << last;
    }
}

TEST(HeaderClaims, ACropOrADestinationWithoutExtentGivesAConstantDirection) {
    std::vector<uint16_t> source = source_table(), table(8 * 7);
    const lsc2d_table_desc from{16, 12, 4, 4, 7, 6, source.data()};
    struct {
        lsc2d_crop crop;
        uint16_t width;
    } const cases[] = {{{4, 2, 0, 8}, 20}, {{4, 2, 9, 8}, 0}};
    for (const auto& c : cases) {
        const lsc2d_table_desc to{c.width, 16, 4, 4, 8, 7, table.data()};
        ASSERT_EQ(lsc2d_table_mapping(&from, &to, &c.crop), 0);
        for (size_t row = 0; row < 7; ++row)
            for (size_t column = 0; column < 8; ++column)
                EXPECT_EQ(table[row * 8 + column], table[row * 8]) << row << ' ' << column;
        EXPECT_EQ(table[8 + 1], 1024 + 37 * 2 + 11 + 5 + 1); // (4, 2): between rows 0 and 1, 5.5 up
    }
}

TEST(HeaderClaims, ATableMayBeConvertedInItsOwnMemory) {
    std::vector<uint16_t> source = source_table(), apart(12 * 10), in_place(12 * 10);
    const lsc2d_crop crop{2, 1, 12, 11};
    for (const bool mapped : {false, true}) {
        const auto convert = [&](uint16_t* table, uint16_t* to) {
            const lsc2d_grid a{table, 4, 4, 5, 4}, b{to, 2, 2, 10, 8};
            const lsc2d_table_desc src{16, 12, 4, 4, 7, 6, table}, dst{19, 15, 2, 2, 12, 10, to};
            return mapped ? lsc2d_table_mapping(&src, &dst, &crop) : lsc2d_grid_convert(&a, &b, 16, 12);
        };
        std::copy(source.begin(), source.end(), in_place.begin());
        ASSERT_EQ(convert(source.data(), apart.data()), 0);
        ASSERT_EQ(convert(in_place.data(), in_place.data()), 0);
        EXPECT_EQ(in_place, apart);
    }
}

} // namespace
} // namespace zerklsc::testing
