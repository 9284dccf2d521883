// ValueCounts, median_of, mean_of, standard_deviation_of, robust_deviation_of, quantile_of
#include "lot/value_counts.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "check/robust.h"

namespace zerklsc::tool {
namespace {

// The value of a rank from 0 on, in a rising list of values and counts.
template <class Value>
Value value_at(const std::vector<std::pair<Value, uint32_t>>& list, uint64_t rank) {
    uint64_t before = 0;
    for (const auto& [value, count] : list) {
        before += count;
        if (before > rank)
            return value;
    }
    return {};
}

template <class Value>
double middle_of(const std::vector<std::pair<Value, uint32_t>>& list, uint64_t total) {
    if (total == 0)
        return 0;
    const auto lower = static_cast<double>(value_at(list, (total - 1) / 2));
    return (lower + static_cast<double>(value_at(list, total / 2))) / 2;
}

std::vector<std::pair<int32_t, uint32_t>> list_of(const ValueCounts& values) {
    std::vector<std::pair<int32_t, uint32_t>> list;
    values.each([&](int32_t value, uint32_t count) { list.emplace_back(value, count); });
    return list;
}

} // namespace

size_t ValueCounts::page_of(int32_t first) {
    if (recent_ < firsts_.size() && firsts_[recent_] == first)
        return recent_;
    const auto at = std::ranges::lower_bound(firsts_, first);
    const auto page = at - firsts_.begin();
    if (at == firsts_.end() || *at != first) {
        firsts_.insert(at, first);
        counts_.insert(counts_.begin() + page * page_size, page_size, 0);
    }
    return recent_ = static_cast<size_t>(page);
}

void ValueCounts::add(int32_t value, uint32_t count) {
    const int32_t first = value & ~(page_size - 1);
    counts_[page_of(first) * page_size + static_cast<size_t>(value - first)] += count;
    total_ += count;
}

void ValueCounts::add(const ValueCounts& other) {
    other.each([this](int32_t value, uint32_t count) { add(value, count); });
}

double median_of(const ValueCounts& values) {
    return middle_of(list_of(values), values.total());
}

double mean_of(const ValueCounts& values) {
    // A sum of whole numbers below 2^53 is exact.
    int64_t sum = 0;
    values.each([&](int32_t value, uint32_t count) { sum += int64_t{value} * count; });
    return values.total() == 0 ? 0 : static_cast<double>(sum) / static_cast<double>(values.total());
}

double standard_deviation_of(const ValueCounts& values) {
    if (values.total() < 2)
        return 0;
    const double mean = mean_of(values);
    double sum = 0;
    values.each([&](int32_t value, uint32_t count) { sum += count * (value - mean) * (value - mean); });
    return std::sqrt(sum / static_cast<double>(values.total() - 1));
}

double robust_deviation_of(const ValueCounts& values) {
    const double median = median_of(values);
    std::vector<std::pair<double, uint32_t>> deviations;
    values.each(
        [&](int32_t value, uint32_t count) { deviations.emplace_back(std::abs(value - median), count); });
    std::ranges::sort(deviations);
    return normal_deviations_per_mad * middle_of(deviations, values.total());
}

int32_t quantile_of(const ValueCounts& values, double fraction) {
    if (values.total() == 0)
        return 0;
    const auto wanted = static_cast<uint64_t>(std::ceil(fraction * static_cast<double>(values.total())));
    return value_at(list_of(values), std::max<uint64_t>(wanted, 1) - 1);
}

} // namespace zerklsc::tool
