// Samples and spots that stand out from their surroundings: defective pixels, dead lines, dust.
#pragma once

#include "check/checks.h"

namespace zerklsc::tool {

struct Outliers {
    std::array<std::vector<uint32_t>, 4> samples;    // defective ones, as indices into the plane, row by row
    std::array<std::vector<uint32_t>, 4> dust_tiles; // tile indices
    std::array<std::vector<int>, 4> rows, columns;   // dead lines, of the plane; never its first or last
    std::array<int, 4> dust_spots{};                 // tiles that touch are one spot

    // What the surface leaves of each tile, as a fraction, defective samples left out.
    std::array<std::vector<float>, 4> rest;

    bool any() const;
};

Outliers find_outliers(const FlatCapture& capture, const Analysis& analysis);

} // namespace zerklsc::tool
