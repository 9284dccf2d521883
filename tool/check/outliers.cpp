// find_outliers
#include "check/outliers.h"

#include <algorithm>
#include <cmath>

#include "check/robust.h"

namespace zerklsc::tool {
namespace {

// Among ten million samples, normal noise hardly ever reaches this many deviations.
constexpr float sample_reach = 7;
constexpr float tile_reach = 6;
constexpr float least_shadow = 0.012F;

// The samples of one tile beyond the reach about its median.
void search_tile(const RawFrame& frame, size_t plane, int column, int row, float reach,
                 std::vector<uint32_t>& found) {
    std::vector<float> samples;
    const auto sample = [&](int i, int j) {
        return static_cast<float>(frame.at(2 * (column * tile_side + i) + static_cast<int>(plane & 1),
                                           2 * (row * tile_side + j) + static_cast<int>(plane >> 1)));
    };
    for (int j = 0; j < tile_side; ++j)
        for (int i = 0; i < tile_side; ++i)
            samples.push_back(sample(i, j));
    const auto middle = static_cast<float>(median_of(samples));
    for (int j = 0; j < tile_side; ++j)
        for (int i = 0; i < tile_side; ++i)
            if (std::abs(sample(i, j) - middle) > reach)
                found.push_back(static_cast<uint32_t>((row * tile_side + j) * (frame.width / 2)
                                                      + column * tile_side + i));
}

void find_samples(const FlatCapture& capture, const Analysis& analysis, size_t plane, Outliers& outliers) {
    const FrameTiles& tiles = analysis.tiles;
    const PlaneTiles& t = tiles.planes[plane];
    const PlaneAnalysis& p = analysis.planes[plane];
    const DeviationTable deviations(p.noise, capture.frame.full_scale());
    // The fall-off within a tile, which is more in a small frame, is no defect.
    const float fall_off = 0.03F + 3.0F / static_cast<float>(tiles.columns);
    for (int row = 0; row < tiles.rows; ++row)
        for (int column = 0; column < tiles.columns; ++column) {
            const size_t at = tiles.index(column, row);
            const float level = p.expected[at] + static_cast<float>(capture.black[plane]);
            const float reach = sample_reach * deviations.at(level) + fall_off * p.expected[at] + 1;
            const float mean = t.mean[at];
            if (static_cast<float>(t.brightest[at]) > mean + reach
                || static_cast<float>(t.darkest[at]) < mean - reach)
                search_tile(capture.frame, plane, column, row, reach, outliers.samples[plane]);
        }
}

// Lines whose mean is far from those of their neighbours.
std::vector<int> find_lines(const std::vector<float>& means, float least) {
    std::vector<int> lines;
    std::vector<float> around, differences;
    const int count = static_cast<int>(means.size());
    for (int i = 0; i < count; ++i) {
        // As many at both sides, so that a slope is none.
        const int reach = std::min({3, i, count - 1 - i});
        around.clear();
        for (int k = i - reach; k <= i + reach; ++k)
            around.push_back(means[static_cast<size_t>(k)]);
        differences.push_back(means[static_cast<size_t>(i)] - static_cast<float>(median_of(around)));
    }
    std::vector<float> scratch = differences;
    const auto reach = static_cast<float>(8 * deviation_from(scratch, 0)) + least;
    for (int i = 0; i < count; ++i)
        if (std::abs(differences[static_cast<size_t>(i)]) > reach)
            lines.push_back(i);
    return lines;
}

// How far a tile lies off the middle between the tiles at both sides of it, in the middle one of up to four
// directions: neither a slope nor an edge is a spot. 0 in a corner, where there is no such middle.
float depth_of(const FrameTiles& tiles, const std::vector<float>& rest, int column, int row) {
    // Small frames curve more from tile to tile.
    const int away = std::clamp(tiles.columns / 26, 2, 5);
    std::vector<float> middles;
    for (const auto [dx, dy] :
         {std::array{away, 0}, std::array{0, away}, std::array{away, away}, std::array{away, -away}}) {
        const int left = column - dx, right = column + dx;
        const int top = std::min(row - dy, row + dy), bottom = std::max(row - dy, row + dy);
        if (left >= 0 && top >= 0 && right < tiles.columns && bottom < tiles.rows)
            middles.push_back((rest[tiles.index(left, row - dy)] + rest[tiles.index(right, row + dy)]) / 2);
    }
    return middles.empty() ? 0 : rest[tiles.index(column, row)] - static_cast<float>(median_of(middles));
}

// Tiles without defective samples that are darker than those around them by more than noise makes.
void find_dust(const FlatCapture& capture, const Analysis& analysis, size_t plane, Outliers& outliers) {
    const FrameTiles& tiles = analysis.tiles;
    const PlaneAnalysis& p = analysis.planes[plane];
    const DeviationTable deviations(p.noise, capture.frame.full_scale());
    std::vector<uint8_t> spoilt(tiles.count());
    for (const uint32_t at : outliers.samples[plane]) {
        const auto width = static_cast<uint32_t>(capture.frame.width / 2);
        spoilt[at / width / tile_side * static_cast<size_t>(tiles.columns) + at % width / tile_side] = 1;
    }
    std::vector<float> scratch = p.rest;
    const auto spread = static_cast<float>(deviation_from(scratch, 0));
    for (int row = 0; row < tiles.rows; ++row)
        for (int column = 0; column < tiles.columns; ++column) {
            const size_t at = tiles.index(column, row);
            const float light = std::max(p.expected[at], 0.1F);
            const float noise =
                deviations.at(light + static_cast<float>(capture.black[plane])) / tile_side / light;
            const float reach = tile_reach * std::max(noise * 1.1F, spread) + least_shadow;
            if (p.rest[at] < -reach / 2 && spoilt[at] == 0 && depth_of(tiles, p.rest, column, row) < -reach)
                outliers.dust_tiles[plane].push_back(static_cast<uint32_t>(at));
        }
}

int spots_of(const std::vector<uint32_t>& found, int columns) {
    std::vector<uint32_t> rest = found;
    int spots = 0;
    std::vector<uint32_t> open;
    while (!rest.empty()) {
        open.assign(1, rest.back());
        rest.pop_back();
        ++spots;
        while (!open.empty()) {
            const int at = static_cast<int>(open.back());
            open.pop_back();
            for (size_t k = rest.size(); k-- > 0;) {
                const int other = static_cast<int>(rest[k]);
                if (std::abs(other % columns - at % columns) <= 2
                    && std::abs(other / columns - at / columns) <= 2) {
                    open.push_back(rest[k]);
                    rest[k] = rest.back();
                    rest.pop_back();
                }
            }
        }
    }
    return spots;
}

} // namespace

bool Outliers::any() const {
    for (size_t plane = 0; plane < 4; ++plane)
        if (!samples[plane].empty() || !dust_tiles[plane].empty() || !rows[plane].empty()
            || !columns[plane].empty())
            return true;
    return false;
}

Outliers find_outliers(const FlatCapture& capture, const Analysis& analysis) {
    Outliers outliers;
    for (size_t plane = 0; plane < 4; ++plane) {
        const PlaneTiles& tiles = analysis.tiles.planes[plane];
        const auto least = static_cast<float>(0.01 * analysis.planes[plane].bright);
        outliers.rows[plane] = find_lines(tiles.row_means, least);
        outliers.columns[plane] = find_lines(tiles.column_means, least);
        find_samples(capture, analysis, plane, outliers);
        find_dust(capture, analysis, plane, outliers);
        // A frame full of them is no frame with dust on it; counting spots would take long.
        constexpr size_t many = 5000;
        const auto& dust = outliers.dust_tiles[plane];
        outliers.dust_spots[plane] =
            dust.size() > many ? static_cast<int>(dust.size()) : spots_of(dust, analysis.tiles.columns);
    }
    return outliers;
}

} // namespace zerklsc::tool
