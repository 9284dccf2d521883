// lsc2d_grid_convert
#include "table/resample.h"

int32_t lsc2d_grid_convert(const lsc2d_grid* src, const lsc2d_grid* dst, int32_t width, int32_t height) {
    using namespace zerklsc;
    // The rows of the source cannot be counted: callers may leave its grid_h unset.
    const SourceTable from{src->table, int64_t{src->grid_w} + 2 * ZERKLSC_BORDER, INT64_MAX, src->step_x,
                           src->step_y};
    const TargetTable to{dst->table, dst->grid_w, dst->grid_h, {width, height, dst->step_x, dst->step_y}};
    return resample(
        from, to, [&](int32_t i) { return limited_position(int64_t{i} * dst->step_x, width); },
        [&](int32_t j) { return limited_position(int64_t{j} * dst->step_y, height); });
}
