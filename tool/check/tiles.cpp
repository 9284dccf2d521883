// measure_tiles, histogram_of
#include "check/tiles.h"

#include <algorithm>

namespace zerklsc::tool {
namespace {

// The sums of each frame column over the rows of one row of tiles. A frame column belongs to one column of a
// plane, so that no plane has to be taken apart, and every loop over columns runs over neighbours in memory.
struct ColumnSums {
    explicit ColumnSums(size_t width)
        : sum(width), square_h(width), square_v(width), lowest(width), highest(width) {}

    void clear() {
        std::ranges::fill(sum, 0);
        std::ranges::fill(square_h, 0.0F);
        std::ranges::fill(square_v, 0.0F);
        std::ranges::fill(lowest, uint16_t{0xFFFF});
        std::ranges::fill(highest, uint16_t{0});
    }

    std::vector<uint32_t> sum;
    std::vector<float> square_h, square_v; // of the differences to the neighbour at the right and below
    std::vector<uint16_t> lowest, highest;
};

void add_row(const uint16_t* row, size_t width, ColumnSums& sums) {
    uint32_t* const sum = sums.sum.data();
    uint16_t* const lowest = sums.lowest.data();
    uint16_t* const highest = sums.highest.data();
    for (size_t x = 0; x < width; ++x) {
        sum[x] += row[x];
        lowest[x] = std::min(lowest[x], row[x]);
        highest[x] = std::max(highest[x], row[x]);
    }
}

void add_squares(const uint16_t* a, const uint16_t* b, size_t width, float* squares) {
    for (size_t x = 0; x < width; ++x) {
        const auto difference = static_cast<float>(a[x] - b[x]);
        squares[x] += difference * difference;
    }
}

// The mean of the even and of the odd columns of a row.
std::array<float, 2> row_means(const uint16_t* row, size_t width) {
    uint32_t even = 0, odd = 0;
    for (size_t x = 0; x < width; x += 2) {
        even += row[x];
        odd += row[x + 1];
    }
    const float count = static_cast<float>(width) / 2;
    return {static_cast<float>(even) / count, static_cast<float>(odd) / count};
}

// Horizontal neighbours in a plane are two columns apart; a pair's difference stands at its left column, and
// that of every second pair is not used.
void store_tile(const ColumnSums& sums, size_t side, size_t first, PlaneTiles& tiles, size_t at) {
    const auto samples = static_cast<float>(side * side);
    uint32_t sum = 0;
    float square_h = 0, square_v = 0;
    uint16_t lowest = 0xFFFF, highest = 0;
    for (size_t i = 0; i < side; ++i) {
        const size_t x = first + 2 * i;
        sum += sums.sum[x];
        square_v += sums.square_v[x];
        if (i % 2 == 0)
            square_h += sums.square_h[x];
        lowest = std::min(lowest, sums.lowest[x]);
        highest = std::max(highest, sums.highest[x]);
    }
    tiles.mean[at] = static_cast<float>(sum) / samples;
    // Half of all samples are the left or upper one of a pair that was used, and var(a - b) is twice var(a).
    tiles.variance_h[at] = square_h / samples;
    tiles.variance_v[at] = square_v / samples;
    tiles.darkest[at] = lowest;
    tiles.brightest[at] = highest;
}

void allocate(FrameTiles& tiles) {
    for (PlaneTiles& plane : tiles.planes) {
        plane.mean.resize(tiles.count());
        plane.variance_h.resize(tiles.count());
        plane.variance_v.resize(tiles.count());
        plane.darkest.resize(tiles.count());
        plane.brightest.resize(tiles.count());
        plane.row_means.resize(static_cast<size_t>(tiles.rows * tiles.side));
        plane.column_means.assign(static_cast<size_t>(tiles.columns * tiles.side), 0.0F);
    }
}

// One row of tiles of the two planes that share the frame rows of this parity.
void measure_row_of_tiles(const RawFrame& frame, int tile_row, int parity, ColumnSums& sums,
                          FrameTiles& tiles) {
    const auto stride = static_cast<size_t>(frame.width);
    const auto side = static_cast<size_t>(tiles.side);
    const size_t width = static_cast<size_t>(tiles.columns) * 2 * side;
    const auto first_plane = static_cast<size_t>(2 * parity);
    sums.clear();
    for (size_t j = 0; j < side; ++j) {
        const size_t plane_row = static_cast<size_t>(tile_row) * side + j;
        const uint16_t* const row = &frame.samples[(2 * plane_row + static_cast<size_t>(parity)) * stride];
        add_row(row, width, sums);
        add_squares(row, row + 2, width - 2, sums.square_h.data());
        if (j % 2 == 0)
            add_squares(row, row + 2 * stride, width, sums.square_v.data());
        const auto means = row_means(row, width);
        tiles.planes[first_plane].row_means[plane_row] = means[0];
        tiles.planes[first_plane + 1].row_means[plane_row] = means[1];
    }
    const auto rows = static_cast<float>(tiles.rows * tiles.side);
    for (size_t parity_x = 0; parity_x < 2; ++parity_x) {
        PlaneTiles& plane = tiles.planes[first_plane + parity_x];
        for (int i = 0; i < tiles.columns; ++i)
            store_tile(sums, side, static_cast<size_t>(i) * 2 * side + parity_x, plane,
                       tiles.index(i, tile_row));
        for (size_t x = 0; x < plane.column_means.size(); ++x)
            plane.column_means[x] += static_cast<float>(sums.sum[2 * x + parity_x]) / rows;
    }
}

// Where the light itself changes from sample to sample, that is a part of the differences, which the means of
// the tiles at both sides tell.
void take_slope_off(const FrameTiles& tiles, PlaneTiles& plane) {
    const auto slope = [&](int column, int row, int to_column, int to_row) {
        const int tiles_apart = std::max(to_column - column, to_row - row);
        const float rise = plane.mean[tiles.index(to_column, to_row)] - plane.mean[tiles.index(column, row)];
        return tiles_apart == 0 ? 0 : rise / static_cast<float>(tiles_apart * tiles.side);
    };
    for (int row = 0; row < tiles.rows; ++row)
        for (int column = 0; column < tiles.columns; ++column) {
            const float h = slope(std::max(column - 1, 0), row, std::min(column + 1, tiles.columns - 1), row);
            const float v = slope(column, std::max(row - 1, 0), column, std::min(row + 1, tiles.rows - 1));
            float& variance_h = plane.variance_h[tiles.index(column, row)];
            float& variance_v = plane.variance_v[tiles.index(column, row)];
            variance_h = std::max(variance_h - h * h / 2, variance_h / 10);
            variance_v = std::max(variance_v - v * v / 2, variance_v / 10);
        }
}

} // namespace

FrameTiles measure_tiles(const RawFrame& frame) {
    FrameTiles tiles;
    while (tiles.side > smallest_tile_side
           && std::min(frame.width, frame.height) / 2 / tiles.side < least_tiles)
        tiles.side /= 2;
    tiles.columns = frame.width / 2 / tiles.side;
    tiles.rows = frame.height / 2 / tiles.side;
    tiles.across = frame.width / 2.0 / tiles.side;
    tiles.down = frame.height / 2.0 / tiles.side;
    allocate(tiles);
    ColumnSums sums(static_cast<size_t>(frame.width));
    for (int row = 0; row < tiles.rows; ++row)
        for (int parity = 0; parity < 2; ++parity)
            measure_row_of_tiles(frame, row, parity, sums, tiles);
    for (PlaneTiles& plane : tiles.planes)
        take_slope_off(tiles, plane);
    return tiles;
}

std::vector<uint32_t> histogram_of(const RawFrame& frame, int plane, int row_step) {
    std::vector<uint32_t> counts(size_t{1} << 16);
    const auto width = static_cast<size_t>(frame.width);
    for (int y = plane >> 1; y < frame.height; y += 2 * row_step) {
        const uint16_t* const row = &frame.samples[static_cast<size_t>(y) * width];
        for (size_t x = static_cast<size_t>(plane & 1); x < width; x += 2)
            ++counts[row[x]];
    }
    return counts;
}

} // namespace zerklsc::tool
