// The two halves of update_table_border(), for a table that already holds its inner nodes.
#pragma once

#include <cstdint>

#include "frame/view.h"

namespace zerklsc {

// The size of a plane and the spacing of the nodes laid over it.
struct PlaneGrid {
    int32_t width, height, step_x, step_y;
};

// Modes that name no rule, for callers that want one half only.
constexpr int32_t no_edge = 0;
constexpr int32_t no_fill = -1;

// Whether the steps are positive and a grid of that many inner nodes holds the stencils of both modes.
bool border_possible(const PlaneGrid& plane, int32_t grid_w, int32_t grid_h, int32_t edge_mode,
                     int32_t fill_mode);

// Moves the last inner column and then the last inner row from the last sample, where they were measured, to
// their nodes. Needs border_possible().
void correct_edges(View<float> inner, const PlaneGrid& plane, int32_t edge_mode);

// Extrapolates the border of a bordered table, columns first, then rows with the corners. Needs
// border_possible().
void fill_border(View<float> table, int32_t fill_mode);

} // namespace zerklsc
