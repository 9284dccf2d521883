// The weights of an averaging window.
#pragma once

#include <cmath>
#include <cstdint>

#include "zerklsc.h"

namespace zerklsc {

// The largest radius that the samplers and the filter take. Its mask of (2r + 1)^2 32-bit weights is the
// largest below 2 GiB, the most that one block of memory on a 32-bit target can hold.
constexpr int32_t max_radius = 11584;

// A box or a Gaussian with its sigma; anything else has no weights.
inline bool has_weights(const imfilter_t& filter) {
    return filter.filter_type == ZERKLSC_FILTER_BOX
           || (filter.filter_type == ZERKLSC_FILTER_GAUSSIAN && filter.sigma != nullptr);
}

// The weight of a tap by its squared distance from the centre.
class TapWeight {
  public:
    explicit TapWeight(const imfilter_t& filter)
        : box_(filter.filter_type == ZERKLSC_FILTER_BOX), falloff_(box_ ? 0.0f : falloff(*filter.sigma)) {}

    // The exponential is at most 1, so that rounding it to a whole number makes the Gaussian a disc of ones.
    // A sigma of 0 has no number to round at the centre, which counts as 0.
    int32_t at(int64_t squared_distance) const {
        if (box_)
            return 1;
        const float exponent = -static_cast<float>(squared_distance) * falloff_;
        return std::floor(std::exp(static_cast<double>(exponent)) + 0.5) >= 1.0 ? 1 : 0;
    }

  private:
    static float falloff(float sigma) {
        constexpr float two_pi = 6.2831855f;
        return 1.0f / (sigma * sigma * two_pi);
    }

    bool box_;
    float falloff_;
};

} // namespace zerklsc
