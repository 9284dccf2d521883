// count_of, keep_out
#include "check/keep_out.h"

#include <algorithm>

#include "check/robust.h"

namespace zerklsc::tool {
namespace {

// One plane of a frame.
struct Samples {
    RawFrame& frame;
    size_t plane;

    int width() const { return frame.width / 2; }
    int height() const { return frame.height / 2; }
    uint16_t& at(int x, int y) const {
        return frame.at(2 * x + static_cast<int>(plane & 1), 2 * y + static_cast<int>(plane >> 1));
    }
};

// The nearest line before or behind that is good. The outermost lines always are: they have no two neighbours
// to be far from (check/outliers.h).
int good_line(const std::vector<int>& dead, int line, int direction) {
    int next = line + direction;
    while (std::ranges::binary_search(dead, next))
        next += direction;
    return next;
}

void replace_lines(const std::vector<int>& rows, const std::vector<int>& columns, const Samples& samples) {
    for (const int row : rows) {
        const int above = good_line(rows, row, -1), below = good_line(rows, row, 1);
        for (int x = 0; x < samples.width(); ++x)
            samples.at(x, row) = static_cast<uint16_t>((samples.at(x, above) + samples.at(x, below) + 1) / 2);
    }
    for (const int column : columns) {
        const int left = good_line(columns, column, -1), right = good_line(columns, column, 1);
        for (int y = 0; y < samples.height(); ++y)
            samples.at(column, y) =
                static_cast<uint16_t>((samples.at(left, y) + samples.at(right, y) + 1) / 2);
    }
}

void replace_samples(const Outliers& outliers, const Samples& samples) {
    constexpr int reach = 2;
    const std::vector<int>& rows = outliers.rows[samples.plane];
    const std::vector<int>& columns = outliers.columns[samples.plane];
    std::vector<float> around;
    for (const uint32_t place : outliers.samples[samples.plane]) {
        const int x = static_cast<int>(place) % samples.width(),
                  y = static_cast<int>(place) / samples.width();
        if (std::ranges::binary_search(rows, y) || std::ranges::binary_search(columns, x))
            continue;
        around.clear();
        for (int j = std::max(y - reach, 0); j <= std::min(y + reach, samples.height() - 1); ++j)
            for (int i = std::max(x - reach, 0); i <= std::min(x + reach, samples.width() - 1); ++i)
                if (i != x || j != y)
                    around.push_back(samples.at(i, j));
        samples.at(x, y) = static_cast<uint16_t>(median_of(around) + 0.5);
    }
}

// 1 for the tiles that dust may shade: its faint edge reaches beyond the tiles that stand out.
std::vector<uint8_t> shaded_tiles(const FrameTiles& tiles, const std::vector<uint32_t>& dusty) {
    constexpr int edge = 2;
    std::vector<uint8_t> shaded(tiles.count());
    for (const uint32_t place : dusty) {
        const int column = static_cast<int>(place) % tiles.columns,
                  row = static_cast<int>(place) / tiles.columns;
        for (int j = std::max(row - edge, 0); j <= std::min(row + edge, tiles.rows - 1); ++j)
            for (int i = std::max(column - edge, 0); i <= std::min(column + edge, tiles.columns - 1); ++i)
                shaded[tiles.index(i, j)] = 1;
    }
    return shaded;
}

// What the surface leaves of the shaded tiles, by that of the tiles around them: the smoothest surface, each
// tile being the mean of its neighbours, by the method of Gauss and Seidel.
void fill(const FrameTiles& tiles, const std::vector<uint8_t>& shaded, std::vector<float>& rest) {
    constexpr int sweeps = 60;
    for (size_t at = 0; at < rest.size(); ++at)
        rest[at] = shaded[at] != 0 ? 0 : rest[at];
    for (int sweep = 0; sweep < sweeps; ++sweep)
        for (int row = 0; row < tiles.rows; ++row)
            for (int column = 0; column < tiles.columns; ++column) {
                if (shaded[tiles.index(column, row)] == 0)
                    continue;
                const int left = std::max(column - 1, 0), right = std::min(column + 1, tiles.columns - 1);
                const int top = std::max(row - 1, 0), bottom = std::min(row + 1, tiles.rows - 1);
                rest[tiles.index(column, row)] =
                    (rest[tiles.index(left, row)] + rest[tiles.index(right, row)]
                     + rest[tiles.index(column, top)] + rest[tiles.index(column, bottom)])
                    / 4;
            }
}

// Scales the light of a tile so that its mean is `light` above black. The last tiles take with them what
// belongs to no tile.
void scale_tile(const Samples& samples, const FrameTiles& tiles, size_t at, double light, int black) {
    const int column = static_cast<int>(at) % tiles.columns, row = static_cast<int>(at) / tiles.columns;
    const int right = column + 1 < tiles.columns ? (column + 1) * tiles.side : samples.width();
    const int bottom = row + 1 < tiles.rows ? (row + 1) * tiles.side : samples.height();
    const auto for_each = [&](auto&& visit) {
        for (int y = row * tiles.side; y < bottom; ++y)
            for (int x = column * tiles.side; x < right; ++x)
                visit(samples.at(x, y));
    };
    double sum = 0, count = 0;
    for_each([&](uint16_t& sample) {
        sum += sample - black;
        count += 1;
    });
    const double factor = sum > 0 ? light * count / sum : 1;
    const double top = samples.frame.full_scale();
    for_each([&](uint16_t& sample) {
        sample = static_cast<uint16_t>(std::clamp(black + factor * (sample - black) + 0.5, 0.0, top));
    });
}

void raise_dust(const Outliers& outliers, const Analysis& analysis, int black, const Samples& samples) {
    const FrameTiles& tiles = analysis.tiles;
    const std::vector<uint32_t>& dusty = outliers.dust_tiles[samples.plane];
    if (dusty.empty())
        return;
    const std::vector<float>& expected = analysis.planes[samples.plane].expected;
    const std::vector<uint8_t> shaded = shaded_tiles(tiles, dusty);
    std::vector<float> rest = outliers.rest[samples.plane];
    fill(tiles, shaded, rest);
    for (size_t at = 0; at < tiles.count(); ++at)
        if (shaded[at] != 0)
            scale_tile(samples, tiles, at, static_cast<double>(expected[at] * (1 + rest[at])), black);
}

} // namespace

KeptOut count_of(const Outliers& outliers) {
    KeptOut kept_out;
    for (size_t plane = 0; plane < 4; ++plane) {
        kept_out.samples += static_cast<int>(outliers.samples[plane].size());
        kept_out.lines += static_cast<int>(outliers.rows[plane].size() + outliers.columns[plane].size());
        kept_out.dust_spots += outliers.dust_spots[plane];
    }
    return kept_out;
}

void keep_out(const Outliers& outliers, const Analysis& analysis, const BlackLevel& black, RawFrame& frame) {
    for (size_t plane = 0; plane < 4; ++plane) {
        const Samples samples{frame, plane};
        replace_lines(outliers.rows[plane], outliers.columns[plane], samples);
        replace_samples(outliers, samples);
        raise_dust(outliers, analysis, black[plane], samples);
    }
}

} // namespace zerklsc::tool
