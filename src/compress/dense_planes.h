// The planes that the exported passes of the OTP stream work on.
#pragma once

#include <algorithm>

#include "frame/planes.h"
#include "frame/scratch.h"
#include "zerklsc.h"

namespace zerklsc {

// One plane for each colour without its border, row after row, one plane behind the other.
struct DensePlanes {
    int32_t width, height;
    Scratch<int16_t> memory; // null where there was none to be had
    ByColour<int16_t*> planes;

    int64_t count() const { return int64_t{width} * height; }
    void clear() { std::fill_n(memory.get(), count() * colour_count, int16_t{0}); }
};

// Uninitialised planes for a record with inner nodes.
inline DensePlanes dense_planes(const lsc_otp_info& info) {
    DensePlanes dense{info.grid_width - 2, info.grid_height - 2, nullptr, {}};
    dense.memory = allocate<int16_t>(static_cast<uint64_t>(dense.count()) * colour_count);
    if (dense.memory)
        for (int k = 0; k < colour_count; ++k)
            dense.planes.of[k] = dense.memory.get() + k * dense.count();
    return dense;
}

} // namespace zerklsc
