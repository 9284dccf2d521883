// LotDistances
#include "lot/distances.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "lot/statistics.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// Less does not count as a deviation of the optical centre: it is how well the centre is measured.
constexpr double least_centre_deviation = 0.0005;

bool is_before(const LotOutlier& a, const LotOutlier& b) {
    return a.severity != b.severity ? a.severity > b.severity : a.module.serial < b.module.serial;
}

} // namespace

struct LotDistances::Found {
    double squares = 0; // of the deviations of all nodes
    double severity = 0;
    std::string reasons;

    void add(double measured, double of_limit, const std::string& reason) {
        severity = std::max(severity, measured / of_limit);
        reasons += (reasons.empty() ? "" : "; ") + reason;
    }
};

LotDistances::LotDistances(const LotSummary& summary) {
    if (!summary.kind || summary.modules() < least_modules)
        return;
    columns_ = summary.kind->grid.width;
    rows_ = summary.kind->grid.height;
    for (size_t c = 0; c < nodes_.size(); ++c) {
        for (const ValueCounts& node : summary.gains.counts()[c]) {
            const double median = median_of(node);
            nodes_[c].push_back({median, std::max({robust_deviation_of(node), median * least_spread, 1.0})});
        }
        for (size_t axis = 0; axis < centre_[c].size(); ++axis) {
            const ValueCounts& values = summary.centre[c][axis];
            centre_[c][axis] = {0.5 + median_of(values) / centre_units,
                                std::max(robust_deviation_of(values) / centre_units, least_centre_deviation)};
        }
    }
}

void LotDistances::add_nodes(const ResultLine& result, size_t colour, Found& found) const {
    const std::vector<uint16_t>& gains = (*result.gains)[colour];
    double squares = 0, largest = 0;
    int column = 1, row = 1;
    // The border follows from the nodes within.
    for (int j = 1; j < rows_ - 1; ++j)
        for (int i = 1; i < columns_ - 1; ++i) {
            const auto at = static_cast<size_t>(j * columns_ + i);
            const double deviation =
                std::abs(gains[at] - nodes_[colour][at].median) / nodes_[colour][at].deviation;
            squares += deviation * deviation;
            if (deviation > largest) {
                largest = deviation;
                column = i;
                row = j;
            }
        }
    found.squares += squares;
    const double mean = std::sqrt(squares / ((columns_ - 2) * (rows_ - 2)));
    const auto at = static_cast<size_t>(row * columns_ + column);
    const std::string where = fmt::format("node {},{}: {:.3f} instead of {:.3f}", column - 1, row - 1,
                                          gains[at] / double{ZERKLSC_UNITY_GAIN},
                                          nodes_[colour][at].median / double{ZERKLSC_UNITY_GAIN});
    const char* name = name_of(all_colours[colour]);
    if (mean > limit)
        found.add(mean, limit,
                  fmt::format("gains of {} {:.2f} deviations off, most at {}", name, mean, where));
    else if (largest > node_limit)
        found.add(largest, node_limit,
                  fmt::format("one gain of {} {:.2f} deviations off, at {}", name, largest, where));
}

void LotDistances::add_centre(const ResultLine& result, Found& found) const {
    for (size_t c = 0; c < centre_.size(); ++c)
        for (size_t axis = 0; axis < centre_[c].size(); ++axis) {
            const double value = (*result.optical_centre)[c][axis];
            const double deviation = std::abs(value - centre_[c][axis].median) / centre_[c][axis].deviation;
            if (deviation > limit)
                found.add(deviation, limit,
                          fmt::format("optical centre of {} {:.2f} deviations off: {} is {:.4f} instead of "
                                      "{:.4f}",
                                      name_of(all_colours[c]), deviation, axis == 0 ? 'x' : 'y', value,
                                      centre_[c][axis].median));
        }
}

void LotDistances::list(LotOutlier outlier) {
    ++outliers_;
    listed_.insert(std::ranges::upper_bound(listed_, outlier, is_before), std::move(outlier));
    if (listed_.size() > most_listed)
        listed_.pop_back();
}

void LotDistances::add(const ResultLine& result) {
    if (!result.gains || columns_ == 0)
        return;
    Found found;
    for (size_t c = 0; c < nodes_.size(); ++c)
        add_nodes(result, c, found);
    if (result.optical_centre)
        add_centre(result, found);
    const double nodes = double{4} * (columns_ - 2) * (rows_ - 2);
    const LotModule module{result.serial, result.verdict, std::sqrt(found.squares / nodes)};
    if (is_good(result.verdict)
        && (!nearest_
            || std::pair(module.distance, module.serial) < std::pair(nearest_->distance, nearest_->serial)))
        nearest_ = module;
    if (found.severity > 0)
        list({module, found.severity, found.reasons});
}

} // namespace zerklsc::tool
