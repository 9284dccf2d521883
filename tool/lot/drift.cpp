// drifts_of
#include <algorithm>
#include <cmath>

#include "lot/statistics.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// The blocks that have a value: their place in the sequence, and the value.
struct Point {
    double place, value;
};

double median_of(std::vector<double>& values) {
    std::ranges::sort(values);
    const size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// The variance of Kendall's sum where there is no trend, with groups of equal values (M. G. Kendall, "Rank
// Correlation Methods", 1948).
double variance_of_sum(const std::vector<Point>& points) {
    const auto term = [](double n) { return n * (n - 1) * (2 * n + 5); };
    std::vector<double> values;
    values.reserve(points.size());
    for (const Point& point : points)
        values.push_back(point.value);
    std::ranges::sort(values);
    double variance = term(static_cast<double>(values.size()));
    for (size_t i = 0, j = 0; i < values.size(); i = j) {
        while (j < values.size() && values[j] == values[i])
            ++j;
        variance -= term(static_cast<double>(j - i));
    }
    return variance / 18;
}

void measure(Drift& drift, const std::vector<Point>& points) {
    constexpr size_t least_points = 5; // below, nothing is significant
    if (points.size() < least_points)
        return;
    std::vector<double> slopes;
    double sum = 0;
    for (size_t i = 0; i < points.size(); ++i)
        for (size_t j = i + 1; j < points.size(); ++j) {
            const double rise = points[j].value - points[i].value;
            slopes.push_back(rise / (points[j].place - points[i].place));
            sum += rise > 0 ? 1 : rise < 0 ? -1 : 0;
        }
    drift.change = median_of(slopes) * (points.back().place - points.front().place);
    const double variance = variance_of_sum(points);
    const double corrected = sum > 0 ? sum - 1 : sum < 0 ? sum + 1 : 0;
    drift.significance = variance > 0 ? corrected / std::sqrt(variance) : 0;
    drift.found = std::abs(drift.significance) > noticeable_significance;
}

template <class ValueOf>
Drift drift_of(const char* name, const std::string& plane, const Sequence& sequence,
               const ValueOf& value_of) {
    Drift drift{name, plane, {}, 0, 0, false};
    std::vector<Point> points;
    for (const auto& [place, block] : sequence.blocks()) {
        drift.medians.push_back(value_of(block));
        if (drift.medians.back())
            points.push_back({static_cast<double>(place), *drift.medians.back()});
    }
    measure(drift, points);
    return drift;
}

std::optional<double> scaled_median(const ValueCounts& values, double unit) {
    return values.total() == 0 ? std::nullopt : std::optional(tool::median_of(values) / unit);
}

// Of the sums of four colours.
std::optional<double> median_centre(const ValueCounts& sums) {
    const auto median = scaled_median(sums, 4 * centre_units);
    return median ? std::optional(0.5 + *median) : median;
}

} // namespace

std::vector<Drift> drifts_of(const Sequence& sequence) {
    std::vector<Drift> drifts;
    for (size_t c = 0; c < all_colours.size(); ++c)
        drifts.push_back(
            drift_of("corner gain", name_of(all_colours[c]), sequence, [c](const SequenceBlock& block) {
                return scaled_median(block.corner_gain[c], ZERKLSC_UNITY_GAIN);
            }));
    for (const size_t axis : {size_t{0}, size_t{1}})
        drifts.push_back(
            drift_of(axis == 0 ? "optical centre x" : "optical centre y", "", sequence,
                     [axis](const SequenceBlock& block) { return median_centre(block.centre[axis]); }));
    drifts.push_back(drift_of("yield", "", sequence, [](const SequenceBlock& block) {
        return std::optional(static_cast<double>(block.good) / static_cast<double>(block.modules));
    }));
    return drifts;
}

} // namespace zerklsc::tool
