#include "bicubic/generator/geometry.h"

#include <algorithm>

#include "frame/geometry.h"

namespace zerklsc {
namespace {

// Type 3 counts as lsc2d_grid_samples() does, although its correction counts from the last sample: where
// size % step is 1, the tables made for that correction hold one node more than it reads.
void count_nodes(uint8_t isp_type, GeneratorGeometry& geometry) {
    const int32_t step = geometry.step;
    if (isp_type == ZERKLSC_ISP_TVESSA2) {
        lsc2d_grid_samples(geometry.width, geometry.height, step, step, &geometry.grid_w, &geometry.grid_h);
    } else {
        geometry.grid_w = nodes_to_last_sample(geometry.width, step);
        geometry.grid_h = nodes_to_last_sample(geometry.height, step);
    }
}

} // namespace

zerklsc_status generator_geometry(const isp_param_tag& param, GeneratorGeometry& geometry) {
    const int32_t width = param.width >> 1;
    const int32_t height = param.height >> 1;
    const int32_t step = generator_step(param.grid);
    // A radius below 0 is a margin of 2^31 or more, wider than any image.
    const uint32_t margin = static_cast<uint32_t>(param.filter_radius);
    if (step == 0)
        return ZERKLSC_BAD_STEP;
    if (margin >= static_cast<uint32_t>(std::min(width, height)))
        return ZERKLSC_BAD_RADIUS;
    geometry = {.width = width,
                .height = height,
                .step = step,
                .margin = static_cast<int32_t>(margin),
                .grid_w = 0,
                .grid_h = 0};
    count_nodes(param.isp_type, geometry);
    return geometry.grid_w >= 3 && geometry.grid_h >= 3 ? ZERKLSC_OK : ZERKLSC_TOO_FEW_NODES;
}

} // namespace zerklsc
