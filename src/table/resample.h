// What lsc2d_grid_convert() and lsc2d_table_mapping() share: they differ in where the new nodes lie in the
// source.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/gain.h"
#include "frame/scratch.h"
#include "table/border.h"
#include "table/lookup.h"
#include "zerklsc.h"

namespace zerklsc {

struct SourceTable {
    const uint16_t* nodes;
    int64_t table_w, table_h;
    int32_t step_x, step_y;
};

struct TargetTable {
    uint16_t* nodes;
    int32_t grid_w, grid_h;
    PlaneGrid plane;
};

// A source position limited to the samples of the plane.
inline int32_t limited_position(int64_t position, int32_t size) {
    return static_cast<int32_t>(std::clamp<int64_t>(position, 0, std::max(int64_t{size} - 1, int64_t{0})));
}

// Whether `table_size` nodes in one direction hold the stencils of all positions.
template <class PositionOf>
bool stencils_fit(int32_t count, PositionOf position_of, int32_t step, int64_t table_size) {
    int32_t furthest = 0;
    for (int32_t i = 0; i < count; ++i)
        furthest = std::max(furthest, position_of(i));
    return int64_t{furthest} / step + 3 < table_size;
}

// Reads the source at the positions of the target's nodes and builds the target from that, border included.
// -1 and an untouched target when there is no memory, the border is impossible, or the source is too small.
template <class XOf, class YOf>
int32_t resample(const SourceTable& src, const TargetTable& dst, XOf x_of, YOf y_of) {
    const auto& [nodes, grid_w, grid_h, plane] = dst;
    if (src.step_x < 1 || src.step_y < 1
        || !border_possible(plane, grid_w, grid_h, ZERKLSC_EDGE_LINEAR, ZERKLSC_FILL_QUADRATIC)
        || !stencils_fit(grid_w, x_of, src.step_x, src.table_w)
        || !stencils_fit(grid_h, y_of, src.step_y, src.table_h))
        return -1;
    const int32_t table_w = grid_w + 2 * ZERKLSC_BORDER;
    const int32_t table_h = grid_h + 2 * ZERKLSC_BORDER;
    const Scratch<float> inner = allocate<float>(grid_w, grid_h);
    const Scratch<float> table = allocate<float>(table_w, table_h);
    if (inner == nullptr || table == nullptr)
        return -1;
    float* gain = inner.get();
    for (int32_t j = 0; j < grid_h; ++j) {
        const NodeTaps y = node_taps(y_of(j), src.step_y);
        for (int32_t i = 0; i < grid_w; ++i) {
            const NodeTaps x = node_taps(x_of(i), src.step_x);
            *gain++ = lookup(src.nodes, static_cast<ptrdiff_t>(src.table_w), x, y) * gain_step;
        }
    }
    update_table_border(inner.get(), table.get(), plane.width, plane.height, plane.step_x, plane.step_y,
                        grid_w, grid_h, ZERKLSC_EDGE_LINEAR, ZERKLSC_FILL_QUADRATIC);
    lsc_table_ftoi(table.get(), nodes, table_w, table_h);
    format_lsc_table(nodes, table_w, table_h);
    return 0;
}

} // namespace zerklsc
