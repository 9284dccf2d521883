// PanelField, brightness_field, clipped_places, block_field, node_field, gain_field
#include "preview/panel_field.h"

#include <algorithm>
#include <numeric>

#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// The samples of a plane that fall on one drawn pixel: one at least.
struct SamplesUnder {
    int x0, x1, y0, y1;

    SamplesUnder(const RawFrame& frame, PanelSize size, int x, int y) {
        const int w = frame.width / 2, h = frame.height / 2;
        x0 = x * w / size.width, x1 = std::max((x + 1) * w / size.width, x0 + 1);
        y0 = y * h / size.height, y1 = std::max((y + 1) * h / size.height, y0 + 1);
    }
    double count() const { return double(x1 - x0) * (y1 - y0); }
};

// The mean of what is above `black`.
double mean_of(const RawFrame& frame, int plane, const SamplesUnder& under, int black) {
    uint64_t sum = 0;
    for (int j = under.y0; j < under.y1; ++j)
        for (int i = under.x0; i < under.x1; ++i) {
            const int light = frame.at(2 * i + (plane & 1), 2 * j + (plane >> 1)) - black;
            sum += static_cast<uint64_t>(std::max(light, 0));
        }
    return static_cast<double>(sum) / under.count();
}

bool any_clipped(const RawFrame& frame, int plane, const SamplesUnder& under) {
    for (int j = under.y0; j < under.y1; ++j)
        for (int i = under.x0; i < under.x1; ++i)
            if (frame.at(2 * i + (plane & 1), 2 * j + (plane >> 1)) >= frame.white_level())
                return true;
    return false;
}

// Values that lie `stride` apart.
struct Line {
    double* values;
    int count, stride;
};

// Replaces each value by the mean over a window that is cut off at the ends.
void smooth(Line line, int radius) {
    std::vector<double> sums{0}; // of so many values from the beginning
    for (int i = 0; i < line.count; ++i)
        sums.push_back(sums.back() + line.values[static_cast<ptrdiff_t>(i) * line.stride]);
    for (int i = 0; i < line.count; ++i) {
        const int begin = std::max(i - radius, 0), end = std::min(i + radius + 1, line.count);
        const double sum = sums[static_cast<size_t>(end)] - sums[static_cast<size_t>(begin)];
        line.values[static_cast<ptrdiff_t>(i) * line.stride] = sum / (end - begin);
    }
}

void smooth(PanelField& field, int radius) {
    for (int y = 0; y < field.height; ++y)
        smooth({&field.values[static_cast<size_t>(y) * static_cast<size_t>(field.width)], field.width, 1},
               radius);
    for (int x = 0; x < field.width; ++x)
        smooth({&field.values[static_cast<size_t>(x)], field.height, field.width}, radius);
}

// Between the values of `at(i, j)` around (u, v).
template <class F>
double bilinear(double u, double v, F at) {
    const int i = static_cast<int>(u), j = static_cast<int>(v);
    const double fu = u - i, fv = v - j;
    const double above = at(i, j) * (1 - fu) + at(i + 1, j) * fu;
    const double below = at(i, j + 1) * (1 - fu) + at(i + 1, j + 1) * fu;
    return above * (1 - fv) + below * fv;
}

} // namespace

double PanelField::smallest() const {
    return *std::ranges::min_element(values);
}

double PanelField::largest() const {
    return *std::ranges::max_element(values);
}

double PanelField::mean() const {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

PanelField PanelField::scaled(double factor) const {
    PanelField result = *this;
    for (double& v : result.values)
        v *= factor;
    return result;
}

PanelField brightness_field(const RawFrame& frame, int plane, int black, PanelSize size) {
    PanelField field{size.width, size.height, {}};
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            field.values.push_back(mean_of(frame, plane, SamplesUnder(frame, size, x, y), black));
    for (int round = 0; round < 2; ++round)
        smooth(field, 3);
    return field;
}

std::vector<bool> clipped_places(const RawFrame& frame, int plane, PanelSize size) {
    std::vector<bool> places;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            places.push_back(any_clipped(frame, plane, SamplesUnder(frame, size, x, y)));
    return places;
}

PanelField block_field(const BlockMeans& blocks, PanelSize size) {
    PanelField field{size.width, size.height, {}};
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            // Half a block beyond the middles of the outermost blocks, these go on.
            const double u =
                std::clamp((x + 0.5) * blocks.columns / size.width - 0.5, 0.0, blocks.columns - 1.0);
            const double v = std::clamp((y + 0.5) * blocks.rows / size.height - 0.5, 0.0, blocks.rows - 1.0);
            field.values.push_back(bilinear(u, v, [&](int i, int j) {
                return blocks.at(std::min(i, blocks.columns - 1), std::min(j, blocks.rows - 1));
            }));
        }
    return field;
}

PanelField node_field(const GainTables& tables, const std::vector<double>& values, PanelSize size) {
    const auto node = [&](int i, int j) {
        return values[static_cast<size_t>((j + 1) * tables.table_width + i + 1)];
    };
    PanelField field{size.width, size.height, {}};
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const double u = (x + 0.5) * tables.plane_width() / size.width / tables.step;
            const double v = (y + 0.5) * tables.plane_height() / size.height / tables.step;
            field.values.push_back(bilinear(u, v, node));
        }
    return field;
}

PanelField gain_field(const GainTables& tables, int plane, PanelSize size) {
    std::vector<double> gains;
    for (const uint16_t gain : tables.gains[static_cast<size_t>(plane)])
        gains.push_back(gain / double{ZERKLSC_UNITY_GAIN});
    return node_field(tables, gains, size);
}

} // namespace zerklsc::tool
