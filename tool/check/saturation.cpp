// check_saturation: samples at the white level, and a plateau below it
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <fmt/format.h>

#include "check/checks.h"

namespace zerklsc::tool {
namespace {

// Defective pixels lie alone; of a tile in which the light is clipped, at least this many samples are.
int cluster_of(const FrameTiles& tiles) {
    return std::max(tiles.tile_samples() / 20, 2);
}

constexpr double most_defects = 0.005;

// How many samples of a tile have the value, or more. A row or column that has it alone is a defect of the
// sensor.
int count_in_tile(const RawFrame& frame, int side, size_t plane, int column, int row, int value,
                  bool or_more) {
    std::array<int, largest_tile_side> in_rows{}, in_columns{};
    int count = 0;
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) {
            const int sample = frame.at(2 * (column * side + i) + static_cast<int>(plane & 1),
                                        2 * (row * side + j) + static_cast<int>(plane >> 1));
            if (sample == value || (or_more && sample > value)) {
                ++count;
                ++in_rows[static_cast<size_t>(j)];
                ++in_columns[static_cast<size_t>(i)];
            }
        }
    if (count < side * side / 2) {
        count -= side * static_cast<int>(std::ranges::count(in_rows, side));
        count -= side * static_cast<int>(std::ranges::count(in_columns, side));
    }
    return count;
}

// The part of a plane's samples in clusters that have exactly this value, or more.
double clustered_share(const FlatCapture& capture, const FrameTiles& tiles, size_t plane, int value,
                       bool or_more) {
    int64_t found = 0;
    for (int row = 0; row < tiles.rows; ++row)
        for (int column = 0; column < tiles.columns; ++column) {
            if (tiles.planes[plane].brightest[tiles.index(column, row)] < value)
                continue;
            const int count = count_in_tile(capture.frame, tiles.side, plane, column, row, value, or_more);
            found += count >= cluster_of(tiles) ? count : 0;
        }
    return static_cast<double>(found) / tiles.samples();
}

// The highest value at which far more samples lie than at the ones that occur below it, leaving out what few
// defective pixels lie above; 0 where there is none.
int heap_of(const std::vector<uint32_t>& counts, bool noisy) {
    uint64_t total = 0;
    for (const uint32_t count : counts)
        total += count;
    const double smallest = std::max(2e-4 * static_cast<double>(total), 8.0);
    // Without noise, a smooth surface can lie at its highest value over a larger part than at the next ones.
    const double ratio = noisy ? 3 : 8;
    double above = 0;
    for (size_t value = counts.size(); value-- > 1 && above <= most_defects * static_cast<double>(total);) {
        const double here = counts[value];
        if (here >= smallest) {
            uint32_t next = 0;
            int seen = 0;
            for (size_t below = value; below-- > 0 && seen < 4;)
                if (counts[below] > 0) {
                    next = std::max(next, counts[below]);
                    ++seen;
                }
            if (seen > 0 && here > ratio * next)
                return static_cast<int>(value);
        }
        above += here;
    }
    return 0;
}

void check_plateau(const Judgement& judgement) {
    const RawFrame& frame = judgement.capture.frame;
    const int row_step = std::max(1, static_cast<int>(judgement.analysis.tiles.count() / 6000));
    double worst = 0;
    size_t where = 0;
    int level = 0;
    for (size_t plane = 0; plane < 4; ++plane) {
        const auto counts = histogram_of(frame, static_cast<int>(plane), row_step);
        const PlaneAnalysis& p = judgement.analysis.planes[plane];
        const bool noisy = variance_at(p.noise, p.bright + judgement.capture.black[plane]) > 0.5;
        const int heap = heap_of(counts, noisy);
        if (heap <= judgement.capture.black[plane] || heap >= frame.white_level())
            continue;
        const double share = clustered_share(judgement.capture, judgement.analysis.tiles, plane, heap, false);
        if (share > worst) {
            worst = share;
            where = plane;
            level = heap;
        }
    }
    judgement.add("plateau", judgement.capture.colour(where), 100 * worst,
                  fmt::format("the sensor saturates at {}: lower the exposure or the gain", level));
}

} // namespace

void check_saturation(const Judgement& judgement) {
    const FlatCapture& capture = judgement.capture;
    double worst = 0;
    size_t where = 0;
    std::string clipped;
    for (size_t plane = 0; plane < 4; ++plane) {
        const double share =
            clustered_share(capture, judgement.analysis.tiles, plane, capture.frame.white_level(), true);
        if (share > 0)
            clipped += (clipped.empty() ? "" : ", ") + capture.colour(plane);
        if (share > worst) {
            worst = share;
            where = plane;
        }
    }
    judgement.add("clipping", capture.colour(where), 100 * worst,
                  fmt::format("samples of {} are clipped: lower the exposure", clipped));
    check_plateau(judgement);
}

} // namespace zerklsc::tool
