// align_table_linear, align_table_cubic_c1, align_table_cubic_c2, expand_lsc_table_c1, expand_lsc_table_c2
// (float)
#include "table/border.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

// The edge correction of update_table_border(), in place. Only inner nodes are touched, so rows may be as
// short as the grid; rows that overlap are refused.
int32_t align(float* table, int32_t grid_w, int32_t grid_h, int32_t row_length, const PlaneGrid& plane,
              int32_t edge_mode) {
    if (!border_possible(plane, grid_w, grid_h, edge_mode, no_fill) || row_length < grid_w)
        return -1;
    const View<float> inner{table + row_length + ZERKLSC_BORDER, grid_w, grid_h, row_length};
    correct_edges(inner, plane, edge_mode);
    return 0;
}

// The border fill of update_table_border(), in place. It depends on no steps.
void expand(float* table, int32_t grid_w, int32_t grid_h, int32_t fill_mode) {
    if (border_possible({0, 0, 1, 1}, grid_w, grid_h, no_edge, fill_mode))
        fill_border(packed_view(table, grid_w + 2 * ZERKLSC_BORDER, grid_h + 2 * ZERKLSC_BORDER), fill_mode);
}

} // namespace

int32_t align_table_linear(float* table, int32_t grid_w, int32_t grid_h, int32_t row_length, int32_t width,
                           int32_t height, int32_t step_x, int32_t step_y) {
    return align(table, grid_w, grid_h, row_length, {width, height, step_x, step_y}, ZERKLSC_EDGE_LINEAR);
}

void align_table_cubic_c1(float* table, int32_t grid_w, int32_t grid_h, int32_t row_length, int32_t width,
                          int32_t height, int32_t step_x, int32_t step_y) {
    align(table, grid_w, grid_h, row_length, {width, height, step_x, step_y}, ZERKLSC_EDGE_CUBIC_LINEAR);
}

void align_table_cubic_c2(float* table, int32_t grid_w, int32_t grid_h, int32_t row_length, int32_t width,
                          int32_t height, int32_t step_x, int32_t step_y) {
    align(table, grid_w, grid_h, row_length, {width, height, step_x, step_y}, ZERKLSC_EDGE_CUBIC_QUADRATIC);
}

void expand_lsc_table_c1(float* table, int32_t grid_w, int32_t grid_h) {
    expand(table, grid_w, grid_h, ZERKLSC_FILL_LINEAR);
}

void expand_lsc_table_c2(float* table, int grid_w, int grid_h) {
    expand(table, grid_w, grid_h, ZERKLSC_FILL_QUADRATIC);
}
