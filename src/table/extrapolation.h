// The walk around the border of a table that gives each border node its value.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/view.h"

namespace zerklsc {

// `beyond(edge, inward)` is the value of the node outside the node *edge, which the nodes further inside
// follow `inward` elements apart. Columns first, then rows over the full width: a corner continues its border
// column.
template <class T, class Beyond>
void extrapolate_border(View<T> table, Beyond beyond) {
    const int32_t right = table.width - 1;
    const int32_t bottom = table.height - 1;
    for (int32_t y = 1; y < bottom; ++y) {
        table.at(0, y) = beyond(&table.at(1, y), ptrdiff_t{1});
        table.at(right, y) = beyond(&table.at(right - 1, y), ptrdiff_t{-1});
    }
    // One row after the other: a compiler makes vectors of a loop that writes one row, not of one that writes
    // two.
    for (int32_t x = 0; x <= right; ++x)
        table.at(x, 0) = beyond(&table.at(x, 1), table.stride);
    for (int32_t x = 0; x <= right; ++x)
        table.at(x, bottom) = beyond(&table.at(x, bottom - 1), -table.stride);
}

} // namespace zerklsc
