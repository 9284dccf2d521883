// Bars of equal width over exact counts.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "lot/summary.h"

namespace zerklsc::tool {

// Of one check, of all planes. Values beyond the ends count in the outermost bars.
struct Histogram {
    double from = 0, width = 1;
    std::array<std::vector<uint64_t>, 3> bars; // by verdict, all of one length
};

// Bars of a round width, 40 at most, that hold all but the outermost 1 of 200 values each within their range.
Histogram histogram_of(const std::vector<const CheckCounts*>& planes);

} // namespace zerklsc::tool
