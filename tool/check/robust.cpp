// median_of, quantile_of, deviation_from, biweight
#include "check/robust.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zerklsc::tool {

double median_of(std::vector<float>& values) {
    if (values.empty())
        return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    const double upper = static_cast<double>(*middle);
    if (values.size() % 2 == 1)
        return upper;
    return (upper + static_cast<double>(*std::max_element(values.begin(), middle))) / 2;
}

double quantile_of(std::vector<float>& values, double fraction) {
    if (values.empty())
        return 0;
    const auto last = static_cast<double>(values.size() - 1);
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(std::lround(fraction * last));
    std::nth_element(values.begin(), at, values.end());
    return static_cast<double>(*at);
}

double deviation_from(std::vector<float>& values, double centre) {
    for (float& v : values)
        v = std::abs(v - static_cast<float>(centre));
    return normal_deviations_per_mad * median_of(values);
}

double biweight(double t) {
    const double rest = 1 - t * t;
    return rest > 0 ? rest * rest : 0;
}

} // namespace zerklsc::tool
