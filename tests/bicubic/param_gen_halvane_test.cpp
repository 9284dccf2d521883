#include <utility>
#include <vector>

#include "flat_field.h"

namespace zerklsc::testing {
namespace {

constexpr auto halvane = bicubic_lnc_param_gen_halvane;

// Levels of the 50 x 50 blocks of one colour, whose image has 201 x 161 samples; 7 everywhere else.
int patch_level(int x, int y, int centre, int corner) {
    const bool middle = x >= 75 && x < 125 && y >= 55 && y < 105;
    const bool outside = (x < 50 || x >= 151) && (y < 50 || y >= 111);
    const int top_left = x < 50 && y < 50 ? corner : 0;
    return middle ? centre : outside ? corner + top_left : 7;
}

TEST(Halvane, CornerRatioIsSixteenTimesTheSmallestOfTheFourColours) {
    const std::pair<int, double> cases[] = {{800, 16 * 250.0 / 1000}, {1020, 16 * 250.0 / 1020}, {0, 0.0}};
    for (const auto& [centre, ratio] : cases) {
        FlatField field(402, 322, 20);
        // The corners are 400, 200, 200 and 200.
        field.paint([&, level = centre](int x, int y) {
            return patch_level(x / 2, y / 2,
                               position_of(x, y) == 1   ? level
                               : position_of(x, y) == 2 ? 1000
                                                        : 900,
                               200);
        });
        EXPECT_EQ(field.run(halvane), "");
        EXPECT_NEAR(field.param.corner_ratio, ratio, 1e-12);
    }
}

// 201 columns: the last sample is a node, so that both generators measure the same averages.
TEST(Halvane, BlendsTheMeasuredRatioWithThePercentage) {
    const struct {
        int centre, corner, percent, same_as;
    } cases[] = {
        {1000, 500, 50, 75}, // (1 - 0.5) * 0.5 + 0.5
        {1000, 200, 0, 20},  // as measured
        {1000, 200, 100, 100},
        {500, 600, -1, 1}, // above 1, and a percentage of 2^32 - 1: far below the lower bound
        {0, 160, 50, 1},   // black centre
    };
    for (const auto& c : cases) {
        FlatField field(402, 322, 20);
        field.paint([&](int x, int y) { return patch_level(x / 2, y / 2, c.centre, c.corner / 5 * 4); });
        FlatField direct(402, 322, 20);
        std::copy(field.raw.begin(), field.raw.end(), direct.raw.begin());
        field.param.shading_percent = c.percent;
        direct.param.shading_percent = c.same_as;
        field.run(halvane);
        direct.run(bicubic_lnc_param_gen_orvel_otp);
        for (int j = 0; j < field.grid_h; ++j)
            for (int i = 0; i < field.grid_w; ++i)
                EXPECT_NEAR(field.gain(2, i, j), direct.gain(2, i, j), 1)
                    << c.percent << ' ' << i << ',' << j;
    }
}

TEST(Halvane, LastNodeOfARowIsExtendedAndItsLargestAverageIsNot) {
    FlatField field(206, 200, 20); // 103 columns: the last is 2 samples behind the last node but one
    field.paint([](int x, int) { return 100 + x / 2; });
    EXPECT_EQ(field.run(halvane), "");
    EXPECT_EQ(field.gain(0, 5, 0), 202 * 1024 / 200);
    EXPECT_EQ(field.gain(0, 6, 0), 202 * 1024 / 220);

    field.paint([](int x, int) { return x / 2 == 102 ? 180 : 200; }); // falls to 0 at the node
    std::string expected;
    for (int row = 0; row < 4 * field.grid_h; ++row)
        expected += "Warning:raw image data maybe wrong \n";
    EXPECT_EQ(field.run(halvane), expected);
    EXPECT_EQ(field.gain(0, 6, 0), 16383);
}

TEST(Halvane, SharesTheMessagesOfItsTypesAndRefusesSmallImages) {
    FlatField field(100, 100, 10, 4);
    EXPECT_EQ(field.run(halvane), "not support isp type!\nnot support isp type!\n");
    EXPECT_DOUBLE_EQ(field.param.corner_ratio, 16.0);
    for (const auto& [width, height] : {std::pair{99, 100}, std::pair{100, 99}}) {
        FlatField small(width, height, 10);
        small.sample(0, 0) = 2000;
        small.param.corner_ratio = 5.0;
        EXPECT_EQ(small.run(halvane, -1), "");
        EXPECT_TRUE(small.all_tables_are(untouched));
        EXPECT_EQ(small.param.corner_ratio, 5.0);
    }
}

} // namespace
} // namespace zerklsc::testing
