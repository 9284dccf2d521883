// What the checks of a flat field estimate, against what is known because it was put in.
#include <cmath>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

#include "check/least_squares.h"
#include "check/lens_surface.h"
#include "check/noise.h"
#include "check/robust.h"
#include "check/tiles.h"

namespace {

using namespace zerklsc::tool;

TEST(Robust, MedianAndDeviationIgnoreWildValues) {
    std::mt19937 engine(3);
    std::normal_distribution<float> normal(20, 3);
    std::vector<float> values(4000);
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = i % 10 == 0 ? 1e6F : normal(engine);
    std::vector<float> copy = values;
    const double middle = median_of(copy);
    EXPECT_NEAR(middle, 20.4, 0.3); // a tenth of the values lies above all others
    EXPECT_NEAR(deviation_from(values, middle), 3.4, 0.3);
    std::vector<float> even{4, 1, 3, 8}, odd{9, 1, 5, 4, 2}, none;
    EXPECT_EQ(median_of(even), 3.5);
    EXPECT_EQ(median_of(odd), 4);
    EXPECT_EQ(median_of(none), 0);
    EXPECT_EQ(quantile_of(none, 0.5), 0);
    EXPECT_EQ(quantile_of(odd, 0.75), 5);
    EXPECT_EQ(quantile_of(odd, 1), 9);
    EXPECT_NEAR(deviation_from(odd, 3), 1.482602 * 2, 1e-6);
    EXPECT_NEAR(biweight(0.5), 9.0 / 16, 1e-12);
    EXPECT_EQ(biweight(-1.01), 0);
}

TEST(LeastSquares, WeightsHoldsAndDamping) {
    // (x - 2)^2 + 2 (y - 5)^2 + (x + y - 10)^2, of a third unknown nothing.
    NormalEquations<3> equations;
    equations.add({1, 0, 0}, 2, 1);
    equations.add({0, 1, 0}, 5, 2);
    equations.add({1, 1, 0}, 10, 1);
    const auto expect = [&](double x, double y) {
        EXPECT_NEAR(equations.solve()[0], x, 1e-12);
        EXPECT_NEAR(equations.solve()[1], y, 1e-12);
        EXPECT_EQ(equations.solve()[2], 0);
    };
    expect(16.0 / 5, 28.0 / 5);
    equations.hold(0, 4, 2);
    expect(40.0 / 11, 60.0 / 11);
    equations.damp(0.5);
    expect(70.0 / 26, 100.0 / 26);
    NormalEquations<4> full;
    const std::array<double, 4> solution{1, -2, 3, 0.5};
    for (int k = 0; k < 7; ++k) {
        const std::array<double, 4> row{1, 0.3 * k, std::sin(k), k % 3 - 1.0};
        full.add(row, std::inner_product(row.begin(), row.end(), solution.begin(), 0.0), 1 + k);
    }
    for (size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(full.solve()[i], solution[i], 1e-9);
}

// Samples at random on a slope, tile by tile; in two sizes the tiles are smaller.
TEST(Tiles, EachIsWhatItsSamplesAre) {
    struct {
        int width, height, side;
    } const sizes[]{{2 * 8 * 10 + 6, 2 * 8 * 9 + 4, 8},
                    {2 * 37, 2 * 50, 4},
                    {62, 40, 2},
                    {2 * 64, 2 * 64, 8},
                    {2 * 63, 2 * 64, 4}};
    for (const auto& size : sizes) {
        RawFrame frame;
        frame.width = size.width;
        frame.height = size.height;
        std::mt19937 engine(5);
        for (int y = 0; y < frame.height; ++y)
            for (int x = 0; x < frame.width; ++x)
                frame.samples.push_back(static_cast<uint16_t>(500 + 300 * plane_of_pixel(x, y) + 9 * (x / 2)
                                                              + 5 * (y / 2)
                                                              + static_cast<int>(engine() % 40)));
        const FrameTiles tiles = measure_tiles(frame);
        const int side = tiles.side;
        ASSERT_EQ(side, size.side);
        ASSERT_EQ(tiles.columns, size.width / 2 / side);
        ASSERT_EQ(tiles.rows, size.height / 2 / side);
        EXPECT_EQ(tiles.across, size.width / 2.0 / side);
        EXPECT_EQ(tiles.down, size.height / 2.0 / side);
        EXPECT_EQ(tiles.samples(), tiles.columns * tiles.rows * side * side);
        for (int p = 0; p < 4; ++p) {
            const auto sample = [&](int x, int y) {
                return static_cast<int>(frame.at(2 * x + p % 2, 2 * y + p / 2));
            };
            // Sums over columns of what `of` says.
            const auto sum = [](int first, int last, auto&& of) {
                double total = 0;
                for (int k = first; k < last; ++k)
                    total += of(k);
                return total;
            };
            const auto in_tile = [&](int i, int j, auto&& of) {
                return sum(j * side, (j + 1) * side, [&](int y) {
                    return sum(i * side, (i + 1) * side, [&](int x) { return of(x, y); });
                });
            };
            const auto mean = [&](int i, int j) { return in_tile(i, j, sample) / (side * side); };
            const auto without = [](double squares, double slope) {
                return std::max(squares - slope * slope / 2, squares / 10);
            };
            const PlaneTiles& plane = tiles.planes[static_cast<size_t>(p)];
            for (int j = 0; j < tiles.rows; ++j)
                for (int i = 0; i < tiles.columns; ++i) {
                    const size_t at = tiles.index(i, j);
                    const int left = std::max(i - 1, 0), right = std::min(i + 1, tiles.columns - 1);
                    const int top = std::max(j - 1, 0), bottom = std::min(j + 1, tiles.rows - 1);
                    const double across = in_tile(i, j, [&](int x, int y) {
                        return x % 2 == 0 ? std::pow(sample(x, y) - sample(x + 1, y), 2) : 0;
                    });
                    const double down = in_tile(i, j, [&](int x, int y) {
                        return y % 2 == 0 ? std::pow(sample(x, y) - sample(x, y + 1), 2) : 0;
                    });
                    EXPECT_NEAR(plane.mean[at], mean(i, j), 0.01);
                    EXPECT_NEAR(plane.variance_h[at],
                                without(across / (side * side),
                                        (mean(right, j) - mean(left, j)) / (right - left) / side),
                                0.5);
                    EXPECT_NEAR(plane.variance_v[at],
                                without(down / (side * side),
                                        (mean(i, bottom) - mean(i, top)) / (bottom - top) / side),
                                0.5);
                    int lowest = 65535, highest = 0;
                    in_tile(i, j, [&](int x, int y) {
                        return lowest = std::min(lowest, sample(x, y)),
                               highest = std::max(highest, sample(x, y));
                    });
                    EXPECT_EQ(plane.darkest[at], lowest);
                    EXPECT_EQ(plane.brightest[at], highest);
                }
            const int w = tiles.columns * side, h = tiles.rows * side;
            ASSERT_EQ(plane.row_means.size(), static_cast<size_t>(h));
            ASSERT_EQ(plane.column_means.size(), static_cast<size_t>(w));
            for (int y = 0; y < h; ++y)
                EXPECT_NEAR(plane.row_means[static_cast<size_t>(y)],
                            sum(0, w, [&](int x) { return sample(x, y); }) / w, 0.01);
            for (int x = 0; x < w; ++x)
                EXPECT_NEAR(plane.column_means[static_cast<size_t>(x)],
                            sum(0, h, [&](int y) { return sample(x, y); }) / h, 0.01);
        }
    }
}

TEST(Tiles, HistogramOfAPlane) {
    RawFrame frame;
    frame.width = 6;
    frame.height = 8;
    for (int k = 0; k < 48; ++k)
        frame.samples.push_back(static_cast<uint16_t>(k == 47 ? 65535 : k));
    for (int plane = 0; plane < 4; ++plane)
        for (const int step : {1, 2, 3}) {
            std::vector<uint32_t> expected(65536);
            for (int y = plane / 2; y < 8; y += 2 * step)
                for (int x = plane % 2; x < 6; x += 2)
                    ++expected[frame.at(x, y)];
            EXPECT_EQ(histogram_of(frame, plane, step), expected) << plane << " " << step;
        }
}

TEST(Noise, CurveOfTheTiles) {
    // Chi-square of 64 degrees of freedom: its median is a little below its mean.
    const double part = std::pow(1 - 2.0 / (9 * 64), 3);
    for (const auto& [count, classes] : {std::pair{480, 24}, {383, 23}, {100, 6}, {5, 1}}) {
        PlaneTiles tiles, difference;
        for (int k = 0; k < count; ++k) {
            const auto level = static_cast<float>(k * 7 % count); // each once
            tiles.mean.push_back(level);
            tiles.variance_h.push_back(2 * level);
            tiles.variance_v.push_back(4 * level);
            difference.variance_h.push_back(7 * level);
            difference.variance_v.push_back(9 * level);
        }
        const auto curve = photon_transfer(tiles, 8), pair = photon_transfer(tiles, difference, 8);
        ASSERT_EQ(curve.size(), static_cast<size_t>(classes));
        for (int k = 0; k < classes; ++k) {
            const double middle = (count * k / classes + count * (k + 1) / classes - 1) / 2.0;
            EXPECT_NEAR(curve[static_cast<size_t>(k)].level, middle, 1e-4);
            EXPECT_NEAR(curve[static_cast<size_t>(k)].variance, 3 * middle / part, 1e-3);
            EXPECT_NEAR(pair[static_cast<size_t>(k)].variance, 4 * middle / part, 1e-3);
        }
    }
    const std::vector<NoisePoint> curve{{100, 4}, {200, 9}, {260, 36}};
    for (const auto& [level, variance] : {std::pair{50.0, 4.0},
                                          {100.0, 4.0},
                                          {160.0, 7.0},
                                          {200.0, 9.0},
                                          {240.0, 27.0},
                                          {260.0, 36.0},
                                          {900.0, 36.0}})
        EXPECT_NEAR(variance_at(curve, level), variance, 1e-9);
    // In 256 classes of four levels each.
    const DeviationTable table(curve, 1024);
    for (const auto& [level, middle] : {std::pair{-5.0F, 2.0},
                                        {99.9F, 98.0},
                                        {100.1F, 102.0},
                                        {201.0F, 202.0},
                                        {243.9F, 242.0},
                                        {1023.0F, 1022.0},
                                        {9000.0F, 1026.0}})
        EXPECT_NEAR(table.at(level), std::sqrt(variance_at(curve, middle)), 1e-5) << level;
    EXPECT_NEAR(DeviationTable({{1, 0.05}}, 1024).at(7), std::sqrt(0.1), 1e-6);
    EXPECT_TRUE(fits_as_well(0.1319, 0.1, 12));
    EXPECT_FALSE(fits_as_well(0.1321, 0.1, 12));
}

// The error that is told of the black level is that of many curves at random.
TEST(Noise, ErrorOfTheBlackLevel) {
    std::mt19937 engine(7);
    std::normal_distribution<double> normal(1, 0.05);
    double squares = 0, told = 0;
    for (int round = 0; round < 2000; ++round) {
        std::vector<NoisePoint> curve;
        for (int k = 0; k < 9; ++k)
            curve.push_back({64 + 100 + 40.0 * k, 0.3 * (100 + 40.0 * k) * normal(engine)});
        const auto line = fit_noise_line(curve);
        squares += std::pow(line->black - 64, 2) / 2000;
        told += std::pow(line->black_error, 2) / 2000;
        curve.resize(round % 2 == 0 ? 7 : 8);
        EXPECT_EQ(fit_noise_line(curve).has_value(), round % 2 == 1);
    }
    EXPECT_NEAR(told / squares, 7.0 / 9, 0.12); // two of nine degrees of freedom are fitted
}

TEST(Noise, LineEndsAtTheBlackLevelAndParabolaTellsTheResponse) {
    std::vector<NoisePoint> line, bent;
    for (int k = 0; k < 20; ++k) {
        const double x = 150 + 30 * k;
        line.push_back({64 + x, 0.17 * x});
        bent.push_back({64 + x, 0.17 * x + 0.02 * 0.02 * x * x});
    }
    const auto found = fit_noise_line(line);
    ASSERT_TRUE(found.has_value());
    EXPECT_NEAR(found->black, 64, 0.01);
    EXPECT_NEAR(found->gain, 0.17, 1e-4);
    const NoiseParabola parabola = fit_noise_parabola(bent, 64);
    EXPECT_NEAR(std::sqrt(parabola.response), 0.02, 1e-4);
    EXPECT_NEAR(parabola.gain, 0.17, 1e-3);
    EXPECT_NEAR(response_of(bent, 64), 0.02, 1e-4);
    EXPECT_EQ(response_of(line, 64), 0);
    EXPECT_NEAR(variance_at(line, 64 + 165), 0.17 * 165, 1e-9);
    std::vector<NoisePoint> falling;
    for (const NoisePoint& p : line)
        falling.push_back({p.level, 200 - p.variance});
    EXPECT_FALSE(fit_noise_line(falling).has_value());
}

LogCells cells_of(int columns, int rows, auto&& value) {
    LogCells cells;
    cells.columns = columns;
    cells.rows = rows;
    cells.aspect = 0.75;
    for (int i = 0; i < columns; ++i)
        cells.u.push_back(u_of(i, columns, 0.75));
    for (int j = 0; j < rows; ++j)
        cells.v.push_back(v_of(j, rows, 0.75));
    for (int j = 0; j < rows; ++j)
        for (int i = 0; i < columns; ++i)
            cells.values.push_back(static_cast<float>(value(i, j, cells.u_at(i), cells.v_at(j))));
    return cells;
}

// The centre and the slope of the light are told apart, also where a tenth of the frame is dark.
TEST(LensSurface, FindsTheCentreAndTheLight) {
    for (const bool shaded : {false, true}) {
        const auto truth = [](double u, double v) {
            const double r2 = (u - 0.07) * (u - 0.07) + (v + 0.04) * (v + 0.04);
            return 6 - 2 * std::log(1 + 0.55 * r2) + std::log(1 - 0.11 * u + 0.05 * v);
        };
        const LensSurface surface = fit_lens_surface(cells_of(36, 27, [&](int i, int j, double u, double v) {
            return truth(u, v) - (shaded && i < 9 && j < 10 ? 0.5 : 0);
        }));
        EXPECT_NEAR(surface.centre[0], 0.07, 0.0015);
        EXPECT_NEAR(surface.centre[1], -0.04, 0.0015);
        EXPECT_NEAR(surface.light[0], -0.11, 0.0025);
        EXPECT_NEAR(surface.light[1], 0.05, 0.0025);
        EXPECT_NEAR(surface.at(0.5, 0.3), truth(0.5, 0.3), 1e-4);
    }
}

// 24 cells are the fewest for a fit, and 60 for a rest that is no lens's.
TEST(LensSurface, FewCells) {
    const auto at = [](double u, double v) { return 5 + 0.1 * u * v + 0.03 * u * u * v; };
    struct Cells {
        int columns, rows, dark;
    };
    for (const Cells& c : {Cells{6, 4, 0}, {6, 4, 1}, {10, 6, 0}, {10, 6, 1}, {30, 20, 7}}) {
        const LensSurface surface =
            fit_lens_surface(cells_of(c.columns, c.rows, [&](int i, int j, double u, double v) {
                return j * c.columns + i < c.dark ? static_cast<double>(no_light) : at(u, v);
            }));
        const int points = c.columns * c.rows - c.dark;
        EXPECT_EQ(surface.radial[0] != 0, points >= 24);
        EXPECT_EQ(surface.rest[4] != 0, points >= 60);
        for (const auto& [u, v] : {std::pair{0.4, 0.3}, {-0.5, 0.2}, {0.1, -0.45}})
            EXPECT_NEAR(surface.at(u, v), at(u, v), points > 100 ? 0.003 : 9);
    }
    // Each term of the rest, and where the middles of columns and rows lie.
    LensSurface surface;
    const double u = 0.3, v = -0.7;
    double sum = 0;
    for (const auto& [term, i, j] : {std::tuple{0, 0, 0},
                                     {1, 1, 0},
                                     {2, 0, 1},
                                     {3, 2, 0},
                                     {4, 1, 1},
                                     {5, 0, 2},
                                     {6, 3, 0},
                                     {7, 2, 1},
                                     {8, 1, 2},
                                     {9, 0, 3},
                                     {10, 4, 0},
                                     {11, 3, 1},
                                     {12, 2, 2},
                                     {13, 1, 3},
                                     {14, 0, 4}}) {
        surface.rest[static_cast<size_t>(term)] = 1 + term * term;
        sum += (1 + term * term) * std::pow(u, i) * std::pow(v, j);
    }
    EXPECT_NEAR(surface.rest_at(u, v), sum, 1e-9);
    EXPECT_NEAR(u_of(2, 10, 0.75), -0.5 * 0.8, 1e-12);
    EXPECT_NEAR(v_of(7, 10, 0.75), 0.5 * 0.6, 1e-12);
    // Chebyshev's polynomials at 2 r^2 / 1.3 - 1 = cos(x) are cos(k x).
    const double x = std::acos(2 * 0.29 / 1.3 - 1);
    for (size_t k = 0; k < 8; ++k) {
        LensSurface radial;
        radial.radial[k] = 2;
        radial.centre = {0.1, -0.2};
        EXPECT_NEAR(radial.lens_at(0.6, 0), 2 * std::cos(static_cast<double>(k) * x), 1e-9);
    }
    LensSurface dark;
    dark.light = {-2, 0.5};
    EXPECT_NEAR(dark.lens_at(0.4, 0.2), std::log(1 - 0.8 + 0.1), 1e-12);
    EXPECT_NEAR(dark.lens_at(0.6, 0.2), std::log(0.05), 1e-12);
}

} // namespace
