// histogram_of
#include "lot/histogram.h"

#include <algorithm>
#include <cmath>

#include "lot/four_digits.h"

namespace zerklsc::tool {
namespace {

constexpr double most_bars = 40;
constexpr double beyond = 0.005; // of the values, at either end

// The next of 1, 2 and 5 times a power of ten.
double round_up(double width) {
    const double power = std::pow(10, std::floor(std::log10(width)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (width <= factor * power)
            return factor * power;
    return 10 * power;
}

} // namespace

Histogram histogram_of(const std::vector<const CheckCounts*>& planes) {
    ValueCounts all;
    for (const CheckCounts* plane : planes)
        for (const ValueCounts& values : plane->values)
            all.add(values);
    Histogram histogram;
    if (all.total() == 0)
        return histogram;
    const double low = number_of(quantile_of(all, beyond)), high = number_of(quantile_of(all, 1 - beyond));
    const double reach = high > low ? high - low : std::max(std::abs(low), 1.0);
    histogram.width = round_up(reach / (most_bars - 2));
    histogram.from = std::floor(low / histogram.width) * histogram.width;
    // A value that is a bar's lower end falls into it, however the quotient is rounded.
    const auto bar_of = [&](double value) {
        return std::floor((value - histogram.from) / histogram.width + 1e-6);
    };
    const auto bars = static_cast<size_t>(bar_of(high)) + 1;
    for (size_t verdict = 0; verdict < histogram.bars.size(); ++verdict) {
        histogram.bars[verdict].assign(bars, 0);
        for (const CheckCounts* plane : planes)
            plane->values[verdict].each([&](int32_t value, uint32_t count) {
                const double bar = std::clamp(bar_of(number_of(value)), 0.0, static_cast<double>(bars - 1));
                histogram.bars[verdict][static_cast<size_t>(bar)] += count;
            });
    }
    return histogram;
}

} // namespace zerklsc::tool
