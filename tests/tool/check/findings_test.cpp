// Each check alone, of an analysis that is made by hand: what it finds is reckoned beside it.
#include <algorithm>
#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

#include "check/robust.h"
#include "flat.h"

namespace {

using namespace zerklsc::tool;

// The half sides of the frame, in half diagonals.
const double aspect = 148.0 / 198, half_w = 1 / std::sqrt(1 + aspect * aspect), half_h = aspect * half_w;

// A fall-off that the surface can follow, of a frame wide enough that not every tile is asked for and three
// are one cell.
TEST(Analysis, CellsAndWhatIsExpectedOfTiles) {
    const int columns = 107, rows = 61;
    RawFrame frame;
    frame.width = 16 * columns + 10;
    frame.height = 16 * rows + 6;
    frame.bits = 16;
    const BlackLevel black{600, 640, 680, 720};
    const double side_ratio = double(frame.height) / frame.width,
                 diagonal = std::hypot(frame.width, frame.height) / 2;
    // The logarithm of the light at a sample of a plane.
    const auto truth = [&](int plane, double x, double y) {
        const double u = (2 * x + 1 - frame.width / 2) / diagonal,
                     v = (2 * y + 1 - frame.height / 2) / diagonal;
        return 10 - 0.2 * plane - 0.9 * (std::pow(u - 0.05, 2) + std::pow(v + 0.03, 2))
               + std::log(1 + 0.08 * u - 0.05 * v);
    };
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x) {
            const int plane = plane_of_pixel(x, y);
            const bool dark = x < 48 && y >= frame.height - 54; // three tiles each way
            frame.samples.push_back(
                static_cast<uint16_t>(std::lround((dark ? 0.009 : 1) * std::exp(truth(plane, x / 2, y / 2))
                                                  + black[static_cast<size_t>(plane)])));
        }
    const Analysis analysis = analyse(frame, black);
    for (int p = 0; p < 4; ++p) {
        const PlaneAnalysis& plane = analysis.planes[static_cast<size_t>(p)];
        const LogCells& cells = plane.cells;
        ASSERT_EQ(cells.columns, 35);
        ASSERT_EQ(cells.rows, 20);
        EXPECT_EQ(plane.tile_side, 8);
        EXPECT_EQ(cells.aspect, side_ratio);
        std::vector<double> light;
        for (int j = 0; j < rows; ++j)
            for (int i = 0; i < columns; ++i) {
                const size_t at = analysis.tiles.index(i, j);
                const double expected = std::exp(truth(p, 8 * i + 3.5, 8 * j + 3.5));
                light.push_back(i < 3 && j > 57 ? 0 : expected);
                EXPECT_NEAR(plane.expected[at], expected, 0.004 * expected);
                EXPECT_NEAR(plane.rest[at], i < 3 && j > 57 ? -0.991 : 0, 0.004);
            }
        for (int j = 0; j < 20; ++j)
            for (int i = 0; i < 35; ++i) {
                // The middle of the tiles from 107 i / 35 to before 107 (i + 1) / 35.
                const double x = 4.0 * (107 * i / 35 + 107 * (i + 1) / 35) - 0.5,
                             y = 4.0 * (61 * j / 20 + 61 * (j + 1) / 20) - 0.5;
                const auto cell = static_cast<size_t>(j * 35 + i);
                EXPECT_NEAR(cells.u_at(i), (2 * x + 1 - frame.width / 2) / diagonal, 1e-9);
                EXPECT_NEAR(cells.v_at(j), (2 * y + 1 - frame.height / 2) / diagonal, 1e-9);
                if (i == 0 && j == 19)
                    EXPECT_EQ(cells.values[cell], no_light);
                else
                    EXPECT_NEAR(cells.values[cell], truth(p, x, y), 0.003) << i << " " << j;
                EXPECT_NEAR(plane.cell_rest[cell], 0, 0.003);
            }
        std::ranges::sort(light);
        EXPECT_NEAR(plane.bright, light[static_cast<size_t>(std::lround(0.9 * (107 * 61 - 1)))], 1);
        const double noise =
            std::sqrt(variance_at(plane.noise, plane.bright / 2 + black[static_cast<size_t>(p)]))
            / (plane.bright / 2) / 8;
        EXPECT_NEAR(plane.cell_noise, noise * std::sqrt(1.57 / (107 * 61 / 700.0)), 1e-9);
    }
}

TEST(DeadRegions, TilesWithoutLight) {
    Flat flat;
    FrameTiles& tiles = flat.analysis.tiles;
    // Less than a fifth of the 600 that are expected.
    tiles.planes[2].mean[tiles.index(7, 3)] = 68 + 119.9F;
    tiles.planes[2].mean[tiles.index(2, 5)] = 68 + 110.0F;
    tiles.planes[2].mean[tiles.index(0, 8)] = 68 + 120.1F;
    tiles.planes[1].mean[tiles.index(1, 0)] = 64 + 79.0F;
    flat.run(check_dead_regions);
    flat.expect("dead-area", 2, "R", "x 112, y 48:");
    flat.expect("gain", 600 / 110.0, "R", "gains end at 16");
    // Less than a hundredth of what is bright, whatever is expected.
    for (const auto& [column, row, light] :
         {std::tuple{11, 8, 4.9F}, {3, 1, 4.9F}, {10, 8, 4.9F}, {0, 7, 5.1F}}) {
        tiles.planes[0].mean[tiles.index(column, row)] = 60 + light;
        flat.analysis.planes[0].expected[tiles.index(column, row)] = 6;
    }
    flat.run(check_dead_regions);
    flat.expect("dead-area", 3, "Gb", "x 48, y 16:");
    flat.expect("gain", 500 / 4.9, "Gb", "");
    tiles.planes[3].mean[5] = 50;
    flat.run(check_dead_regions);
    flat.expect("gain", 9999, "Gr", "");
}

// 13 of the 25 outermost samples of a corner of one plane are dark; 12 would not count.
TEST(DeadRegions, DarkCorners) {
    const std::array<const char*, 4> names{"the top left corner", "the top right", "the bottom left",
                                           "the bottom right"};
    for (size_t corner = 0; corner < 4; ++corner)
        for (const int dark : {13, 12})
            for (const double part : {0.2, 0.55}) {
                Flat flat;
                const size_t plane = 3 - corner;
                const double full = Flat::light[plane], noise = std::sqrt(1.57 * Flat::variance[plane]) / 5;
                for (int k = 0; k < dark; ++k)
                    flat.set(plane, (corner & 1) != 0 ? 98 - k / 5 : k / 5,
                             (corner & 2) != 0 ? 73 - k % 5 : k % 5, part * full);
                // The light of the brightest tiles is above that of the corners; a barrel may darken them to
                // a quarter.
                flat.analysis.planes[plane].bright = 1.1 * full;
                flat.run(check_dead_regions);
                const double left = part + 4 * noise / full;
                if (dark == 13)
                    flat.expect("corner", 100 * std::max(left, std::min(left / 1.1 * 30 / 100 / 0.25, 0.6)),
                                Flat::colours[plane], names[corner]);
                else if (part < 0.5)
                    flat.expect("corner", 100, "Gb", "");
            }
}

TEST(DeadRegions, OutermostSamples) {
    // From the middle of the plane, in half diagonals.
    const auto r2 = [](double x, double y) {
        return (std::pow(x + 0.5 - 49.5, 2) + std::pow(y + 0.5 - 37, 2)) / (49.5 * 49.5 + 37 * 37);
    };
    for (const double slope : {0.0, -0.4}) {
        Flat flat;
        for (PlaneAnalysis& plane : flat.analysis.planes)
            plane.surface.radial[1] = slope;
        const double fall = std::exp(slope * 2 / 1.3 * (r2(0, 0) - r2(4, 4)));
        double part = 0, variance = 0;
        for (size_t plane = 0; plane < 4; ++plane) {
            const double light = std::array{-10.0, 100.0, 300.0, 75.0}[plane],
                         full = Flat::light[plane] * fall;
            flat.set(plane, 98, 0, light);
            part += std::max(light, 0.0) / full / 4;
            variance += Flat::variance[plane] / (full * full) / 16;
        }
        flat.run(check_dead_regions);
        flat.expect("corner", 100 * (part + 4 * std::sqrt(variance)), "Gb", "top right");
        // Dark samples beside it are a dead line, two of five not yet.
        flat.set(3, 96, 0, 100), flat.set(3, 95, 0, 100);
        flat.run(check_dead_regions);
        flat.expect("corner", 100 * (part + 4 * std::sqrt(variance)), "Gb", "top right");
        flat.set(3, 92, 0, 100);
        flat.run(check_dead_regions);
        flat.expect("corner", 100, "Gb", "");
    }
}

TEST(Brightness, NoiseAndLevels) {
    for (const size_t corner : {0U, 11U, 96U, 107U}) {
        Flat flat;
        flat.frame.white = 3000;
        flat.settings.radius = 3;
        for (PlaneAnalysis& plane : flat.analysis.planes)
            plane.expected[50] = 1; // no corner
        flat.analysis.planes[3].expected[corner] = 30;
        flat.analysis.tiles.planes[3].mean[corner] = 72 + 20;
        flat.run(check_brightness);
        // What there is counts where that is more than what the surface says.
        flat.expect("node-noise", 100 * 3.0 / 30 / 7, "Gr", "+- 1.4 %");
        flat.expect("exposure", 100 * 600.0 / (3000 - 68), "", "the capture is dark");
        flat.expect("plane-level", 100 * 300.0 / 600, "Gr", "Gr has hardly any light");
        flat.expect("noise", 100 * 5.0 / 400, "B", "no flat field");
        flat.analysis.tiles.planes[3].mean[corner] = 72 + 40;
        flat.run(check_brightness);
        flat.expect("node-noise", 100 * 3.0 / 40 / 7, "Gr", "");
    }
    // Too dark is refused where there is noise, and else samples of fewer bits.
    for (const double variance : {0.45, 0.44}) {
        Flat flat;
        flat.limits.set("exposure=90,80");
        flat.settings.radius = 0;
        for (PlaneAnalysis& plane : flat.analysis.planes)
            plane.noise = {{100, 0.01}};
        flat.analysis.planes[1].noise = {{100, std::pow(variance / 100 * 400 + 1e-6, 2)}};
        flat.run(check_brightness);
        EXPECT_EQ(flat.found("exposure").verdict, variance < 0.45 ? Verdict::warn : Verdict::refuse);
    }
}

TEST(Colours, GreensAndPattern) {
    struct {
        double gr, gb, r, b;
        bool shifted;
    } const cases[]{{515, 500, 400, 400, false},   {516, 500, 400, 400, true}, {500, 700, 400, 407.9, true},
                    {700, 500, 400, 408.2, false}, {500, 520, 405, 400, true}, {500, 520, 400, 405.4, false}};
    for (const auto& one : cases) {
        Flat flat;
        for (const auto& [plane, light] : {std::pair{0, one.gb}, {1, one.b}, {2, one.r}, {3, one.gr}})
            flat.analysis.planes[static_cast<size_t>(plane)].bright = light;
        flat.run(check_colours);
        flat.expect("green-balance", 100 * (std::max(one.gr, one.gb) / std::min(one.gr, one.gb) - 1), "",
                    "Gr and Gb");
        flat.expect("pattern", one.shifted ? 100 : 0, "", "--pattern");
    }
}

TEST(Light, SlopesAndPlanes) {
    Flat flat;
    const std::array<std::array<double, 2>, 4> slopes{{{0.1, 0.02}, {0.12, 0.02}, {0.08, -0.06}, {0.1, 0.1}}};
    for (size_t plane = 0; plane < 4; ++plane)
        flat.analysis.planes[plane].surface.light = slopes[plane];
    flat.run(check_light);
    const auto fall = [](double u, double v) {
        const double reach = std::abs(u) * half_w + std::abs(v) * half_h;
        return 100 * (1 - (1 - reach) / (1 + reach));
    };
    flat.expect("uneven-light", fall(0.1, 0.02), "", "brighter at the right:");
    flat.expect("plane-disagreement", 100 * std::hypot(0.02, 0.08), "R", "the same light");
    for (const auto& [u, v, side] :
         {std::tuple{0.01, -0.1, "top"}, {-0.1, 0.05, "left"}, {0.05, 0.06, "bottom"}}) {
        for (PlaneAnalysis& plane : flat.analysis.planes)
            plane.surface.light = {u, v};
        flat.run(check_light);
        flat.expect("uneven-light", fall(u, v), "", std::string("brighter at the ") + side);
        flat.expect("plane-disagreement", 0, "Gb", "");
    }
    EXPECT_EQ(fall_of_light({3, 0}, 1), 1);
}

TEST(Light, CentreEdgesAndRest) {
    Flat flat;
    // Plane 3 falls off least, about a centre beyond the points that are asked for the brightest.
    const double cx = 0.6, cy = -0.4, slope = -0.1;
    for (PlaneAnalysis& plane : flat.analysis.planes)
        plane.surface.radial[1] = -0.5;
    flat.analysis.planes[3].surface.radial[1] = slope;
    flat.analysis.planes[3].surface.centre = {cx, cy};
    flat.analysis.planes[1].surface.rest = {0, 0.003, -0.002, 0, 0.02, 0, 0, 0.01};
    flat.analysis.planes[1].surface.radial[1] = -1;
    flat.run(check_light);
    const auto lens = [&](double u, double v) {
        return slope * (2 * (std::pow(u - cx, 2) + std::pow(v - cy, 2)) / 1.3 - 1);
    };
    // In the corners it is no higher than where they begin.
    const auto corner = [&](double u, double v) {
        const double inward = 0.85 / std::hypot(u, v);
        return std::min(lens(u, v), lens(inward * u, inward * v));
    };
    const double u = 15.0 / 16 * half_w, v = 11.0 / 12 * half_h;
    const double edge = (corner(u, v) + corner(-u, v) + corner(u, -v) + corner(-u, -v)) / 4;
    flat.expect("fall-off", 100 * std::exp(edge - lens(5.0 / 16 * half_w, -3.0 / 12 * half_h)), "Gr", "");
    flat.expect("optical-centre", 100 * std::hypot(cx, cy) / (2 * half_w), "Gr", "");
    double largest = 0;
    for (int j = 0; j < 12; ++j)
        for (int i = 0; i < 16; ++i)
            if (const double x = (2 * i - 15) / 16.0 * half_w, y = (2 * j - 11) / 12.0 * half_h;
                std::hypot(x, y) <= 0.85)
                largest =
                    std::max(largest, std::abs(0.003 * x - 0.002 * y + 0.02 * x * y + 0.01 * x * x * y));
    flat.expect("asymmetry", 100 * largest, "B", "");
}

// The first of the cells that see most of a streak is named.
TEST(Scene, StreaksOfFlare) {
    struct {
        int x, y, dx, dy, count, column, row;
    } const cases[]{{3, 4, 1, 0, 5, 3, 4},  {5, 2, 0, 1, 5, 5, 2}, {3, 2, 1, 1, 5, 3, 2},
                    {3, 6, 1, -1, 5, 7, 2}, {0, 4, 1, 0, 3, 2, 4}, {9, 4, 1, 0, 3, 9, 4},
                    {5, 0, 0, 1, 3, 5, 2},  {5, 6, 0, 1, 3, 5, 6}, {0, 0, 1, 1, 3, 2, 2},
                    {2, 2, 1, -1, 3, 2, 2}, {9, 6, 1, 1, 3, 9, 6}, {7, 8, 1, -1, 3, 9, 6}};
    for (const auto& one : cases) {
        Flat flat;
        for (int k = 0; k < one.count; ++k)
            flat.cell(3, one.x + k * one.dx, one.y + k * one.dy) = 0.1F;
        flat.run(check_scene);
        flat.expect("flare", 100 * (0.1 - 3 * 0.01), "Gr",
                    "at " + std::to_string(100 * (2 * one.column + 1) / 24) + " % of the width, "
                        + std::to_string(100 * (2 * one.row + 1) / 18) + " %");
    }
    // Near the edge a third counts; two cells are no streak.
    Flat flat;
    for (int j = 2; j < 7; ++j)
        flat.cell(1, 0, j) = 0.3F;
    flat.cell(2, 6, 4) = flat.cell(2, 7, 4) = flat.cell(3, 6, 7) = flat.cell(3, 6, 8) = 5;
    flat.run(check_scene);
    flat.expect("flare", 100 * (0.3 - 0.03) / 3, "B", "at 4 % of the width, 27 %");
    EXPECT_EQ(flat.found("shadow").value, 0);
}

TEST(Scene, ShadowOfSixCells) {
    Flat flat;
    for (int j = 3; j < 6; ++j)
        for (int i = 4; i < 7; ++i) {
            flat.cell(1, i, j) = -0.2F;
            flat.cell(2, i, j) = -0.19F;
        }
    flat.cell(0, 0, 0) = flat.cell(0, 1, 0) = -0.9F; // of the corner alone
    flat.run(check_scene);
    flat.expect("shadow", 17, "B", "at 45 % of its width, 38 % of its height");
    EXPECT_EQ(flat.found("flare").value, 0);
}

TEST(Scene, RowsThatGoUpAndDown) {
    for (const int signs : {6, 5})
        for (const float low : {0.26F, 0.24F}) {
            Flat flat;
            const std::array<float, 4> depth{0.02F, 0.04F, 0.06F, 0.04F}; // 0.04 in the middle
            for (size_t plane = 0; plane < 4; ++plane)
                for (int j = 1; j <= signs; ++j)
                    for (int i = 0; i < 12; ++i)
                        flat.rest(plane, i, j) = i == 3 ? 9 : depth[plane] * (j % 2 == 0 ? 1 : -low);
            flat.run(check_scene);
            const bool periodic = signs == 6 && low > 0.25F;
            const double noise = 2 * 4 / 250.0 / 8 / std::sqrt(12);
            flat.expect("flicker", periodic ? 100 * (0.04 - 2 * noise) : 0, "", "without flicker");
            // The rows are no shadow of their own: cells without them would be.
            flat.expect("shadow", periodic ? 1 : 0, "Gb", "");
        }
}

TEST(Scene, StructureTextureAndGrain) {
    for (const bool turned : {false, true}) {
        Flat flat;
        for (size_t i = 0; i < 108; ++i)
            for (size_t plane = 0; plane < 4; ++plane) {
                PlaneTiles& tiles = flat.analysis.tiles.planes[plane];
                tiles.variance_h[i] = tiles.variance_v[i] = 100;
                if (plane == 2)
                    (turned ? tiles.variance_v : tiles.variance_h)[i] = 400;
            }
        // Blocks of 2 x 2 tiles; what is left over of an odd number of rows is not seen.
        for (int j = 0; j < 9; ++j)
            for (int i = 0; i < 12; ++i)
                flat.rest(3, i, j) = j == 8 ? 5
                                     : (i / 2 + j / 2) % 2 == 0
                                         ? 0.02F * static_cast<float>(i % 2 + 2 * (j % 2))
                                         : -0.03F;
        for (size_t plane = 0; plane < 4; ++plane) {
            flat.analysis.planes[plane].noise.resize(turned ? 8 : 7);
            double x = 100;
            for (NoisePoint& point : flat.analysis.planes[plane].noise) {
                const double response = std::array{0.03, 0.02, 0.04, 0.05}[plane];
                point = {x + flat.black[plane], 4 + 0.1 * x + response * response * x * x};
                x += 60;
            }
        }
        flat.run(check_scene);
        const double least = 0.1 + 2e-5 * 600 * 600, chance = std::exp(3 * 1.25 * std::sqrt(2.0 / 64 / 108));
        flat.expect("structure", std::sqrt((400 + least) / (100 + least)) / chance, "R", "");
        const auto noise = [&](double level) {
            return std::sqrt(variance_at(flat.analysis.planes[3].noise, level));
        };
        // The noise at the level of 372 is that of its 256th of full scale.
        const double times = 1.482602 * 0.03 / (noise(23.5 * 4095 / 256) / 16 / 300);
        flat.expect("texture", 100 * noise(210 + 72) / 210 / 16 * std::sqrt(times * times - 1.1), "Gr",
                    "a plain diffuser");
        if (turned)
            flat.expect("grain", 2, "", "a fine pattern");
        else
            EXPECT_TRUE(std::isnan(flat.found("grain").value));
    }
    // In fewer than 400 tiles nothing is said of soft shadows.
    for (const auto& [columns, rows] : {std::pair{25, 16}, {21, 19}}) {
        Flat flat(columns, rows);
        flat.limits = CheckLimits();
        flat.run(check_scene);
        EXPECT_EQ(std::isnan(flat.found("shadow").value), columns == 21);
        EXPECT_EQ(std::isnan(flat.found("texture").value), columns == 21);
    }
}

struct Line {
    double gain, off, first, last; // what is stated less what there is; levels above that
};

std::array<std::vector<NoisePoint>, 4> curves_of(const Flat& flat, const std::array<Line, 4>& lines) {
    std::array<std::vector<NoisePoint>, 4> curves;
    for (size_t plane = 0; plane < 4; ++plane)
        for (int k = 0; k < 20; ++k) {
            const auto& [gain, off, first, last] = lines[plane];
            const double x = first + (last - first) * k / 19;
            curves[plane].push_back({flat.black[plane] - off + x, gain * x});
        }
    return curves;
}

TEST(BlackLevel, WhereTheNoiseEnds) {
    const auto alike = [](Line line) { return std::array{line, line, line, line}; };
    struct {
        std::array<Line, 4> lines;
        double off; // no number where nothing is judged
        const char* level;
    } const cases[]{
        {alike({0.1, 20, 100, 600}), 20, "about 40:"},
        {alike({0.1, 14.5, 100, 600}), 14.5, "about 46:"},
        {alike({0.1, 14.3, 100, 600}), 0, "about"}, // read noise of 12 electrons
        {alike({0.1, -20, 100, 600}), 20, "about 80:"},
        {alike({0.1, 20, 299, 400}), 20, "about 40:"},
        {alike({0.1, 20, 301, 400}), std::nan(""), ""}, // less than a quarter of the light
        {alike({0.1, 20, 6.01, 600}), 20, "about 40:"},
        {alike({0.1, 20, 5.99, 600}), std::nan(""), ""}, // rounding alone
        {{{{0.1, 40, 100, 600}, {0.2, 60, 100, 600}, {0.3, 80, 100, 600}, {0.4, 100, 100, 600}}},
         80,
         "about -12:"},
        {{{{0.1, 40, 100, 600}, {0.2, 60, 100, 600}, {0.3, 80, 590, 600}, {0.4, 100, 590, 600}}},
         60,
         "about 4:"},
    };
    for (const auto& one : cases) {
        Flat flat;
        flat.run([&](const Judgement& judgement) {
            judge_black_level(judgement, curves_of(flat, one.lines), Pixels::unequal);
        });
        if (std::isnan(one.off))
            EXPECT_TRUE(std::isnan(flat.found("black-level").value));
        else
            flat.expect("black-level", 100 * one.off / (4095 - 60), "", one.level);
    }
    // A curve that pixels of unequal response bend ends at the stated level.
    Flat flat;
    auto curves = curves_of(flat, alike({0.1, 0, 100, 600}));
    for (size_t plane = 0; plane < 4; ++plane)
        for (NoisePoint& point : curves[plane])
            point.variance += std::pow(0.008 * (point.level - flat.black[plane]), 2);
    for (const Pixels pixels : {Pixels::unequal, Pixels::cancelled}) {
        flat.run([&](const Judgement& judgement) { judge_black_level(judgement, curves, pixels); });
        EXPECT_EQ(flat.found("black-level").value > 0.3, pixels == Pixels::cancelled);
    }
}

TEST(Saturation, ClustersAtTheWhiteLevel) {
    const auto rows_of = [](std::initializer_list<int> rows) {
        std::vector<std::array<int, 2>> samples;
        for (const int row : rows)
            for (int k = 0; k < 8; ++k)
                samples.push_back({k, row});
        return samples;
    };
    std::vector<std::array<int, 2>> column, crossing;
    for (int k = 0; k < 8; ++k)
        column.push_back({2, k});
    crossing = column;
    for (const int row : {0, 3, 7})
        crossing.push_back({6, row});
    const struct {
        std::vector<std::array<int, 2>> samples; // of a tile
        int counted;
    } cases[]{{{{1, 1}, {3, 2}, {6, 5}}, 3}, {{{1, 1}, {3, 2}}, 0}, {rows_of({5}), 0},          {column, 0},
              {rows_of({0, 3, 6}), 0},       {crossing, 3},         {rows_of({1, 2, 4, 7}), 32}};
    for (const auto& one : cases) {
        Flat flat;
        flat.frame.white = 1000;
        for (const auto& [i, j] : one.samples)
            flat.set(1, 8 * 7 + i, 8 * 2 + j, 1000 + i - 64.0);
        for (const int i : {4, 5, 6})
            flat.set(2, 8 * 5 + i, 9, 1000); // 1068
        flat.run(check_saturation);
        flat.expect("clipping", 100 * std::max(one.counted, 3) / (108.0 * 64), one.counted > 0 ? "B" : "R",
                    one.counted > 0 ? "samples of B, R are" : "samples of R are");
    }
}

// Of many samples, a heap is more than a five-thousandth: here 20.8.
TEST(Saturation, HeapsOfLargeFrames) {
    for (const int count : {21, 20}) {
        Flat flat(40, 40);
        for (int k = 0; k < count; ++k)
            flat.set(1, 80 + k % 7, 40 + k / 7, 500);
        for (int k = 0; k < 4; ++k)
            flat.set(1, k, 9, 490 + k);
        flat.run(check_saturation);
        flat.expect("plateau", count == 21 ? 100 * 21 / (1600.0 * 64) : 0, count == 21 ? "B" : "Gb", "");
    }
}

// Counts of values, from the highest on; those of a plane that are left are the lowest.
TEST(Saturation, HeapsBelowTheWhiteLevel) {
    using Counts = std::vector<std::pair<int, int>>;
    const auto beside_others = [](int at_760) {
        return Counts{{900, 7},   {800, 7}, {790, 7}, {780, 7}, {770, 7}, {760, at_760},
                      {700, 301}, {699, 9}, {698, 9}, {697, 9}, {696, 9}};
    };
    struct {
        Counts counts;
        double variance;
        int heap;
    } const cases[]{
        {{{700, 301}, {699, 100}, {698, 90}, {697, 80}, {690, 70}}, 0.6, 700},
        {{{700, 300}, {699, 100}, {698, 90}, {697, 80}, {690, 70}}, 0.6, 0},
        {{{700, 301}, {699, 100}, {698, 90}, {697, 80}, {690, 70}}, 0.4, 0},
        {{{700, 801}, {699, 90}, {698, 80}, {697, 100}, {690, 70}}, 0.4, 700},
        {{{700, 301}, {699, 80}, {698, 90}, {697, 80}, {690, 101}}, 0.6, 0},
        {beside_others(1), 0.6, 700},
        {beside_others(2), 0.6, 0},
        {{{700, 8}, {699, 2}, {698, 2}, {697, 1}, {669, 2}}, 0.6, 700},
        {{{700, 7}, {699, 2}, {698, 2}, {697, 1}, {669, 2}}, 0.6, 0},
    };
    for (const auto& one : cases) {
        Flat flat;
        flat.analysis.planes[2].noise = {{100, one.variance}};
        // Tile by tile, every fifth sample, so that no row is full.
        int at = 0, clustered = 0;
        std::array<int, 108> in_tiles{};
        for (const auto& [value, count] : one.counts)
            for (int k = 0; k < count; ++k, ++at) {
                const int tile = at / 64, place = at * 5 % 64;
                flat.set(2, tile % 12 * 8 + place % 8, tile / 12 * 8 + place / 8, value - 68.0);
                in_tiles[static_cast<size_t>(tile)] += value == one.heap ? 1 : 0;
            }
        for (const int count : in_tiles)
            clustered += count >= 3 ? count : 0;
        flat.run(check_saturation);
        flat.expect("plateau", 100 * clustered / (108.0 * 64), clustered > 0 ? "R" : "Gb",
                    clustered > 0 ? "saturates at 700:" : "");
    }
}

TEST(Series, DriftMovementAndTurnedLight) {
    Flat first, second;
    for (size_t plane = 0; plane < 4; ++plane)
        for (float& value : second.analysis.planes[plane].cells.values)
            value += std::log(std::array{1.01F, 0.95F, 1.03F, 1.02F}[plane]);
    const auto repeated = [&](const Judgement& judgement) {
        check_repetition(judgement, {second.frame, second.analysis});
    };
    second.frame.name = "again.pgm";
    // Of 108 cells the third from above is the one.
    for (const size_t cell : {5U, 60U})
        second.analysis.planes[2].cells.values[cell] += 0.3F;
    first.run(repeated);
    first.expect("movement", 0, "", "again.pgm differs in shading");
    second.analysis.planes[2].cells.values[100] -= 0.3F;
    first.analysis.planes[2].cells.values[7] = second.analysis.planes[2].cells.values[8] = no_light;
    first.analysis.planes[2].cells.values[8] = 77;
    first.run(repeated);
    first.expect("movement", 100 * (0.3 - 5 * 0.01), "", "");
    first.expect("drift", 5, "", "again.pgm differs in brightness");
    first.expect("duplicate", 1, "", "again.pgm is byte for byte");
    second.frame.samples.back() ^= 1;
    first.run(repeated);
    first.expect("duplicate", 0, "", "");
    // The slope of the light is half of that of the ratio, the mean of all planes; a few cells are spoilt.
    for (size_t plane = 0; plane < 4; ++plane) {
        LogCells& cells = first.analysis.planes[plane].cells;
        for (int j = 0; j < cells.rows; ++j)
            for (int i = 0; i < cells.columns; ++i)
                flat_at(cells, i, j) = flat_at(second.analysis.planes[plane].cells, i, j)
                                       + static_cast<float>(0.1 + (plane == 1 ? 0.24 : 0.16) * cells.u_at(i)
                                                            - 0.06 * cells.v_at(j))
                                       + (i == 3 && j > 5 ? 1.0F : 0.0F);
    }
    first.run([&](const Judgement& judgement) { check_turned(judgement, {second.frame, second.analysis}); });
    const double reach = 0.09 * half_w + 0.03 * half_h;
    first.expect("turned-light", 100 * (1 - (1 - reach) / (1 + reach)), "", "");
}

// Tables whose gains rise evenly from node to node, in each plane otherwise.
TEST(Reference, PlacementsAndPlanes) {
    struct {
        const char* name;
        bool left_right, top_bottom;
    } const placements[]{{"", false, false},
                         {"turned by 180", true, true},
                         {"mirrored left", true, false},
                         {"mirrored top", false, true}};
    GainTables tables;
    tables.raw_width = 198;
    tables.raw_height = 148;
    tables.step = 8;
    tables.pattern = BayerPattern::rggb; // R Gr Gb B
    tables.resize();
    const auto across = [](size_t plane) { return 40 + 30 * static_cast<int>(plane); };
    for (size_t plane = 0; plane < 4; ++plane)
        for (int j = 0; j < tables.table_height; ++j)
            for (int i = 0; i < tables.table_width; ++i)
                tables.gains[plane][static_cast<size_t>(j * tables.table_width + i)] =
                    static_cast<uint16_t>(1024 + across(plane) * i + 25 * j);
    const std::array<size_t, 4> same_colour{2, 3, 0, 1};
    for (const auto& placement : placements)
        for (const bool exchanged : {false, true}) {
            Flat flat;
            for (size_t plane = 0; plane < 4; ++plane) {
                LogCells& cells = flat.analysis.planes[plane].cells;
                const size_t of = exchanged && plane == 1 ? 2 : same_colour[plane];
                for (int j = 0; j < 9; ++j)
                    for (int i = 0; i < 12; ++i) {
                        const double x = (placement.left_right ? 11.5 - i : i + 0.5) / 12,
                                     y = (placement.top_bottom ? 8.5 - j : j + 0.5) / 9;
                        const double gain = 1024 + across(of) * (x * 99 / 8 + 1) + 25 * (y * 74 / 8 + 1);
                        flat_at(cells, i, j) = static_cast<float>(3 - std::log(gain));
                    }
            }
            flat_at(flat.analysis.planes[3].cells, 4, 4) = no_light;
            for (const int i : {2, 5, 7})
                flat_at(flat.analysis.planes[0].cells, i, 3) += i == 5 ? -0.9F : 0.9F;
            flat.run([&](const Judgement& judgement) { check_reference(judgement, tables); });
            const bool upright = !placement.left_right && !placement.top_bottom;
            if (upright && !exchanged)
                flat.expect("reference", 100 * (std::exp(0.9) - 1), "", "another lens");
            EXPECT_EQ(flat.found("orientation").value, !upright || exchanged ? 1 : 0);
            if (!exchanged)
                flat.expect("orientation", upright ? 0 : 1, "", placement.name);
        }
}

TEST(Defects, Counts) {
    Flat flat;
    Outliers outliers;
    outliers.samples = {{{1}, {}, {5, 6, 7}, {8, 9}}};
    outliers.rows = {{{3}, {}, {}, {4, 5}}};
    outliers.columns = {{{}, {7}, {}, {}}};
    outliers.dust_spots = {3, 9, 9, 1};
    flat.run([&](const Judgement& judgement) { check_defects(judgement, outliers); });
    flat.expect("dust", 9, "B", "clean");
    flat.expect("defects", 100 * 6 / (4.0 * 108 * 64), "", "6 samples stand out");
    flat.expect("dead-lines", 4, "", "whole rows");
    const KeptOut kept_out = count_of(outliers);
    EXPECT_EQ(kept_out.samples, 6);
    EXPECT_EQ(kept_out.lines, 4);
    EXPECT_EQ(kept_out.dust_spots, 22);
    EXPECT_TRUE(outliers.any());
    EXPECT_FALSE(Outliers().any());
}

} // namespace
