#include "zerklsc.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "calibration/beta_plain.h"
#include "calibration/call.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;
using Samples = std::vector<uint16_t>;

struct Geometry {
    int32_t width, height; // of the frame
    int32_t grid, radius;
    int32_t boundary = ZERKLSC_BOUNDARY_MIRROR;
    int32_t extra_nodes = 0; // beyond what the planes need
};

std::ostream& operator<<(std::ostream& to, const Geometry& g) {
    return to << g.width << "x" << g.height << " grid " << g.grid << " radius " << g.radius;
}

lsc2d_calib_param param_of(const Geometry& g) {
    lsc2d_calib_param param;
    lsc2d_calib_param_default(&param, g.grid, g.radius, 100);
    param.boundary_mode = g.boundary;
    return param;
}

// What one call left: its status, its tables, and whether it wrote anything else.
struct Outcome {
    int32_t status;
    std::vector<Samples> tables;
    bool clean;
};

Outcome fit(const Samples& frame, const Geometry& g, int32_t nx, int32_t ny, Against side) {
    lsc2d_calib_param param = param_of(g);
    Guarded<uint16_t> image(frame, side);
    Tables set(nx, ny, side);
    const int32_t status = lsc2d_calibration_beta(image.data(), g.width, g.height, set.list, nx, ny, &param);
    return {status, set.copy(), set.intact() && image.copy() == frame};
}

void nodes_of(const Geometry& g, int32_t& nx, int32_t& ny) {
    lsc2d_table_size(g.width / 2, g.height / 2, g.grid, g.grid, &nx, &ny);
    nx += g.extra_nodes;
}

Outcome fit(const Samples& frame, const Geometry& g, Against side = Against::back) {
    int32_t nx, ny;
    nodes_of(g, nx, ny);
    return fit(frame, g, nx, ny, side);
}

// Brightest in the middle, with noise; the planes differ.
Samples vignette(const Geometry& g, uint64_t seed) {
    Random random(seed);
    Samples frame;
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x) {
            const double u = 2.0 * x / g.width - 1, v = 2.0 * y / g.height - 1;
            const double level = (500 + 100 * (x % 2) + 50 * (y % 2)) / (1 + u * u + 0.7 * v * v);
            frame.push_back(static_cast<uint16_t>(level + 20 * random.unit()));
        }
    return frame;
}

constexpr Geometry geometries[] = {
    {256, 192, 16, 2},                        // cells that divide the planes
    {190, 162, 8, 1},                         // a hundred unknowns and more
    {131, 99, 16, 3},                         // an odd frame; the last cell is cut
    {130, 130, 16, 1},                        // the last sample lies on a node
    {120, 100, 11, 5},                        // an eighth of the step is not whole
    {200, 160, 16, 16},                       // no lines before the first node
    {200, 160, 16, 21},                       //
    {64, 64, 31, 4},                          // three nodes
    {64, 50, 40, 2},                          // two nodes; the step is longer than the planes
    {80, 72, 9, 30, ZERKLSC_BOUNDARY_CLAMP},  // a window wider than the plane
    {60, 60, 100, 2, ZERKLSC_BOUNDARY_CLAMP}, // mirrored lines before the first sample
    {100, 100, 4, 4},                         // an eighth that is 0 and not needed
};

TEST(SurfaceFit, EqualsThePlainFormToTheBit) {
    for (const Geometry& g : geometries) {
        int32_t nx, ny;
        nodes_of(g, nx, ny);
        const size_t count = static_cast<size_t>(g.width * g.height);
        Random random(count);
        Samples spotted = vignette(g, 2);
        for (int k = 0; k < 20; ++k)
            spotted[static_cast<size_t>(random.between(0, static_cast<int64_t>(count) - 1))] = 0;
        const std::vector<Samples> frames = {vignette(g, 1),
                                             spotted,
                                             Samples(count, 0),
                                             Samples(count, 65535),
                                             random_samples(random, count),
                                             random_samples(random, count, Spread::low)};
        for (size_t f = 0; f < frames.size(); ++f) {
            const std::vector<Samples> expected =
                zerklsc::plain::calibrate_beta(frames[f], g.width, g.height, nx, ny, param_of(g));
            const Outcome actual = fit(frames[f], g, f % 2 ? Against::front : Against::back);
            EXPECT_EQ(actual.status, expected.empty() ? -1 : 0) << g;
            EXPECT_TRUE(actual.clean) << g;
            if (!expected.empty()) {
                EXPECT_EQ(actual.tables, expected) << g << " frame " << f;
            }
        }
    }
}

TEST(SurfaceFit, FlatFieldHasUnityGainInEveryNode) {
    for (const Geometry& g : {geometries[0], geometries[1], geometries[3]})
        for (const uint16_t level : Samples{1, 600, 65535}) {
            const Outcome flat = fit(Samples(static_cast<size_t>(g.width * g.height), level), g);
            for (const Samples& table : flat.tables)
                EXPECT_EQ(table, Samples(table.size(), ZERKLSC_UNITY_GAIN)) << g << " " << level;
        }
}

TEST(SurfaceFit, GainsOfSixtyFourAndMoreWrapAround) {
    const Geometry& g = geometries[0];
    Samples frame(static_cast<size_t>(g.width * g.height), 600);
    for (int y = 72; y < 120; ++y)
        std::fill_n(&frame[static_cast<size_t>(y * g.width + 96)], 64, uint16_t{60000});
    // Far from the bright centre the gain is 100.
    EXPECT_NEAR(fit(frame, g).tables[3][0], 102400 - 65536, 100);
}

TEST(SurfaceFit, SingularSystemIsReportedAndWritesNoTable) {
    Geometry g = geometries[0];
    g.extra_nodes = 2;
    const Samples frame = vignette(g, 3);
    ::testing::internal::CaptureStdout();
    const Outcome singular = fit(frame, g);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Warning: singular matrix, no solution was found!\n");
    EXPECT_EQ(singular.status, -1);
    EXPECT_EQ(singular.tables,
              std::vector<Samples>(4, Samples(singular.tables[0].size(), Tables::untouched)));
}

TEST(SurfaceFit, WhatCannotBeMeasuredIsRefused) {
    // A list of lines that would never end, or leaves the plane; a window that does; an unknown boundary
    // mode; planes without room for a centre cluster.
    const Geometry refused[] = {{256, 192, 7, 2},     {256, 192, 1, 1},         {256, 192, 0, 2},
                                {256, 192, -16, 2},   {256, 192, INT32_MAX, 2}, {256, 192, 16, -1},
                                {256, 192, 16, 112},  {256, 192, 16, 9000},     {256, 192, 16, INT32_MAX},
                                {256, 192, 16, 2, 2}, {19, 256, 16, 2},         {1, 1, 16, 2},
                                {0, 256, 16, 2},      {-256, -256, 16, 2}};
    const Samples frame(256 * 256, 100);
    for (const Geometry& g : refused) {
        const Outcome outcome = fit(frame, g, 10, 8, Against::back);
        EXPECT_EQ(outcome.status, -1) << g;
        EXPECT_TRUE(outcome.clean) << g;
        EXPECT_EQ(outcome.tables, std::vector<Samples>(4, Samples(80, Tables::untouched))) << g;
    }
    Geometry g = geometries[0];
    EXPECT_EQ(fit(frame, g, 3, 8, Against::back).status, -1);
    EXPECT_EQ(fit(frame, g, 10, 3, Against::back).status, -1);
    lsc2d_calib_param param = param_of(g);
    param.filter_type = 2;
    EXPECT_EQ(lsc2d_calibration_beta(nullptr, 256, 192, nullptr, 10, 8, &param), -1);
    param.filter_type = ZERKLSC_FILTER_GAUSSIAN; // has no sigma
    EXPECT_EQ(lsc2d_calibration_beta(nullptr, 256, 192, nullptr, 10, 8, &param), -1);
    param = param_of(g);
    EXPECT_EQ(lsc2d_calibration_beta(nullptr, 256, 192, nullptr, INT32_MAX, INT32_MAX, &param), -1);
    EXPECT_EQ(lsc2d_calibration_beta(nullptr, 256, 192, nullptr, INT32_MIN, INT32_MIN, &param), -1);
}

} // namespace
