// lsc2d_grid_samples, lsc2d_table_size
#include "zerklsc.h"

namespace {

// ceil(size / step) plus `extra`, in 64 bits so that no size overflows; a step of 0 has no nodes.
int32_t nodes(int32_t size, int32_t step, int32_t extra) {
    if (step == 0)
        return 0;
    return static_cast<int32_t>((int64_t{size} + step - 1) / step + extra);
}

} // namespace

void lsc2d_grid_samples(int32_t width, int32_t height, int32_t step_x, int32_t step_y, int32_t* grid_w,
                        int32_t* grid_h) {
    *grid_w = nodes(width, step_x, 1);
    *grid_h = nodes(height, step_y, 1);
}

void lsc2d_table_size(int32_t width, int32_t height, int32_t step_x, int32_t step_y, int32_t* table_w,
                      int32_t* table_h) {
    *table_w = nodes(width, step_x, 1 + 2 * ZERKLSC_BORDER);
    *table_h = nodes(height, step_y, 1 + 2 * ZERKLSC_BORDER);
}
