// Filters of all kinds, and those that the samplers refuse.
#pragma once

#include <cstdint>
#include <vector>

#include "zerklsc.h"

namespace zerklsc::testing {

inline imfilter_t box(int32_t radius, int32_t mode = ZERKLSC_BOUNDARY_MIRROR) {
    return {ZERKLSC_FILTER_BOX, radius, mode, nullptr};
}

inline imfilter_t gaussian(int32_t radius, float* sigma, int32_t mode = ZERKLSC_BOUNDARY_MIRROR) {
    return {ZERKLSC_FILTER_GAUSSIAN, radius, mode, sigma};
}

// For a plane of 20 x 12 samples.
inline std::vector<imfilter_t> refused_filters() {
    static float usual = 1.0f, zero = 0.0f;
    return {box(-1),
            box(INT32_MIN),
            box(2, 2),
            box(2, -1),
            box(12),
            box(INT32_MAX, 1),
            box(11585, 1),
            gaussian(2, nullptr),
            gaussian(-1, &usual),
            gaussian(2, &zero),
            {2, 2, 0, &usual},
            {-1, 2, 0, &usual}};
}

} // namespace zerklsc::testing
