// A flat field that is mirrored or turned over its diagonal has the same findings, where they are then.
#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "check/keep_out.h"
#include "check/series.h"

namespace {

using namespace zerklsc::tool;

const BlackLevel black{60, 64, 68, 72};

struct Turn {
    bool left_right, top_bottom, diagonal;
};

struct Place {
    int x, y;
};

// Where a place of an area of the original stands in the turned frame.
Place turned(Place at, int width, int height, const Turn& turn) {
    const Place mirrored{turn.left_right ? width - 1 - at.x : at.x,
                         turn.top_bottom ? height - 1 - at.y : at.y};
    return turn.diagonal ? Place{mirrored.y, mirrored.x} : mirrored;
}

// A lens off the middle whose barrel shades the corners, uneven light, a flare, spots, defects, dead lines
// and a masked corner.
RawFrame original(int columns, int rows) {
    RawFrame frame;
    frame.width = 16 * columns;
    frame.height = 16 * rows;
    frame.bits = 12;
    std::mt19937 engine(17);
    std::normal_distribution<double> normal(0, 1);
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x) {
            const int plane = plane_of_pixel(x, y), i = x / 2, j = y / 2;
            const double u = (i - 101.0) / 160, v = (j - 120.0) / 160, r2 = u * u + v * v;
            double light = (2600 - 400 * plane) / std::pow(1 + 0.3 * r2, 2) * (1 + 0.05 * u - 0.03 * v);
            light *= r2 > 0.62 ? 0.7 : 1;
            light *= std::hypot(i - 60, j - 90) < 11 ? 0.87 : std::hypot(i - 130, j - 70) < 14 ? 1.2 : 1;
            light *= plane == 2 && std::hypot(i - 70, j - 190) < 9 ? 0.9 : 1;
            light *= i > 186 && j < 6 ? 0.3 : 1;
            if ((i * 31 + j * 57) % 2999 == plane)
                light = j % 2 == 0 ? 0 : 4000;
            if ((plane == 1 && j == 40) || (plane == 3 && (i == 150 || i == 151 || i == 7)))
                light = 700;
            const double level =
                black[static_cast<size_t>(plane)] + light + std::sqrt(0.4 * light + 4) * normal(engine);
            frame.samples.push_back(static_cast<uint16_t>(std::clamp(std::lround(level), 0L, 4095L)));
        }
    return frame;
}

RawFrame turned(const RawFrame& frame, const Turn& turn) {
    RawFrame result = frame;
    if (turn.diagonal)
        std::swap(result.width, result.height);
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x) {
            const Place to = turned({x / 2, y / 2}, frame.width / 2, frame.height / 2, turn);
            result.at(2 * to.x + x % 2, 2 * to.y + y % 2) = frame.at(x, y);
        }
    return result;
}

struct Checked {
    Analysis analysis;
    Outliers outliers;
    Findings findings;
    RawFrame cleaned;
};

Checked check(const RawFrame& frame) {
    Checked checked{analyse(frame, black), {}, {}, frame};
    const FlatCapture capture{frame, BayerPattern::gbrg, black, {}};
    checked.outliers = find_outliers(capture, checked.analysis);
    const CheckLimits limits;
    const Judgement judgement{capture, checked.analysis, limits, checked.findings};
    for (const auto one : {check_saturation, check_brightness, check_dead_regions, check_light, check_scene,
                           check_black_level, check_colours})
        one(judgement);
    check_defects(judgement, checked.outliers);
    keep_out(checked.outliers, checked.analysis, black, checked.cleaned);
    return checked;
}

template <class T>
std::vector<uint32_t> places(const std::vector<T>& found, int width, int height, const Turn& turn) {
    std::vector<uint32_t> result;
    for (const T place : found) {
        const Place to =
            turned({static_cast<int>(place) % width, static_cast<int>(place) / width}, width, height, turn);
        result.push_back(static_cast<uint32_t>(to.y * (turn.diagonal ? height : width) + to.x));
    }
    std::ranges::sort(result);
    return result;
}

std::vector<int> lines(std::vector<int> found, int count, bool mirrored) {
    for (int& line : found)
        line = mirrored ? count - 1 - line : line;
    std::ranges::sort(found);
    return found;
}

TEST(Symmetry, FindingsTurnWithTheFrame) {
    for (const Turn& turn :
         {Turn{true, false, false}, {false, true, false}, {false, false, true}, {true, false, true}}) {
        // Some of what is usual goes by the number of columns. Tiles are the cells too.
        const int columns = turn.diagonal ? 28 : 24, rows = turn.diagonal ? 28 : 32;
        const RawFrame frame = original(columns, rows);
        const Checked first = check(frame);
        const Checked second = check(turned(frame, turn));
        ASSERT_EQ(first.findings.size(), second.findings.size());
        for (size_t k = 0; k < first.findings.size(); ++k) {
            const Finding &a = first.findings[k], &b = second.findings[k];
            // A block of four tiles takes the noise of its first; at the edge, 16 by 12 points are asked for.
            const double off = a.name == "texture"                                                ? 0.03
                               : turn.diagonal && (a.name == "fall-off" || a.name == "asymmetry") ? 0.3
                                                                                                  : 1e-4;
            EXPECT_EQ(std::isnan(a.value), std::isnan(b.value)) << a.name;
            EXPECT_FALSE(std::abs(a.value - b.value) > off * std::abs(a.value) + 1e-6)
                << a.name << " " << a.value << " " << b.value;
            EXPECT_EQ(a.plane, b.plane) << a.name;
            EXPECT_EQ(a.verdict, b.verdict) << a.name;
        }
        const Turn same{};
        for (size_t p = 0; p < 4; ++p) {
            const Outliers &a = first.outliers, &b = second.outliers;
            EXPECT_EQ(places(a.samples[p], 8 * columns, 8 * rows, turn),
                      places(b.samples[p], second.cleaned.width / 2, second.cleaned.height / 2, same));
            EXPECT_EQ(
                places(a.dust_tiles[p], columns, rows, turn),
                places(b.dust_tiles[p], second.analysis.tiles.columns, second.analysis.tiles.rows, same));
            EXPECT_EQ(a.dust_spots[p], b.dust_spots[p]);
            EXPECT_EQ(lines(a.rows[p], 8 * rows, turn.top_bottom), turn.diagonal ? b.columns[p] : b.rows[p]);
            EXPECT_EQ(lines(a.columns[p], 8 * columns, turn.left_right),
                      turn.diagonal ? b.rows[p] : b.columns[p]);
        }
        const RawFrame cleaned = turned(first.cleaned, turn);
        int off = 0;
        for (size_t k = 0; k < cleaned.samples.size(); ++k)
            off += std::abs(cleaned.samples[k] - second.cleaned.samples[k]) > 3 ? 1 : 0;
        // Defects side by side are replaced one after the other.
        EXPECT_LT(off, static_cast<int>(cleaned.samples.size() / 200)) << turn.diagonal;
    }
}

} // namespace
