#include <cmath>

#include "flat_field.h"

namespace zerklsc::testing {
namespace {

constexpr auto orvel = bicubic_lnc_param_gen_orvel_otp;
constexpr uint8_t blacks[4] = {10, 20, 30, 40};

TEST(OrvelOtp, FlatFieldHasUnityGainWhateverItsOddLastColumnAndRowHold) {
    for (const Against side : {Against::front, Against::back}) {
        FlatField field(97, 83, 16, 3, side);
        field.param.filter_radius = 40; // the widest that is taken
        field.paint([](int x, int y) { return x == 96 || y == 82 ? 60000 : 300; });
        EXPECT_EQ(field.run(orvel), "");
        EXPECT_TRUE(field.all_tables_are(1024));
    }
}

TEST(OrvelOtp, EveryPatternNamesTheColoursAndReachesTheTablesThatTheCorrectionsRead) {
    for (uint8_t pattern = 0; pattern < 4; ++pattern) {
        FlatField field(80, 64, 8);
        field.param.bayer_pattern = pattern;
        std::copy_n(blacks, 4, field.param.blc);
        field.paint([](int x, int y) { return 512 + blacks[plane_at(x, y)]; });
        std::string warnings; // in raster order: the clipped samples stand in one cell
        for (int p = 0; p < 4; ++p) {
            field.sample(16 * (p + 1) + p % 2, 16 + p / 2) = static_cast<uint16_t>(128 + blacks[p]);
            field.sample(p % 2, 20 + p / 2) = static_cast<uint16_t>(1024 + blacks[p]);
            field.sample(30 + p % 2, 30 + p / 2) = static_cast<uint16_t>(1023 + blacks[p]);
            warnings +=
                "Warning:" + std::string(colours[pattern][p]) + " channel data of raw image maybe wrong \n";
        }
        EXPECT_EQ(field.run(orvel), warnings);
        for (int table = 0; table < 4; ++table)
            for (int dark = 0; dark < 4; ++dark)
                EXPECT_EQ(field.gain(table, dark + 1, 1), dark == table ? 4096 : 1024) << table << dark;
    }
}

TEST(OrvelOtp, SamplesBelowTheirBlackLevelStayNegativeAndBrightOnesStopAt1023) {
    FlatField field(64, 64, 8);
    std::copy_n(blacks, 4, field.param.blc);
    field.param.filter_radius = 1;
    field.paint([&](int x, int y) { return 100 + blacks[plane_at(x, y)]; });
    field.sample(32, 32) = 0;
    field.run(orvel);
    EXPECT_EQ(field.gain(0, 2, 2), 1166); // 100 / ((8 * 100 - 10) / 9) * 1024 = 1166.58
    field.param.filter_radius = 0;
    field.paint([&](int x, int y) { return 341 + blacks[plane_at(x, y)]; });
    field.sample(32, 32) = 5000;
    field.run(orvel);
    EXPECT_EQ(field.gain(0, 0, 0), 3072); // 1023 / 341
}

TEST(OrvelOtp, TypesDifferInNodesGainsAndMessages) {
    const std::string line = "not support isp type!\n";
    const struct {
        int isp_type, unity, highest;
        std::string printed;
    } cases[] = {{0, 256, 1024, line}, {1, 1024, 4095, line},  {2, 1024, 16383, line},
                 {3, 1024, 16383, ""}, {4, 0, 0, line + line}, {255, 0, 0, line + line}};
    for (const auto& c : cases) {
        FlatField field(66, 80, 16, c.isp_type); // 33 columns: a node more for type 3
        EXPECT_EQ(field.grid_w, c.isp_type == 3 ? 4 : 3);
        field.sample(1, 32) = 0;
        EXPECT_EQ(field.run(orvel), c.printed) << c.isp_type;
        EXPECT_EQ(field.gain(1, 1, 1), c.unity) << c.isp_type;
        EXPECT_EQ(field.gain(1, 0, 1), c.highest) << c.isp_type;
        EXPECT_EQ(field.gain(1, 0, -1), c.isp_type == 3 ? 16383 : (4 * c.unity - 3 * c.highest) & 0xFFFF);
    }
}

// The sphere through both levels, found by its radius.
double cap_level(double peak, double share, double corner_distance, double distance) {
    const double drop = (1.0 - share) * peak;
    const double radius = (corner_distance * corner_distance + drop * drop) / (2.0 * drop);
    return peak - radius + std::sqrt(radius * radius - distance * distance);
}

TEST(OrvelOtp, TargetIsACapThroughTheGbPeakAndTheShareOfItAtTheCorners) {
    FlatField field(100, 80, 16);
    field.param.shading_percent = 60;
    field.param.bayer_pattern = 1; // Gb is plane 2
    field.paint([](int x, int y) { return plane_at(x, y) == 2 ? 20 : 80; });
    field.run(orvel);
    EXPECT_NEAR(field.gain(2, 0, 0), 614, 1);
    for (int j = 0; j < field.grid_h; ++j)
        for (int i = 0; i < field.grid_w; ++i) {
            // The last node stands one past the last sample: the image has 50 x 40.
            const double distance = std::hypot(std::min(16 * i, 50) - 25, std::min(16 * j, 40) - 20);
            const double gain = cap_level(20.0, 0.6, std::hypot(25, 20), distance) / 20.0 * 1024.0;
            for (int plane = 0; plane < 4; ++plane)
                EXPECT_NEAR(field.gain(plane, i, j), gain, 1.0) << i << ',' << j;
        }
}

TEST(OrvelOtp, FrameCorrectedWithItsOwnTablesIsFlat) {
    FlatField field(416, 320, 16);
    field.paint([](int x, int y) { // a corner keeps 0.59 of the centre
        return 600.0 * std::pow(std::cos(std::hypot(x / 2 - 104, y / 2 - 80) / 260.0), 4) + 0.5;
    });
    EXPECT_EQ(field.run(orvel), "");
    ASSERT_EQ(bicubic_lnc_correction_tvessa2(field.raw.data(), field.raw.data(), &field.param), 0);
    const auto [darkest, brightest] = std::minmax_element(field.raw.begin(), field.raw.end());
    EXPECT_GE(*darkest, 591);
    EXPECT_LE(*brightest, 609);
}

} // namespace
} // namespace zerklsc::testing
