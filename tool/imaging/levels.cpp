// PlaneLevels, usual_blocks, measure_planes, levels_of, colour_changes, colour_shading, add_light,
// clipped_fractions
#include "imaging/levels.h"

#include <algorithm>
#include <cmath>

namespace zerklsc::tool {
namespace {

// 0 .. size divided into `parts` parts of (nearly) equal size: where each begins, and the end of the last.
std::vector<int> edges_of(int size, int parts) {
    std::vector<int> edges;
    for (int i = 0; i <= parts; ++i)
        edges.push_back(static_cast<int>(int64_t{size} * i / parts));
    return edges;
}

int odd_count(double wanted) {
    return std::max(1, (static_cast<int>(wanted) - 1) / 2 * 2 + 1);
}

// Sums over blocks. Whole numbers: the same on every machine.
class BlockSums {
  public:
    BlockSums(int width, int height, int columns, int rows)
        : columns_(edges_of(width, columns)), rows_(edges_of(height, rows)),
          sums_(static_cast<size_t>(columns) * static_cast<size_t>(rows)) {}

    // How many rows from the plane's top the present blocks end.
    int next_edge() const { return rows_[block_row_ + 1]; }

    // The sums of the plane's columns, which are every second one, over rows of the present blocks, up to row
    // `end` of the plane.
    void add(const uint32_t* column_sums, int end) {
        const size_t columns = columns_.size() - 1;
        for (size_t i = 0; i < columns; ++i)
            for (int x = columns_[i]; x < columns_[i + 1]; ++x)
                sums_[block_row_ * columns + i] += column_sums[2 * x];
        if (end == next_edge() && block_row_ + 2 < rows_.size())
            ++block_row_;
    }

    BlockMeans means() const {
        BlockMeans means{static_cast<int>(columns_.size()) - 1, static_cast<int>(rows_.size()) - 1, {}};
        for (size_t j = 0; j + 1 < rows_.size(); ++j)
            for (size_t i = 0; i + 1 < columns_.size(); ++i)
                means.values.push_back(
                    static_cast<double>(sums_[j * (columns_.size() - 1) + i])
                    / (double(columns_[i + 1] - columns_[i]) * double(rows_[j + 1] - rows_[j])));
        return means;
    }

    uint64_t total() const {
        uint64_t total = 0;
        for (const uint64_t sum : sums_)
            total += sum;
        return total;
    }

  private:
    std::vector<int> columns_, rows_;
    std::vector<uint64_t> sums_;
    size_t block_row_ = 0;
};

// A plane whose rows come one by one.
class PlaneSums {
  public:
    PlaneSums(int width, int height, int blocks, double side)
        : coarse_(width, height, blocks, blocks),
          fine_(width, height, odd_count(width / side), odd_count(height / side)),
          samples_(double(width) * double(height)) {}

    // How many rows from the top a block ends next.
    int next_edge() const { return std::min(coarse_.next_edge(), fine_.next_edge()); }

    // As BlockSums::add(), up to that edge.
    void add(const uint32_t* column_sums) {
        const int end = next_edge();
        coarse_.add(column_sums, end);
        fine_.add(column_sums, end);
    }

    PlaneLevels levels(const RawFrame& frame) const {
        return {coarse_.means(), fine_.means(), static_cast<double>(coarse_.total()) / samples_, frame.width,
                frame.height};
    }

  private:
    BlockSums coarse_, fine_;
    double samples_;
};

const uint16_t* row_of(const RawFrame& frame, int y) {
    return &frame.samples[static_cast<size_t>(y) * static_cast<size_t>(frame.width)];
}

// The pixel in the middle of a block of a frame divided so.
Deviation deviation_at(const PlaneLevels& levels, int column, int row, double fraction) {
    return {fraction, (2 * column + 1) * levels.frame_width / (2 * levels.fine.columns),
            (2 * row + 1) * levels.frame_height / (2 * levels.fine.rows)};
}

// The deviation of largest size over all fine blocks; `deviation(column, row)` is that of one.
template <class F>
Deviation largest_deviation(const PlaneLevels& levels, F deviation) {
    Deviation worst;
    for (int j = 0; j < levels.fine.rows; ++j)
        for (int i = 0; i < levels.fine.columns; ++i)
            if (const double d = deviation(i, j); std::abs(d) > std::abs(worst.fraction))
                worst = deviation_at(levels, i, j, d);
    return worst;
}

} // namespace

double PlaneLevels::centre() const {
    return fine.at(fine.columns / 2, fine.rows / 2);
}

std::array<double, 4> PlaneLevels::corners() const {
    const int right = fine.columns - 1, bottom = fine.rows - 1;
    return {fine.at(0, 0), fine.at(right, 0), fine.at(0, bottom), fine.at(right, bottom)};
}

double PlaneLevels::corner_to_centre() const {
    const auto c = corners();
    return centre() > 0 ? (c[0] + c[1] + c[2] + c[3]) / 4 / centre() : 0;
}

double PlaneLevels::flatness() const {
    double worst = 0;
    for (const double m : coarse.values)
        worst = std::max(worst, std::abs(m - mean));
    return mean > 0 ? worst / mean : 0;
}

Deviation PlaneLevels::worst() const {
    if (!(mean > 0))
        return {};
    return largest_deviation(*this, [&](int i, int j) { return fine.at(i, j) / mean - 1; });
}

int usual_blocks(const RawDescription& frame) {
    return std::min(usual_block_count, std::min(frame.width, frame.height) / 2);
}

FrameLevels measure_planes(const RawFrame& frame, const BlackLevel& black, int blocks) {
    const int width = frame.width / 2, height = frame.height / 2;
    const double side = std::max(std::min(width, height) / 64.0, 8.0);
    FrameLevels levels;
    for (size_t first = 0; first < levels.size(); first += 2) {
        PlaneSums even(width, height, blocks, side), odd = even;
        std::vector<uint32_t> sums(static_cast<size_t>(frame.width)); // of at most 32767 samples each
        for (int row = 0; row < height; ++row) {
            add_light(frame, 2 * row + static_cast<int>(first / 2), black, sums);
            if (row + 1 == even.next_edge()) {
                even.add(&sums[0]);
                odd.add(&sums[1]);
                std::ranges::fill(sums, 0U);
            }
        }
        levels[first] = even.levels(frame);
        levels[first + 1] = odd.levels(frame);
    }
    return levels;
}

const PlaneLevels& levels_of(const FrameLevels& levels, BayerPattern pattern, Colour colour) {
    return levels[static_cast<size_t>(plane_of_colour(pattern, colour))];
}

BlockMeans colour_changes(const FrameLevels& levels, BayerPattern pattern, Colour colour) {
    const PlaneLevels& own = levels_of(levels, pattern, colour);
    const PlaneLevels &gr = levels_of(levels, pattern, Colour::gr),
                      &gb = levels_of(levels, pattern, Colour::gb);
    const double centre_green = gr.centre() + gb.centre();
    const bool has_light = own.centre() > 0 && centre_green > 0;
    BlockMeans changes = own.fine;
    for (size_t i = 0; i < changes.values.size(); ++i) {
        const double green = gr.fine.values[i] + gb.fine.values[i];
        changes.values[i] =
            has_light && green > 0 ? own.fine.values[i] / green / (own.centre() / centre_green) - 1 : 0;
    }
    return changes;
}

Deviation colour_shading(const FrameLevels& levels, BayerPattern pattern, Colour colour) {
    const BlockMeans changes = colour_changes(levels, pattern, colour);
    return largest_deviation(levels_of(levels, pattern, colour),
                             [&](int i, int j) { return changes.at(i, j); });
}

void add_light(const RawFrame& frame, int y, const BlackLevel& black, std::vector<uint32_t>& column_sums) {
    constexpr size_t lanes = 16;
    std::array<uint16_t, lanes> level;
    for (size_t i = 0; i < lanes; ++i)
        level[i] = static_cast<uint16_t>(std::min(black[2 * (static_cast<size_t>(y) & 1) + i % 2], 0xFFFF));
    const uint16_t* const row = row_of(frame, y);
    uint32_t* const sums = column_sums.data();
    const size_t width = column_sums.size();
    const auto light = [](uint16_t v, uint16_t b) { return static_cast<uint16_t>(std::max(v, b) - b); };
    size_t x = 0;
    for (; x + lanes <= width; x += lanes)
        for (size_t i = 0; i < lanes; ++i)
            sums[x + i] += light(row[x + i], level[i]);
    for (; x < width; ++x)
        sums[x] += light(row[x], level[x % lanes]);
}

std::array<double, 4> clipped_fractions(const RawFrame& frame) {
    constexpr size_t lanes = 16;
    const auto width = static_cast<size_t>(frame.width);
    const auto below_white = static_cast<uint16_t>(std::clamp(frame.white_level() - 1, 0, 0xFFFF));
    std::array<double, 4> fractions{};
    for (int y = 0; y < frame.height; ++y) {
        const uint16_t* const row = row_of(frame, y);
        std::array<uint16_t, lanes> clipped{}; // of at most 4096 samples each
        const auto count = [below_white](uint16_t& clipped_in_lane, uint16_t sample) {
            clipped_in_lane = static_cast<uint16_t>(clipped_in_lane + (sample > below_white ? 1 : 0));
        };
        size_t x = 0;
        for (; x + lanes <= width; x += lanes)
            for (size_t i = 0; i < lanes; ++i)
                count(clipped[i], row[x + i]);
        for (; x < width; ++x)
            count(clipped[x % lanes], row[x]);
        for (size_t i = 0; i < lanes; ++i)
            fractions[2 * (static_cast<size_t>(y) & 1) + i % 2] += clipped[i];
    }
    for (double& fraction : fractions)
        fraction /= double(frame.width / 2) * double(frame.height / 2);
    return fractions;
}

} // namespace zerklsc::tool
