// bicubic_lnc_correction_tvessa2
#include <cstdio>

#include "bicubic/correction/correction.h"
#include "frame/geometry.h"

namespace {

// The hardware's register for the step has 8 bits.
int32_t step_of(const isp_param_tag& param) {
    return param.grid & 255;
}

} // namespace

namespace zerklsc {

Correction tvessa2_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param) {
    Correction correction = frame_correction(in, out, param);
    const int32_t step = step_of(param);
    correction.step = step;
    correction.table_w = nodes_to_last_sample(param.width / 2, step) + 2 * ZERKLSC_BORDER;
    correction.table_h = nodes_to_last_sample(param.height / 2, step) + 2 * ZERKLSC_BORDER;
    for (int32_t phase = 0; phase < step; ++phase)
        correction.phases[phase] = fixed_phase(phase, step);
    return correction;
}

} // namespace zerklsc

int32_t bicubic_lnc_correction_tvessa2(uint16_t* in, uint16_t* out, isp_param_tag* param) {
    using namespace zerklsc;
    if (const char* const line = missing_pointer(in, out, param)) {
        std::puts(line);
        return -1;
    }
    if (step_of(*param) == 0)
        return -1;
    if (param->width < narrowest_slice)
        std::printf("\ncurrent iSliceWidth = %d is smaller than 128!\n", param->width);
    const Correction correction = tvessa2_correction(in, out, *param);
    fastest_form(correction)(correction);
    return 0;
}
