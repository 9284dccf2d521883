// bicubic_lnc_correction_tvessa2
#include <cstdio>

#include "bicubic/correction/correct.h"

namespace {

constexpr int32_t narrowest_slice = 128;

// Nodes up to the last sample, counted from it, and the border: where the extent is one more than a whole
// number of cells this is one node less than lsc2d_table_size() has. The division truncates, for the extent 0
// too.
int32_t table_extent(int32_t extent, int32_t step) {
    const int32_t last = extent - 1;
    return last / step + (last % step == 0 ? 1 : 2) + 2 * ZERKLSC_BORDER;
}

// The hardware's register for the step has 8 bits.
int32_t step_of(const isp_param_tag& param) {
    return param.grid & 255;
}

} // namespace

zerklsc::Correction zerklsc::tvessa2_correction(const uint16_t* in, uint16_t* out,
                                                const isp_param_tag& param) {
    Correction correction = frame_correction(in, out, param);
    const int32_t step = step_of(param);
    correction.step = step;
    correction.table_w = table_extent(param.width / 2, step);
    correction.table_h = table_extent(param.height / 2, step);
    for (int32_t phase = 0; phase < step; ++phase)
        correction.phases[phase] = fixed_phase(phase, step);
    return correction;
}

int32_t bicubic_lnc_correction_tvessa2(uint16_t* in, uint16_t* out, isp_param_tag* param) {
    using namespace zerklsc;
    if (!has_pointers(in, out, param))
        return -1;
    if (step_of(*param) == 0)
        return -1;
    if (param->width < narrowest_slice)
        std::printf("\ncurrent iSliceWidth = %d is smaller than 128!\n", param->width);
    correct(tvessa2_correction(in, out, *param));
    return 0;
}
