// The sizes of one call of a parameter generator: the planes, their margin and the grid laid over them.
#pragma once

#include <cstdint>

#include "zerklsc_driver.h"

namespace zerklsc {

// 0 <= margin < width and height of a plane, 1 <= step <= 255, at least 3 x 3 nodes.
struct GeneratorGeometry {
    int32_t width;
    int32_t height;
    int32_t step;
    int32_t margin;
    int32_t grid_w;
    int32_t grid_h;
};

// The step that a record's `grid` stands for: the ISP takes it as a byte.
constexpr int32_t generator_step(uint32_t grid) {
    return static_cast<int32_t>(grid & 0xFFu);
}

// Says why the sizes in the record cannot be worked with: BAD_STEP, BAD_RADIUS or TOO_FEW_NODES.
zerklsc_status generator_geometry(const isp_param_tag& param, GeneratorGeometry& geometry);

} // namespace zerklsc
