// What the public header warns of: each would be found first in somebody's picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

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
}

TEST(HeaderClaims, CorrectionReadsNoMoreOfTheRecordThanItSays) {
    std::vector<uint16_t> frame = lens_frame(200, 120, 700), expected(frame.size()), out(frame.size());
    for (const int algorithm : {2, 4}) {
        Shading shading(200, 120, 16, algorithm);
        std::fill(shading.tables[1].begin(), shading.tables[1].end(), uint16_t{1400});
        ASSERT_EQ(lsc2d_correction_wrapper(frame.data(), expected.data(), &shading.info), 0);
        shading.info.filter_radius = -7;
        shading.info.shading_percent = 12345;
        std::memset(&shading.info.weight, 0x5a, sizeof shading.info.weight);
        const lsc2d_info before = shading.info;
        ASSERT_EQ(lsc2d_correction_wrapper(frame.data(), out.data(), &shading.info), 0);
        EXPECT_EQ(out, expected) << algorithm;
        EXPECT_EQ(std::memcmp(&before.weight, &shading.info.weight, sizeof before.weight), 0);
    }
}

TEST(HeaderClaims, AProductAbove16BitsComesOutAsWhatIsLeft) {
    // Gain 16383 / 1024: 4096 gives 65532, which is limited; 4097 gives 65548, 12 more than 65536.
    std::vector<uint16_t> frame(128 * 8, 4096), out(frame.size());
    frame[5] = 4097;
    Shading shading(128, 8, 4, ZERKLSC_ALGORITHM_ORVEL);
    for (std::vector<uint16_t>& table : shading.tables)
        std::fill(table.begin(), table.end(), uint16_t{16383});
    EXPECT_EQ(lsc2d_correction_wrapper(frame.data(), out.data(), &shading.info), 0);
    EXPECT_EQ(out[4], 1023);
    EXPECT_EQ(out[5], 12);
}

TEST(HeaderClaims, ADestinationStepOfOneLosesTheLastColumnAndRow) {
    std::vector<uint16_t> source(7 * 6), fine(16 * 12, 999);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<uint16_t>(1024 + 37 * (i % 7) + 11 * (i / 7));
    const lsc2d_grid from{source.data(), 4, 4, 5, 4}, to{fine.data(), 1, 1, 14, 10};
    ASSERT_EQ(lsc2d_grid_convert(&from, &to, 13, 9), 0);
    EXPECT_EQ(fine[16 + 1], 1024 + 37 + 11); // the first inner node
    for (size_t row = 1; row < 11; ++row) {
        const uint16_t last = fine[row * 16 + 14];
        EXPECT_TRUE(last == 0 || last == 16383) << last;
    }
}

TEST(HeaderClaims, ACropOrADestinationWithoutExtentGivesAConstantDirection) {
    std::vector<uint16_t> source(7 * 6), table(8 * 7);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<uint16_t>(1024 + 37 * (i % 7) + 11 * (i / 7));
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

TEST(HeaderClaims, APlaneWithoutACentreClusterStillHasAListToRelease) {
    pix_point* points = nullptr;
    int32_t count = -1;
    AllocationScope scope;
    ASSERT_EQ(init_center_points(9, 200, &points, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_NE(points, nullptr);
    release_center_points(points);
    EXPECT_TRUE(scope.leftovers().empty());
}

TEST(HeaderClaims, AStreamMayStandAtAnyAddress) {
    std::vector<uint16_t> tables[4];
    std::vector<uint8_t> memory(1 + 3 * 9);
    lsc_otp_info info{2, 5, 5, {}, memory.data() + 1, 0};
    for (int c = 0; c < 4; ++c) {
        tables[c].assign(25, 1024);
        info.lsc_table[c] = tables[c].data();
    }
    ASSERT_EQ(lsc_compress(&info), 0);
    for (std::vector<uint16_t>& table : tables)
        std::fill(table.begin(), table.end(), uint16_t{0});
    ASSERT_EQ(lsc_decompress(&info), 0);
    for (const std::vector<uint16_t>& table : tables)
        EXPECT_EQ(table, std::vector<uint16_t>(25, 1024));
}

TEST(HeaderClaims, TheGeneratorsPrintALineForEverySampleAbove1023) {
    std::vector<uint16_t> frame(128 * 96, 500);
    // Pattern 0: Gr R / B Gb.
    frame[0] = 1024, frame[1] = 4095, frame[128] = 1023, frame[129] = 2000;
    Shading shading(128, 96, 16, ZERKLSC_ALGORITHM_ORVEL_OTP);
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(lsc2d_calibration_wrapper(frame.data(), &shading.info), 0);
    std::fflush(stdout);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "Warning:Gr channel data of raw image maybe wrong \n"
              "Warning:R channel data of raw image maybe wrong \n"
              "Warning:Gb channel data of raw image maybe wrong \n");
}

} // namespace
} // namespace zerklsc::testing
