// What stands out of a flat field, and what is put in its place: both reckoned by hand.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "flat.h"

namespace {

using namespace zerklsc::tool;

Outliers find(Flat& flat) {
    flat.analysis.tiles = measure_tiles(flat.frame);
    return find_outliers(flat.capture(), flat.analysis);
}

std::vector<uint32_t> sorted(std::vector<uint32_t> places) {
    std::ranges::sort(places);
    return places;
}

uint32_t place(int x, int y) {
    return static_cast<uint32_t>(y * 99 + x);
}

// From a median of 500, with a deviation of 4 and twelve columns of tiles, they reach by 7 x 4 + (0.03 + 3 /
// 12) x 500 + 1.
TEST(Outliers, SamplesBeyondTheReach) {
    struct {
        int x, y;
        double light;
        bool found;
    } const cases[]{
        {20, 20, 500 + 171, false},
        {84, 20, 500 + 172, true},
        {44, 30, 500 - 172, true}, // the mean of a tile is off, too
        {52, 30, 500 - 171, false},
        {28, 20, 720, true},
        {29, 23, 500 + 170, true},
        {30, 23, 500 + 169, false},
        // Beyond the tiles there is no such mean.
        {96, 0, 500 + 170, true},
        {98, 9, 500 - 170, true},
        {97, 18, 500 + 168, false},
        {98, 71, 900, true},
        {0, 72, 500 - 170, true},
        {95, 73, 500 + 170, true},
        {33, 73, 500 + 168, false},
        {41, 73, 5, true},
        {95, 40, 900, true},
        {40, 71, 900, true},
        {98, 73, 900, true},
        {97, 72, 5, true},
    };
    for (const bool dark : {false, true}) {
        Flat flat;
        std::vector<uint32_t> expected;
        for (const auto& one : cases) {
            flat.set(0, one.x, one.y, one.light);
            if (one.found)
                expected.push_back(place(one.x, one.y));
        }
        if (dark) { // a plane where a smaller light makes the reach smaller
            for (size_t i = 0; i < 108; ++i)
                flat.analysis.planes[3].expected[i] = static_cast<float>(i % 12 * 10);
            flat.analysis.planes[3].noise = {{72 + 35.0, 1}, {72 + 45.0, 100}};
            flat.set(3, 8 * 4 + 3, 12, 300 + 5.5 * 7 + 11.2 + 1 + 4);
            flat.set(3, 8 * 3 + 3, 12, 300 + 5.5 * 7 + 11.2 + 1 + 4);
        }
        const Outliers outliers = find(flat);
        EXPECT_EQ(sorted(outliers.samples[0]), sorted(expected));
        EXPECT_EQ(sorted(outliers.samples[3]),
                  dark ? std::vector<uint32_t>{place(27, 12)} : std::vector<uint32_t>{});
        // What the others of a tile are is what counts for dust: in one, 62 are left, with the 169 more.
        for (size_t tile = 0; tile < 108; ++tile)
            EXPECT_NEAR(outliers.rest[0][tile], tile == 2 * 12 + 3 ? 169 / 62.0 / 500 : 0, 1e-6);
    }
}

// A line is dead from a hundredth of the light on, unless neighbours hide it whose samples stand out.
TEST(Outliers, DeadLines) {
    Flat flat;
    const auto row = [&](size_t plane, int y, double light) {
        for (int x = 0; x < 99; ++x)
            flat.set(plane, x, y, light);
    };
    const auto column = [&](size_t plane, int x, double light) {
        for (int y = 0; y < 74; ++y)
            flat.set(plane, x, y, light);
    };
    row(1, 0, 410), row(1, 1, 405), row(1, 20, 395), row(1, 30, 404), row(1, 40, 396), row(1, 70, 395),
        row(1, 71, 410);
    column(2, 1, 607), column(2, 33, 593), column(2, 50, 606), column(2, 94, 607), column(2, 95, 620);
    for (const int dead : {30, 31, 32, 33, 34, 50, 51}) {
        row(3, dead, 0);
        column(0, dead + 7, 5);
    }
    // Half of the samples of a row are not enough. A line beside an edge is like one at its sides.
    for (int x = 0; x < 49; ++x)
        for (const int y : {60, 61, 62, 63})
            flat.set(3, x, y, 0);
    const Outliers outliers = find(flat);
    EXPECT_EQ(outliers.rows[1], (std::vector<int>{20, 70}));
    EXPECT_EQ(outliers.columns[2], (std::vector<int>{1, 33}));
    EXPECT_EQ(outliers.rows[3], (std::vector<int>{30, 31, 32, 33, 34, 50, 51}));
    EXPECT_EQ(outliers.columns[0], (std::vector<int>{37, 38, 39, 40, 41, 57, 58}));
    EXPECT_EQ(outliers.columns[1], std::vector<int>());
    EXPECT_EQ(outliers.rows[2], std::vector<int>());
}

// Spots are darker than tiles at both sides by 6 x 1.1 x 4 / 8 / 500 + 0.012; those two tiles apart are one
// spot.
TEST(Outliers, Dust) {
    Flat flat(26, 20);
    const auto dusty = [&](std::vector<std::array<int, 2>> tiles) {
        std::vector<uint32_t> places;
        for (const auto& [column, row] : tiles)
            places.push_back(static_cast<uint32_t>(row * 26 + column));
        return sorted(places);
    };
    flat.rest(0, 13, 10) = -0.0187F;
    flat.rest(0, 13, 5) = -0.0185F;
    for (const auto& [column, row] : {std::array{10, 7}, {12, 7}, {14, 8}, {17, 8}, {11, 13}, {12, 14}})
        flat.rest(1, column, row) = -0.2F;
    // A slope is no spot; at a corner of the frame nothing can be told.
    for (int j = 0; j < 20; ++j)
        for (int i = 0; i < 26; ++i)
            flat.rest(2, i, j) = -0.02F * static_cast<float>(i);
    flat.rest(3, 0, 19) = flat.rest(3, 1, 0) = -0.9F;
    flat.rest(3, 1, 6) = -0.9F; // between two tiles above and below
    const Outliers outliers = find(flat);
    EXPECT_EQ(outliers.dust_tiles[0], dusty({{13, 10}}));
    EXPECT_EQ(outliers.dust_tiles[1], dusty({{10, 7}, {12, 7}, {14, 8}, {17, 8}, {11, 13}, {12, 14}}));
    EXPECT_EQ(outliers.dust_tiles[2], dusty({}));
    EXPECT_EQ(outliers.dust_tiles[3], dusty({{1, 6}}));
    EXPECT_EQ(outliers.dust_spots, (std::array{1, 3, 0, 1}));
}

TEST(KeepOut, LinesAndSamples) {
    Flat flat;
    for (int y = 0; y < 74; ++y)
        for (int x = 0; x < 99; ++x)
            flat.set(2, x, y, 100 + 7 * x + 3 * y + y % 2);
    Outliers outliers;
    outliers.rows[2] = {10, 11, 30};
    outliers.columns[2] = {40, 42, 43, 90};
    // Alone, at corners, at edges, beside each other, and on a dead line.
    outliers.samples[2] = {place(0, 0),   place(98, 73), place(98, 20), place(50, 73),
                           place(60, 60), place(61, 60), place(5, 10),  place(40, 5)};
    RawFrame expected = flat.frame, frame = flat.frame;
    const auto at = [](RawFrame& of, int x, int y) -> uint16_t& { return of.at(2 * x, 2 * y + 1); };
    for (int x = 0; x < 99; ++x)
        for (const auto& [row, above, below] : {std::array{10, 9, 12}, {11, 9, 12}, {30, 29, 31}})
            at(expected, x, row) =
                static_cast<uint16_t>((at(expected, x, above) + at(expected, x, below) + 1) / 2);
    for (int y = 0; y < 74; ++y)
        for (const auto& [column, left, right] :
             {std::array{40, 39, 41}, {42, 41, 44}, {43, 41, 44}, {90, 89, 91}})
            at(expected, column, y) =
                static_cast<uint16_t>((at(expected, left, y) + at(expected, right, y) + 1) / 2);
    for (const auto& [x, y] : {std::array{0, 0}, {98, 73}, {98, 20}, {50, 73}, {60, 60}, {61, 60}}) {
        std::vector<int> around;
        for (int j = std::max(0, y - 2); j <= std::min(73, y + 2); ++j)
            for (int i = std::max(0, x - 2); i <= std::min(98, x + 2); ++i)
                if (i != x || j != y)
                    around.push_back(at(expected, i, j));
        std::ranges::sort(around);
        const size_t middle = around.size() / 2; // an even number, all of them
        at(expected, x, y) = static_cast<uint16_t>((around[middle - 1] + around[middle] + 1) / 2);
    }
    flat.analysis.tiles = measure_tiles(frame);
    keep_out(outliers, flat.analysis, flat.black, frame);
    EXPECT_EQ(frame.samples, expected.samples);
}

// The light of dusty tiles and of two around them becomes what the surface leaves of the ones farther off.
TEST(KeepOut, Dust) {
    Flat flat;
    Outliers outliers;
    outliers.rest[1].resize(108);
    for (int j = 0; j < 9; ++j)
        for (int i = 0; i < 12; ++i)
            outliers.rest[1][static_cast<size_t>(j * 12 + i)] =
                0.02F * static_cast<float>(i) - 0.01F * static_cast<float>(j);
    for (const auto& [column, row] : {std::array{4, 4}, {11, 8}}) {
        const auto tile = static_cast<size_t>(row * 12 + column);
        outliers.dust_tiles[1].push_back(static_cast<uint32_t>(tile));
        outliers.rest[1][tile] = -0.5F;
    }
    RawFrame frame = flat.frame;
    keep_out(outliers, flat.analysis, flat.black, frame);
    for (int y = 0; y < 74; ++y)
        for (int x = 0; x < 99; ++x) {
            const int i = std::min(x / 8, 11), j = std::min(y / 8, 8);
            const double light = frame.at(2 * x + 1, 2 * y) - 64;
            if (std::max(std::abs(i - 4), std::abs(j - 4)) <= 2)
                EXPECT_NEAR(light, 400 * (1 + 0.02 * i - 0.01 * j), 0.6) << i << " " << j;
            else if (i >= 9 && j >= 6) // in the corner nothing lies beyond; the light is even over each tile
                EXPECT_NEAR(light, 400 * (1 + 0.17 - 0.055), 14) << i << " " << j;
            else
                EXPECT_EQ(light, 400) << i << " " << j;
        }
    for (const size_t plane : {0U, 2U, 3U})
        EXPECT_EQ(frame.at(2 * 33 + static_cast<int>(plane & 1), 2 * 33 + static_cast<int>(plane >> 1)),
                  Flat::light[plane] + flat.black[plane]);
    // Full scale bounds it, and what has no light stays.
    flat.analysis.planes[1].expected[4 * 12 + 4] = 9000;
    flat.analysis.planes[1].expected[4 * 12 + 5] = 900;
    flat.set(1, 8 * 5, 8 * 4, 30);
    for (int k = 0; k < 64; ++k)
        flat.set(1, 8 * 3 + k % 8, 8 * 4 + k / 8, -10);
    frame = flat.frame;
    outliers.rest[1].assign(108, 0);
    keep_out(outliers, flat.analysis, flat.black, frame);
    EXPECT_EQ(frame.at(2 * 34 + 1, 2 * 34), 4095);
    EXPECT_EQ(frame.at(2 * 25 + 1, 2 * 34), 54);
    const double factor = 900 * 64 / (63 * 400 + 30.0);
    EXPECT_EQ(frame.at(2 * 40 + 1, 2 * 32), std::lround(64 + factor * 30));
    EXPECT_EQ(frame.at(2 * 41 + 1, 2 * 32), std::lround(64 + factor * 400));
}

} // namespace
