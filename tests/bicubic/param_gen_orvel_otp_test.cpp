#include <cmath>
#include <limits>

#include "flat_field.h"
#include "support/allocations.h"

namespace zerklsc::testing {
namespace {

constexpr auto orvel = bicubic_lnc_param_gen_orvel_otp;

TEST(OrvelOtp, FlatFieldHasUnityGainEverywhere) {
    for (const Against side : {Against::front, Against::back}) {
        FlatField field(97, 83, 16, 3, side);
        field.param.filter_radius = 5;
        EXPECT_EQ(field.run(orvel), "");
        EXPECT_TRUE(field.all_tables_are(1024));
    }
}

TEST(OrvelOtp, ClippedSamplesWarnInRasterOrderByTheColourOfTheirPosition) {
    // By Bayer pattern, in raster order of the cell.
    const char* const colours[4][4] = {
        {"Gr", "R", "B", "Gb"}, {"R", "Gr", "Gb", "B"}, {"B", "Gb", "Gr", "R"}, {"Gb", "B", "R", "Gr"}};
    for (uint8_t pattern = 0; pattern < 4; ++pattern) {
        FlatField field(64, 64, 8);
        field.param.bayer_pattern = pattern;
        const uint8_t blacks[4] = {1, 2, 3, 4};
        std::copy_n(blacks, 4, field.param.blc);
        std::string expected;
        for (int position = 0; position < 4; ++position) {
            field.sample(20 + position % 2, 20 + position / 2) =
                static_cast<uint16_t>(1024 + blacks[position]);
            field.sample(30 + position % 2, 30) = static_cast<uint16_t>(1023 + blacks[position % 2]);
            expected += "Warning:" + std::string(colours[pattern][position])
                        + " channel data of raw image maybe wrong \n";
        }
        EXPECT_EQ(field.run(orvel), expected);
    }
}

TEST(OrvelOtp, EveryPositionReachesTheTableThatTheCorrectionsReadForIt) {
    for (uint8_t pattern = 0; pattern < 4; ++pattern) {
        FlatField field(80, 64, 8);
        field.param.bayer_pattern = pattern;
        for (int position = 0; position < 4; ++position)
            field.sample(16 * (position + 1) + position % 2, 16 + position / 2) = 125;
        field.run(orvel);
        for (int table = 0; table < 4; ++table)
            for (int dark = 0; dark < 4; ++dark)
                EXPECT_EQ(field.gain(table, dark + 1, 1), dark == table ? 4096 : 1024) << table << dark;
    }
}

TEST(OrvelOtp, SamplesLoseTheirBlackLevelStayNegativeAndStopAt1023) {
    FlatField field(64, 64, 8);
    const uint8_t blacks[4] = {10, 20, 30, 40};
    std::copy_n(blacks, 4, field.param.blc);
    field.param.filter_radius = 1;
    field.paint([&](int x, int y) { return 100 + blacks[position_of(x, y)]; });
    field.sample(32, 32) = 0;
    field.run(orvel);
    EXPECT_EQ(field.gain(0, 2, 2), 1166); // 100 / ((8 * 100 - 10) / 9) * 1024 = 1166.58
    EXPECT_EQ(field.gain(3, 2, 2), 1024);

    field.param.filter_radius = 0;
    field.paint([&](int x, int y) { return 341 + blacks[position_of(x, y)]; });
    field.sample(32, 32) = 5000;
    field.run(orvel);
    EXPECT_EQ(field.gain(0, 2, 2), 1024);
    EXPECT_EQ(field.gain(0, 0, 0), 3072); // 1023 / 341
}

TEST(OrvelOtp, NodeBeyondTheImageIsMeasuredAtTheLastSample) {
    FlatField field(40, 40, 8);
    field.paint([](int x, int y) { return (x >= 38 ? 250 : 500) / (y >= 38 ? 2 : 1); });
    field.run(orvel);
    EXPECT_EQ(field.gain(1, 2, 2), 1024);
    EXPECT_EQ(field.gain(1, 3, 2), 2048);
    EXPECT_EQ(field.gain(1, 3, 3), 4096);
}

TEST(OrvelOtp, OddLastColumnAndRowAreNotRead) {
    FlatField field(49, 51, 8);
    field.paint([](int x, int y) { return x == 48 || y == 50 ? 60000 : 300; });
    EXPECT_EQ(field.run(orvel), "");
    EXPECT_TRUE(field.all_tables_are(1024));
}

TEST(OrvelOtp, TypesDifferInNodesGainsAndMessages) {
    const std::string line = "not support isp type!\n";
    const struct {
        int isp_type, unity, highest;
        std::string printed;
    } cases[] = {{0, 256, 1024, line}, {1, 1024, 4095, line},  {2, 1024, 16383, line},
                 {3, 1024, 16383, ""}, {4, 0, 0, line + line}, {255, 0, 0, line + line}};
    for (const auto& c : cases) {
        FlatField field(66, 80, 16, c.isp_type); // 33 columns: type 3 has a node more
        EXPECT_EQ(field.grid_w, c.isp_type == 3 ? 4 : 3);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 2; ++x)
                field.sample(x, 32 + y) = 0;
        EXPECT_EQ(field.run(orvel), c.printed) << c.isp_type;
        if (c.isp_type >= 4)
            continue;
        EXPECT_EQ(field.gain(1, 1, 1), c.unity) << c.isp_type;
        EXPECT_EQ(field.gain(1, 0, 1), c.highest) << c.isp_type;
        EXPECT_EQ(field.gain(1, 0, -1), c.isp_type == 3 ? 16383 : (4 * c.unity - 3 * c.highest) & 0xFFFF);
    }
}

// The sphere through both levels, by its radius: another way to the same surface.
double cap_level(double peak, double share, double corner_distance, double distance) {
    const double drop = (1.0 - share) * peak;
    const double radius = (corner_distance * corner_distance + drop * drop) / (2.0 * drop);
    return peak - radius + std::sqrt(radius * radius - distance * distance);
}

TEST(OrvelOtp, TargetIsACapThroughTheGbPeakAndTheShareOfItAtTheCorners) {
    FlatField field(100, 80, 16);
    field.param.shading_percent = 60;
    field.param.bayer_pattern = 1; // Gb at position 2
    field.paint([](int x, int y) { return position_of(x, y) == 2 ? 20 : 80; });
    field.run(orvel);
    for (int j = 0; j < field.grid_h; ++j)
        for (int i = 0; i < field.grid_w; ++i) {
            // The last node stands one past the last sample: the image has 50 x 40.
            const double dx = std::min(16 * i, 50) - 25, dy = std::min(16 * j, 40) - 20;
            const double share = cap_level(20.0, 0.6, std::hypot(25, 20), std::hypot(dx, dy)) / 20.0;
            for (int position = 0; position < 4; ++position)
                EXPECT_NEAR(field.gain(position, i, j), 1024.0 * share, 1.0) << i << ',' << j;
        }
    EXPECT_NEAR(field.gain(2, 0, 0), 614, 1);
}

TEST(OrvelOtp, RefusesBeforeAnythingIsPrintedOrWritten) {
    void (*const spoil[])(FlatField&) = {
        [](FlatField& f) { f.param.bayer_pattern = 4; },
        [](FlatField& f) { f.param.grid = 0x300; },
        [](FlatField& f) { f.param.grid = 33; },
        [](FlatField& f) { f.param.filter_radius = 24; },
        [](FlatField& f) { f.param.filter_radius = -1; },
        [](FlatField& f) { f.param.filter_radius = std::numeric_limits<int32_t>::min(); },
        [](FlatField& f) { f.param.filter_radius = std::numeric_limits<int32_t>::max(); },
        [](FlatField& f) { f.param.lsc_table[2] = nullptr; },
        [](FlatField& f) { f.param.width = 1; },
        [](FlatField& f) { f.param.height = 0; },
    };
    for (const auto change : spoil) {
        FlatField field(64, 48, 8, 0);
        field.sample(3, 3) = 2000;
        change(field);
        EXPECT_EQ(field.run(orvel, -1), "");
        EXPECT_TRUE(field.all_tables_are(untouched));
    }
    FlatField field(64, 48, 8);
    EXPECT_EQ(orvel(nullptr, &field.param), -1);
    EXPECT_EQ(orvel(field.raw.data(), nullptr), -1);
    field.param.filter_radius = 23; // the widest margin: mirrored from the far edge
    field.run(orvel);
    EXPECT_TRUE(field.all_tables_are(1024));
}

TEST(OrvelOtp, FailedAllocationTouchesNothingAndNothingIsLeftBehind) {
    for (size_t n = 0;; ++n) {
        FlatField field(64, 48, 8);
        field.sample(3, 3) = 2000;
        ::testing::internal::CaptureStdout();
        AllocationScope heap(n);
        const int32_t status = orvel(field.raw.data(), &field.param);
        const std::vector<size_t> leftovers = heap.leftovers();
        const bool printed = !::testing::internal::GetCapturedStdout().empty();
        EXPECT_TRUE(leftovers.empty());
        EXPECT_EQ(status, heap.failed() ? -1 : 0);
        EXPECT_EQ(field.all_tables_are(untouched), heap.failed());
        EXPECT_EQ(printed, !heap.failed());
        if (!heap.failed())
            break;
    }
}

} // namespace
} // namespace zerklsc::testing
