// lsc2d_table_preproc, lsc2d_table_postproc
#include <algorithm>

#include "frame/scratch.h"
#include "table/border.h"
#include "zerklsc.h"

int32_t lsc2d_table_preproc(uint16_t** src, uint16_t** dst, int32_t width, int32_t height, int32_t table_w,
                            int32_t table_h, const lsc2d_calib_param* param) {
    using namespace zerklsc;
    constexpr int32_t border = 2 * ZERKLSC_BORDER;
    if (src == nullptr || dst == nullptr || table_w <= border || table_h <= border)
        return -1;
    const int32_t grid_w = table_w - border;
    const int32_t grid_h = table_h - border;
    const PlaneGrid plane{width, height, param->grid, param->grid};
    if (!border_possible(plane, grid_w, grid_h, param->border_mode, param->border_aux))
        return -1;
    const Scratch<float> inner = allocate<float>(grid_w, grid_h);
    const Scratch<float> table = allocate<float>(table_w, table_h);
    if (inner == nullptr || table == nullptr)
        return -1;
    // An unknown fill mode leaves the border as it is here.
    std::fill_n(table.get(), int64_t{table_w} * table_h, 0.0f);
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
        lsc_table_itof(src[c], inner.get(), grid_w, grid_h);
        update_table_border(inner.get(), table.get(), width, height, param->grid, param->grid, grid_w, grid_h,
                            param->border_mode, param->border_aux);
        lsc_table_ftoi(table.get(), dst[c], table_w, table_h);
    }
    return 0;
}

int32_t lsc2d_table_postproc(uint16_t** tables, int32_t width, int32_t height, int32_t table_w,
                             int32_t table_h, const lsc2d_calib_param* param) {
    const int32_t step = param->grid;
    if (step < 1)
        return -1;
    int32_t expected_w, expected_h;
    lsc2d_table_size(width, height, step, step, &expected_w, &expected_h);
    if (table_w != expected_w || table_h != expected_h)
        return -1;
    const shading_t shading{.type = param->shading_type, .percent = param->shading_percent, .reserved = 0};
    for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
        apply_shading_table(tables[c], width, height, step, step, table_w, table_h, &shading);
        format_lsc_table(tables[c], table_w, table_h);
    }
    return 0;
}
