#include "flat_field.h"

namespace zerklsc::testing {
namespace {

constexpr auto halvane = bicubic_lnc_param_gen_halvane;

// Blocks of 50 x 50 in a colour's image of 201 x 161: the centre, and corners with a mean of 5 / 4 *
// `corner`.
int patch_level(int x, int y, int centre, int corner) {
    if (x >= 75 && x < 125 && y >= 55 && y < 105)
        return centre;
    if ((x >= 50 && x < 151) || (y >= 50 && y < 111))
        return 7;
    return x < 50 && y < 50 ? 2 * corner : corner;
}

TEST(Halvane, CornerRatioIsSixteenTimesTheSmallestOfTheColoursWhoseCentreIsNotBlack) {
    const struct {
        int centres[4]; // by plane
        double ratio;   // of corners of 250
    } cases[] = {{{1000, 900, 920, 940}, 250.0 / 1000},
                 {{900, 1000, 920, 940}, 250.0 / 1000},
                 {{900, 920, 1000, 940}, 250.0 / 1000},
                 {{900, 920, 940, 1000}, 250.0 / 1000},
                 {{0, 900, 1000, 940}, 250.0 / 1000},
                 {{1000, 0, 0, 0}, 250.0 / 1000},
                 {{900, 1020, 0, 940}, 250.0 / 1020},
                 {{900, 940, 920, 0}, 250.0 / 940},
                 {{1, 1, 1, 1}, 250.0},
                 {{0, 0, 0, 0}, 0.0}};
    for (const auto& [centres, ratio] : cases) {
        FlatField field(402, 322, 20);
        field.paint(
            [&c = centres](int x, int y) { return patch_level(x / 2, y / 2, c[plane_at(x, y)], 200); });
        EXPECT_EQ(field.run(halvane), "");
        EXPECT_NEAR(field.param.corner_ratio, 16 * ratio, 1e-12);
    }
}

// 201 columns: the last sample is a node, so that both generators measure the same averages.
TEST(Halvane, BlendsTheMeasuredRatioWithThePercentage) {
    const int cases[][4] = {
        // centre, corner, percentage, percentage of the other generator
        {1000, 400, 50, 75},
        {1000, 160, 0, 20},
        {1000, 160, 100, 100},
        {500, 480, -1, 1}, // a ratio above 1 and 2^32 - 1 percent: far below the lower bound
        {0, 160, 50, 1}};  // a black centre
    for (const auto& [centre, corner, percent, same_as] : cases) {
        FlatField field(402, 322, 20), other(402, 322, 20);
        for (FlatField* f : {&field, &other})
            f->paint([c = centre, k = corner](int x, int y) { // only Gb counts: the others have another ratio
                return patch_level(x / 2, y / 2, plane_at(x, y) == 3 ? c : 333, k);
            });
        field.param.shading_percent = percent;
        other.param.shading_percent = same_as;
        field.run(halvane);
        other.run(bicubic_lnc_param_gen_orvel_otp);
        for (int i = 0; i < field.grid_w * field.grid_h; ++i)
            EXPECT_NEAR(field.gain(3, i % field.grid_w, i / field.grid_w),
                        other.gain(3, i % field.grid_w, i / field.grid_w), 1)
                << percent;
    }
}

TEST(Halvane, LastNodeOfARowIsExtendedToItsPlaceAndTheLargestAverageIsNot) {
    const int cases[][3] = {{206, 20, 220}, {202, 20, 200}, {200, 20, 200}, {202, 1, 200}};
    for (const auto& [width, step, expected] : cases) {
        FlatField field(width, 200, step);
        field.paint([](int x, int) { return 100 + x / 2; });
        EXPECT_EQ(field.run(halvane), "");
        EXPECT_EQ(field.gain(0, field.grid_w - 1, 0), (99 + width / 2) * 1024 / expected) << width;
    }
}

TEST(Halvane, ExtendedNodeThatIsNotAboveZeroWarnsOncePerRowAndColour) {
    FlatField field(206, 200, 20);
    field.paint([](int x, int) { return x / 2 == 102 ? 180 : 200; }); // falls to 0 at the node, 20 samples on
    std::string expected;
    for (int row = 0; row < 4 * field.grid_h; ++row)
        expected += "Warning:raw image data maybe wrong \n";
    EXPECT_EQ(field.run(halvane), expected);
    EXPECT_EQ(field.gain(0, field.grid_w - 1, 0), 16383);
}

TEST(Halvane, SharesTheMessagesOfTheTypes) {
    FlatField field(100, 100, 10, 4);
    EXPECT_EQ(field.run(halvane), "not support isp type!\nnot support isp type!\n");
}

} // namespace
} // namespace zerklsc::testing
