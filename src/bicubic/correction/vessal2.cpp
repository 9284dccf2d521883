// bicubic_lnc_correction_vessaL2, bicubic_lnc_correction_vessaL2_core
#include <cstdio>

#include "bicubic/correction/correction.h"

namespace zerklsc {

Correction vessal2_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param) {
    Correction correction = frame_correction(in, out, param);
    const int32_t step = param.grid;
    correction.step = step;
    lsc2d_table_size(param.width / 2, param.height / 2, step, step, &correction.table_w, &correction.table_h);
    for (int32_t phase = 0; phase < step; ++phase)
        correction.phases[phase] = programmed_phase(param.weight, phase, step);
    return correction;
}

} // namespace zerklsc

int32_t bicubic_lnc_correction_vessaL2(uint16_t* in, uint16_t* out, isp_param_tag* param) {
    if (param != nullptr)
        generate_bicubic_weight_table(&param->weight, param->grid);
    bicubic_lnc_correction_vessaL2_core(in, out, param);
    return 0;
}

int32_t bicubic_lnc_correction_vessaL2_core(uint16_t* in, uint16_t* out, isp_param_tag* param) {
    using namespace zerklsc;
    if (const char* const line = missing_pointer(in, out, param)) {
        std::puts(line);
        return -1;
    }
    if (param->grid == 0 || param->grid > highest_step)
        return -1;
    const Correction correction = vessal2_correction(in, out, *param);
    fastest_form(correction)(correction);
    return 0;
}
