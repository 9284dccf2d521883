// PlaneLevels, measure_plane, clipped_fraction
#include "imaging/levels.h"

#include <algorithm>
#include <cmath>

namespace zerklsc::tool {
namespace {

struct Range {
    int begin, end;
};

// Part `i` of `parts` parts of 0 .. size - 1.
Range part_of(int size, int parts, int i) {
    const auto edge = [&](int k) { return static_cast<int>(int64_t{size} * k / parts); };
    return {edge(i), edge(i + 1)};
}

// The sum of a plane's samples over plane columns and rows. Whole numbers: the same on every machine.
uint64_t sum_of(const RawFrame& frame, int plane, Range columns, Range rows) {
    uint64_t sum = 0;
    for (int y = rows.begin; y < rows.end; ++y)
        for (int x = columns.begin; x < columns.end; ++x)
            sum += frame.at(2 * x + (plane & 1), 2 * y + (plane >> 1));
    return sum;
}

double mean_of(uint64_t sum, Range columns, Range rows) {
    return static_cast<double>(sum) / (double(columns.end - columns.begin) * double(rows.end - rows.begin));
}

} // namespace

double PlaneLevels::centre() const {
    const auto middle = static_cast<size_t>(blocks / 2);
    return means[middle * static_cast<size_t>(blocks) + middle];
}

std::array<double, 4> PlaneLevels::corners() const {
    const auto row = static_cast<size_t>(blocks);
    return {means[0], means[row - 1], means[means.size() - row], means[means.size() - 1]};
}

double PlaneLevels::corner_to_centre() const {
    const auto c = corners();
    return centre() > 0 ? (c[0] + c[1] + c[2] + c[3]) / 4 / centre() : 0;
}

double PlaneLevels::flatness() const {
    double worst = 0;
    for (const double m : means)
        worst = std::max(worst, std::abs(m - mean));
    return mean > 0 ? worst / mean : 0;
}

PlaneLevels measure_plane(const RawFrame& frame, int plane, int blocks) {
    PlaneLevels levels;
    levels.blocks = blocks;
    uint64_t total = 0;
    for (int j = 0; j < blocks; ++j) {
        for (int i = 0; i < blocks; ++i) {
            const Range columns = part_of(frame.width / 2, blocks, i);
            const Range rows = part_of(frame.height / 2, blocks, j);
            const uint64_t sum = sum_of(frame, plane, columns, rows);
            total += sum;
            levels.means.push_back(mean_of(sum, columns, rows));
        }
    }
    levels.mean = mean_of(total, {0, frame.width / 2}, {0, frame.height / 2});
    return levels;
}

double clipped_fraction(const RawFrame& frame, int plane) {
    int64_t clipped = 0;
    for (int y = plane >> 1; y < frame.height; y += 2)
        for (int x = plane & 1; x < frame.width; x += 2)
            clipped += frame.at(x, y) >= frame.white_level() ? 1 : 0;
    return static_cast<double>(clipped) / (double(frame.width / 2) * double(frame.height / 2));
}

} // namespace zerklsc::tool
