// What the checks of a flat field estimate, against what is known because it was put in.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

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
    std::vector<float> even{4, 1, 3, 8};
    EXPECT_EQ(median_of(even), 3.5);
    std::vector<float> none;
    EXPECT_EQ(median_of(none), 0);
}

// Four planes of their own level and slope, and noise of a known variance.
TEST(Tiles, MeanAndVarianceAreThoseOfTheSamples) {
    RawFrame frame;
    frame.width = 2 * 8 * 20 + 6;
    frame.height = 2 * 8 * 15 + 2;
    frame.bits = 12;
    std::mt19937 engine(5);
    std::normal_distribution<double> normal(0, 9);
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x) {
            const int plane = plane_of_pixel(x, y);
            const double level = 500 + 300 * plane + 3 * (x / 2) + 1 * (y / 2);
            frame.samples.push_back(
                static_cast<uint16_t>(std::lround(level + (plane == 2 ? 2 : 1) * normal(engine))));
        }
    frame.at(2 * 8 * 3, 0) = 4000; // in plane 0, tile 3 of the first row
    const FrameTiles tiles = measure_tiles(frame);
    ASSERT_EQ(tiles.columns, 20);
    ASSERT_EQ(tiles.rows, 15);
    for (size_t plane = 0; plane < 4; ++plane) {
        double h = 0, v = 0;
        for (size_t i = tiles.count() / 3; i < tiles.count(); ++i) {
            h += static_cast<double>(tiles.planes[plane].variance_h[i]);
            v += static_cast<double>(tiles.planes[plane].variance_v[i]);
        }
        const double expected = plane == 2 ? 4 * 81 : 81,
                     count = static_cast<double>(tiles.count() - tiles.count() / 3);
        EXPECT_NEAR(h / count, expected, 0.06 * expected) << plane;
        EXPECT_NEAR(v / count, expected, 0.06 * expected) << plane;
        // The middle of tile (10, 4): plane columns 80 to 87, rows 32 to 39.
        EXPECT_NEAR(static_cast<double>(tiles.planes[plane].mean[tiles.index(10, 4)]),
                    500 + 300 * static_cast<double>(plane) + 3 * 83.5 + 35.5, plane == 2 ? 9 : 4.5);
    }
    EXPECT_EQ(tiles.planes[0].brightest[3], 4000);
    EXPECT_LT(tiles.planes[1].brightest[3], 1000);
    EXPECT_EQ(histogram_of(frame, 0, 1)[4000], 1U);
    EXPECT_EQ(histogram_of(frame, 1, 1)[4000], 0U);
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

// The centre and the slope of the light are told apart, also where a tenth of the frame is dark.
TEST(LensSurface, FindsTheCentreAndTheLight) {
    for (const bool shaded : {false, true}) {
        LogCells cells;
        cells.columns = 36;
        cells.rows = 27;
        cells.aspect = 0.75;
        const auto truth = [](double u, double v) {
            const double r2 = (u - 0.07) * (u - 0.07) + (v + 0.04) * (v + 0.04);
            return 6 - 2 * std::log(1 + 0.55 * r2) + std::log(1 - 0.11 * u + 0.05 * v);
        };
        for (int i = 0; i < cells.columns; ++i)
            cells.u.push_back(u_of(i, cells.columns, cells.aspect));
        for (int j = 0; j < cells.rows; ++j)
            cells.v.push_back(v_of(j, cells.rows, cells.aspect));
        for (int j = 0; j < cells.rows; ++j)
            for (int i = 0; i < cells.columns; ++i)
                cells.values.push_back(static_cast<float>(truth(cells.u_at(i), cells.v_at(j))
                                                          - (shaded && i < 9 && j < 10 ? 0.5 : 0)));
        const LensSurface surface = fit_lens_surface(cells);
        EXPECT_NEAR(surface.centre[0], 0.07, 0.01);
        EXPECT_NEAR(surface.centre[1], -0.04, 0.01);
        EXPECT_NEAR(surface.light[0], -0.11, 0.012);
        EXPECT_NEAR(surface.light[1], 0.05, 0.012);
        EXPECT_NEAR(surface.at(0.5, 0.3), truth(0.5, 0.3), 0.003);
    }
}

} // namespace
