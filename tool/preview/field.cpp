// Field, brightness_field, gain_field
#include "preview/field.h"

#include <algorithm>
#include <numeric>

#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// The mean of the plane's samples that fall on one drawn pixel: one at least.
double mean_under(const RawFrame& frame, int plane, const Field& field, int x, int y) {
    const int w = frame.width / 2, h = frame.height / 2;
    const int x0 = x * w / field.width, x1 = std::max((x + 1) * w / field.width, x0 + 1);
    const int y0 = y * h / field.height, y1 = std::max((y + 1) * h / field.height, y0 + 1);
    uint64_t sum = 0;
    for (int j = y0; j < y1; ++j)
        for (int i = x0; i < x1; ++i)
            sum += frame.at(2 * i + (plane & 1), 2 * j + (plane >> 1));
    return static_cast<double>(sum) / ((x1 - x0) * (y1 - y0));
}

// Replaces each value by the mean over a window that is cut off at the edges.
Field smoothed(const Field& field, int radius) {
    Field result = field;
    for (int y = 0; y < field.height; ++y)
        for (int x = 0; x < field.width; ++x) {
            const int x0 = std::max(x - radius, 0), x1 = std::min(x + radius + 1, field.width);
            const int y0 = std::max(y - radius, 0), y1 = std::min(y + radius + 1, field.height);
            double sum = 0;
            for (int j = y0; j < y1; ++j)
                for (int i = x0; i < x1; ++i)
                    sum += field.at(i, j);
            result.values[static_cast<size_t>(y * field.width + x)] = sum / ((x1 - x0) * (y1 - y0));
        }
    return result;
}

double table_gain(const GainTables& tables, int plane, int i, int j) {
    const auto at = static_cast<size_t>((j + 1) * tables.table_width + i + 1);
    return tables.gains[static_cast<size_t>(plane)][at] / double{ZERKLSC_UNITY_GAIN};
}

} // namespace

double Field::smallest() const {
    return *std::ranges::min_element(values);
}

double Field::largest() const {
    return *std::ranges::max_element(values);
}

double Field::mean() const {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

Field Field::scaled(double factor) const {
    Field result = *this;
    for (double& v : result.values)
        v *= factor;
    return result;
}

Field brightness_field(const RawFrame& frame, int plane, int width, int height) {
    Field field{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            field.values.push_back(mean_under(frame, plane, field, x, y));
    constexpr int radius = 3;
    return smoothed(smoothed(field, radius), radius);
}

Field gain_field(const GainTables& tables, int plane, int width, int height) {
    Field field{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) * tables.plane_width() / width / tables.step;
            const double v = (y + 0.5) * tables.plane_height() / height / tables.step;
            const int i = static_cast<int>(u), j = static_cast<int>(v);
            const double fu = u - i, fv = v - j;
            const double above =
                table_gain(tables, plane, i, j) * (1 - fu) + table_gain(tables, plane, i + 1, j) * fu;
            const double below =
                table_gain(tables, plane, i, j + 1) * (1 - fu) + table_gain(tables, plane, i + 1, j + 1) * fu;
            field.values.push_back(above * (1 - fv) + below * fv);
        }
    return field;
}

} // namespace zerklsc::tool
