// lsc2d_correction_wrapper
#include "zerklsc.h"

int32_t lsc2d_correction_wrapper(uint16_t* in, uint16_t* out, lsc2d_info* info) {
    if (info == nullptr)
        return -1;
    isp_param_tag param{};
    lsc2d_info_to_isp_param(info, &param);
    // What a correction returns goes no further: callers of this function learn of a null pointer from the
    // printed line only.
    switch (param.isp_type) {
    case ZERKLSC_ISP_TVESSA2:
        bicubic_lnc_correction_tvessa2(in, out, &param);
        return 0;
    case ZERKLSC_ISP_VESSAL2:
        bicubic_lnc_correction_vessaL2(in, out, &param);
        return 0;
    default:
        return -1;
    }
}
