#include "bicubic/generator/geometry.h"

#include <algorithm>

namespace zerklsc {

// Type 3 counts from the image size although its correction counts from the last pixel, as the other types
// do: where size % step is 1, the tables made for that correction hold one node more than it reads.
int32_t generator_nodes(int32_t size, int32_t step, uint8_t isp_type) {
    const int32_t covered = isp_type == ZERKLSC_ISP_TVESSA2 ? size : size - 1;
    return covered / step + (covered % step == 0 ? 1 : 2);
}

bool generator_geometry(const isp_param_tag& param, GeneratorGeometry& geometry) {
    const int32_t width = param.width >> 1;
    const int32_t height = param.height >> 1;
    const int32_t step = generator_step(param.grid);
    // A radius below 0 is a margin of 2^31 or more, wider than any image.
    const uint32_t margin = static_cast<uint32_t>(param.filter_radius);
    if (step == 0 || margin >= static_cast<uint32_t>(std::min(width, height)))
        return false;
    geometry = {.width = width,
                .height = height,
                .step = step,
                .margin = static_cast<int32_t>(margin),
                .grid_w = generator_nodes(width, step, param.isp_type),
                .grid_h = generator_nodes(height, step, param.isp_type)};
    return geometry.grid_w >= 3 && geometry.grid_h >= 3;
}

} // namespace zerklsc
