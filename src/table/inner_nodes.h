// The nodes of a bordered table without its border.
#pragma once

#include <cstdint>

#include "frame/view.h"
#include "zerklsc.h"

namespace zerklsc {

// How many of them hold that gain.
inline uint32_t count_inner_nodes(View<uint16_t> table, uint16_t gain) {
    uint32_t count = 0;
    for (int32_t y = ZERKLSC_BORDER; y < table.height - ZERKLSC_BORDER; ++y)
        for (int32_t x = ZERKLSC_BORDER; x < table.width - ZERKLSC_BORDER; ++x)
            count += table.at(x, y) == gain ? 1 : 0;
    return count;
}

} // namespace zerklsc
