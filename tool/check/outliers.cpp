// find_outliers
#include "check/outliers.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "check/robust.h"

namespace zerklsc::tool {
namespace {

// Among ten million samples, normal noise hardly ever reaches this many deviations.
constexpr float sample_reach = 7;
constexpr float tile_reach = 6;
constexpr float least_shadow = 0.012F;

// The samples of the plane from `left` and `top` on, `side` each way, beyond the reach about their median;
// those before `first_x` or `first_y` are not looked for.
struct SearchArea {
    int side, left, top;
    int first_x = 0, first_y = 0;
};

void search_area(const RawFrame& frame, size_t plane, const SearchArea& area, float reach,
                 std::vector<uint32_t>& found) {
    std::vector<float> samples;
    const auto sample = [&](int x, int y) {
        return static_cast<float>(
            frame.at(2 * x + static_cast<int>(plane & 1), 2 * y + static_cast<int>(plane >> 1)));
    };
    for (int y = area.top; y < area.top + area.side; ++y)
        for (int x = area.left; x < area.left + area.side; ++x)
            samples.push_back(sample(x, y));
    const auto middle = static_cast<float>(median_of(samples));
    for (int y = area.top; y < area.top + area.side; ++y)
        for (int x = area.left; x < area.left + area.side; ++x)
            if (x >= area.first_x && y >= area.first_y && std::abs(sample(x, y) - middle) > reach)
                found.push_back(static_cast<uint32_t>(y * (frame.width / 2) + x));
}

// The samples at the right and at the bottom that belong to no tile. Those at the right go down to the
// corner.
void search_edge(const RawFrame& frame, size_t plane, const FrameTiles& tiles, auto&& reach_at,
                 std::vector<uint32_t>& found) {
    const int w = frame.width / 2, h = frame.height / 2, side = tiles.side;
    const int tiles_w = tiles.columns * side, tiles_h = tiles.rows * side;
    for (int top = 0; w > tiles_w && top < h; top += side)
        search_area(frame, plane, {side, w - side, std::min(top, h - side), tiles_w, top},
                    reach_at(tiles.index(tiles.columns - 1, std::min(top / side, tiles.rows - 1))), found);
    for (int left = 0; h > tiles_h && left < tiles_w; left += side)
        search_area(frame, plane, {side, left, h - side, left, tiles_h},
                    reach_at(tiles.index(left / side, tiles.rows - 1)), found);
}

void find_samples(const FlatCapture& capture, const Analysis& analysis, size_t plane, Outliers& outliers) {
    const FrameTiles& tiles = analysis.tiles;
    const PlaneTiles& t = tiles.planes[plane];
    const PlaneAnalysis& p = analysis.planes[plane];
    const DeviationTable deviations(p.noise, capture.frame.full_scale());
    // The fall-off within a tile, which is more in a small frame, is no defect.
    const float fall_off = 0.03F + 3.0F / static_cast<float>(tiles.columns);
    const auto reach_at = [&](size_t at) {
        const float level = p.expected[at] + static_cast<float>(capture.black[plane]);
        return sample_reach * deviations.at(level) + fall_off * p.expected[at] + 1;
    };
    for (int row = 0; row < tiles.rows; ++row)
        for (int column = 0; column < tiles.columns; ++column) {
            const size_t at = tiles.index(column, row);
            const float reach = reach_at(at);
            const float mean = t.mean[at];
            if (static_cast<float>(t.brightest[at]) > mean + reach
                || static_cast<float>(t.darkest[at]) < mean - reach)
                search_area(capture.frame, plane, {tiles.side, column * tiles.side, row * tiles.side}, reach,
                            outliers.samples[plane]);
        }
    search_edge(capture.frame, plane, tiles, reach_at, outliers.samples[plane]);
}

// How far a line's mean is from the middle of its neighbours' means, and how far from both of the two that
// are in the middle: a line beside an edge is like one of them.
struct LineOff {
    float from_middle, from_both;
};

LineOff line_off(const std::vector<float>& means, int line) {
    // As many at both sides, so that a slope is none, and without the line itself, which is the median of a
    // slope.
    const int reach = std::min({3, line, static_cast<int>(means.size()) - 1 - line});
    std::vector<float> around;
    for (int k = line - reach; k <= line + reach; ++k)
        if (k != line)
            around.push_back(means[static_cast<size_t>(k)]);
    if (around.empty())
        return {0, 0};
    std::ranges::sort(around);
    const float lower = around[around.size() / 2 - 1], upper = around[around.size() / 2];
    const float mean = means[static_cast<size_t>(line)];
    return {mean - (lower + upper) / 2, std::max({lower - mean, mean - upper, 0.0F})};
}

// How many of the samples of each line stand out, of `lines` that are `stride` samples apart.
std::vector<int> counts_along(const std::vector<uint32_t>& samples, int lines, int stride) {
    std::vector<int> counts(static_cast<size_t>(lines));
    for (const uint32_t place : samples)
        ++counts[place / static_cast<uint32_t>(stride) % static_cast<uint32_t>(lines)];
    return counts;
}

// The lines from `first` to before `end` are off as one: from the line before and from the line behind them.
bool are_off(const std::vector<float>& means, size_t first, size_t end, float reach) {
    const float lower = std::min(means[first - 1], means[end]) - reach;
    const float upper = std::max(means[first - 1], means[end]) + reach;
    return std::all_of(means.begin() + static_cast<std::ptrdiff_t>(first),
                       means.begin() + static_cast<std::ptrdiff_t>(end),
                       [&](float mean) { return mean < lower || mean > upper; });
}

// Lines whose mean is far from those of their neighbours, and runs of lines of which more than `most` samples
// stand out: such hide each other.
std::vector<int> find_lines(const std::vector<float>& means, float least, const std::vector<int>& out,
                            int most) {
    std::vector<float> from_middle, from_both;
    for (int i = 0; i < static_cast<int>(means.size()); ++i) {
        const LineOff off = line_off(means, i);
        from_middle.push_back(off.from_middle);
        from_both.push_back(off.from_both);
    }
    const auto reach = static_cast<float>(8 * deviation_from(from_middle, 0)) + least;
    std::vector<uint8_t> dead(means.size());
    for (size_t i = 0; i < means.size(); ++i)
        dead[i] = from_both[i] > reach ? 1 : 0;
    for (size_t first = 1, end = 1; first < means.size(); first = end + 1) {
        for (end = first; end < means.size() && out[end] > most; ++end) {
        }
        if (end > first && end < means.size() && are_off(means, first, end, reach))
            std::fill(dead.begin() + static_cast<std::ptrdiff_t>(first),
                      dead.begin() + static_cast<std::ptrdiff_t>(end), uint8_t{1});
    }
    std::vector<int> lines;
    for (size_t i = 0; i < dead.size(); ++i)
        if (dead[i] != 0)
            lines.push_back(static_cast<int>(i));
    return lines;
}

// How far a tile lies off the middle between the tiles at both sides of it, in the middle one of up to four
// directions: neither a slope nor an edge is a spot. 0 at a corner, where there is no such middle.
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

// The same without what a barrel vignettes: that darkens the other corners too, if not as much.
float depth_beyond_barrel(const FrameTiles& tiles, const std::vector<float>& rest, int column, int row) {
    const int across = tiles.columns - 1 - column, down = tiles.rows - 1 - row;
    std::vector<float> others{depth_of(tiles, rest, across, row), depth_of(tiles, rest, column, down),
                              depth_of(tiles, rest, across, down)};
    const auto lens = static_cast<float>(std::min(median_of(others), 0.0));
    return depth_of(tiles, rest, column, row) - 2 * lens;
}

// What the surface leaves of each tile, by the samples of it that are not defective; 0 where none is left.
std::vector<float> rest_of_good_samples(const FlatCapture& capture, const Analysis& analysis, size_t plane,
                                        const std::vector<uint32_t>& defective) {
    const FrameTiles& tiles = analysis.tiles;
    const PlaneAnalysis& p = analysis.planes[plane];
    const auto width = static_cast<uint32_t>(capture.frame.width / 2);
    struct Sum {
        float samples = 0;
        int count = 0;
    };
    std::map<size_t, Sum> left_out;
    for (const uint32_t place : defective) {
        const auto x = static_cast<int>(place % width), y = static_cast<int>(place / width);
        if (x / tiles.side >= tiles.columns || y / tiles.side >= tiles.rows)
            continue;
        Sum& sum = left_out[tiles.index(x / tiles.side, y / tiles.side)];
        sum.samples += static_cast<float>(
            capture.frame.at(2 * x + static_cast<int>(plane & 1), 2 * y + static_cast<int>(plane >> 1)));
        ++sum.count;
    }
    std::vector<float> rest = p.rest;
    const int samples = tiles.tile_samples();
    for (const auto& [at, sum] : left_out) {
        const float good = tiles.planes[plane].mean[at] * static_cast<float>(samples) - sum.samples;
        const auto black = static_cast<float>(capture.black[plane]);
        rest[at] = sum.count == samples ? 0
                                        : (good / static_cast<float>(samples - sum.count) - black)
                                                  / std::max(p.expected[at], 1e-3F)
                                              - 1;
    }
    return rest;
}

// Tiles that are darker than those around them by more than noise makes.
void find_dust(const FlatCapture& capture, const Analysis& analysis, size_t plane, Outliers& outliers) {
    const FrameTiles& tiles = analysis.tiles;
    const PlaneAnalysis& p = analysis.planes[plane];
    const DeviationTable deviations(p.noise, capture.frame.full_scale());
    const double aspect = p.cells.aspect;
    const std::vector<float>& rest = outliers.rest[plane];
    std::vector<float> scratch = rest;
    const auto spread = static_cast<float>(deviation_from(scratch, 0));
    for (int row = 0; row < tiles.rows; ++row)
        for (int column = 0; column < tiles.columns; ++column) {
            const size_t at = tiles.index(column, row);
            const float light = std::max(p.expected[at], 0.1F);
            const float noise = deviations.at(light + static_cast<float>(capture.black[plane]))
                                / static_cast<float>(tiles.side) / light;
            const float reach = tile_reach * std::max(noise * 1.1F, spread) + least_shadow;
            if (rest[at] >= -reach / 2)
                continue;
            const bool barrel =
                beyond_barrel(u_of(column, tiles.across, aspect), v_of(row, tiles.down, aspect));
            const float depth =
                barrel ? depth_beyond_barrel(tiles, rest, column, row) : depth_of(tiles, rest, column, row);
            if (depth < -reach)
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
        find_samples(capture, analysis, plane, outliers);
        const int width = capture.frame.width / 2, height = capture.frame.height / 2;
        const std::vector<uint32_t>& samples = outliers.samples[plane];
        outliers.rows[plane] =
            find_lines(tiles.row_means, least, counts_along(samples, height, width), width / 2);
        outliers.columns[plane] =
            find_lines(tiles.column_means, least, counts_along(samples, width, 1), height / 2);
        outliers.rest[plane] = rest_of_good_samples(capture, analysis, plane, outliers.samples[plane]);
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
