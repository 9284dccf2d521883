// node_statistics, centre_correlations, golden_tables
#include "lot/statistics.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace zerklsc::tool {
namespace {

std::optional<double> correlation(const CentreSums& sums, size_t axis, size_t first, size_t second) {
    const auto n = static_cast<double>(sums.modules);
    const auto covariance = [&](size_t a, size_t b) {
        return static_cast<double>(sums.products[axis][std::max(a, b)][std::min(a, b)])
               - static_cast<double>(sums.sum[axis][a]) * (static_cast<double>(sums.sum[axis][b]) / n);
    };
    const double variances = covariance(first, first) * covariance(second, second);
    if (sums.modules < 3 || !(variances > 0))
        return {};
    return std::clamp(covariance(first, second) / std::sqrt(variances), -1.0, 1.0);
}

// Of a whole number of halves.
int rounded_half_up(double value) {
    return static_cast<int>(std::floor(value + 0.5));
}

} // namespace

NodeStatistics node_statistics(const std::vector<ValueCounts>& gains) {
    NodeStatistics nodes;
    for (const ValueCounts& node : gains) {
        const double median = median_of(node);
        nodes.median.push_back(median);
        nodes.mean.push_back(mean_of(node));
        nodes.deviation.push_back(standard_deviation_of(node));
        nodes.spread.push_back(median > 0 ? robust_deviation_of(node) / median : 0);
    }
    return nodes;
}

std::vector<CentreCorrelation> centre_correlations(const CentreSums& sums) {
    std::vector<CentreCorrelation> list;
    for (size_t first = 0; first < all_colours.size(); ++first)
        for (size_t second = first + 1; second < all_colours.size(); ++second)
            list.push_back({all_colours[first],
                            all_colours[second],
                            {correlation(sums, 0, first, second), correlation(sums, 1, first, second)}});
    return list;
}

GainTables golden_tables(const LotSummary& summary) {
    GainTables tables = summary.kind->tables();
    tables.resize();
    tables.average = "median";
    for (int plane = 0; plane < 4; ++plane) {
        const auto colour = static_cast<size_t>(colour_of_plane(tables.pattern, plane));
        const auto to = static_cast<size_t>(plane);
        for (size_t node = 0; node < tables.table_size(); ++node)
            tables.gains[to][node] =
                static_cast<uint16_t>(rounded_half_up(median_of(summary.gains.counts()[colour][node])));
        tables.black[to] = rounded_half_up(median_of(summary.black[to]));
    }
    tables.inputs = {{"lot", fmt::format("{} modules", summary.with_gains()), "", {}, {}}};
    return tables;
}

} // namespace zerklsc::tool
