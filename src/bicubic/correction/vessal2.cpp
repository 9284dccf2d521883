// bicubic_lnc_correction_vessaL2, bicubic_lnc_correction_vessaL2_core
#include "bicubic/correction/correct.h"

namespace {

// ceil(extent / step) + 1 nodes and the border.
int32_t table_extent(int32_t extent, int32_t step) {
    return (extent + step - 1) / step + 1 + 2 * ZERKLSC_BORDER;
}

} // namespace

zerklsc::Correction zerklsc::vessal2_correction(const uint16_t* in, uint16_t* out,
                                                const isp_param_tag& param) {
    Correction correction = frame_correction(in, out, param);
    const int32_t step = param.grid;
    correction.step = step;
    correction.table_w = table_extent(param.width / 2, step);
    correction.table_h = table_extent(param.height / 2, step);
    for (int32_t phase = 0; phase < step; ++phase)
        correction.phases[phase] = programmed_phase(param.weight, phase, step);
    return correction;
}

int32_t bicubic_lnc_correction_vessaL2(uint16_t* in, uint16_t* out, isp_param_tag* param) {
    if (param != nullptr)
        generate_bicubic_weight_table(&param->weight, param->grid);
    bicubic_lnc_correction_vessaL2_core(in, out, param);
    return 0;
}

int32_t bicubic_lnc_correction_vessaL2_core(uint16_t* in, uint16_t* out, isp_param_tag* param) {
    using namespace zerklsc;
    if (!has_pointers(in, out, param))
        return -1;
    if (param->grid == 0 || param->grid > highest_step)
        return -1;
    correct(vessal2_correction(in, out, *param));
    return 0;
}
