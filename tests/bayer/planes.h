// Four planes against guard pages, as the Bayer functions take them.
#pragma once

#include <cstdint>

#include "support/guarded.h"

namespace zerklsc::testing {

struct Planes {
    Guarded<uint16_t> plane[4];
    uint16_t* list[4];

    Planes(size_t size, Against side)
        : plane{Guarded<uint16_t>(size, side), Guarded<uint16_t>(size, side), Guarded<uint16_t>(size, side),
                Guarded<uint16_t>(size, side)},
          list{plane[0].data(), plane[1].data(), plane[2].data(), plane[3].data()} {}

    bool intact() const {
        return plane[0].intact() && plane[1].intact() && plane[2].intact() && plane[3].intact();
    }
};

} // namespace zerklsc::testing
