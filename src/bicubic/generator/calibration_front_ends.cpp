// lsc2d_calibration_orvel_otp, lsc2d_calibration_halvane
#include "bicubic/generator/record.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

constexpr int32_t orvel_variant = 1;
constexpr int32_t halvane_variant = 0;

// `calib` is an lsc2d_calib_param word by word: 0 is its grid, 2 its filter_radius, 7 its shading_percent.
isp_param_tag front_end_record(uint16_t width, uint16_t height, uint16_t** tables, uint8_t bayer_pattern,
                               const uint32_t* calib, int32_t variant) {
    isp_param_tag param = generator_record(width, height, tables, calib[0], calib[2], calib[7]);
    param.bayer_pattern = bayer_pattern;
    param.isp_algorithm = variant;
    return param;
}

} // namespace

int32_t lsc2d_calibration_orvel_otp(uint16_t* raw, uint16_t width, uint16_t height, uint16_t** tables,
                                    uint32_t, uint32_t, uint8_t bayer_pattern, uint32_t* calib) {
    if (tables == nullptr || calib == nullptr)
        return -1;
    isp_param_tag param = front_end_record(width, height, tables, bayer_pattern, calib, orvel_variant);
    return bicubic_lnc_param_gen_orvel_otp(raw, &param);
}

int32_t lsc2d_calibration_halvane(uint16_t* raw, uint16_t width, uint16_t height, uint16_t** tables, uint32_t,
                                  uint32_t, uint8_t bayer_pattern, uint32_t* calib) {
    if (tables == nullptr || calib == nullptr)
        return -1;
    isp_param_tag param = front_end_record(width, height, tables, bayer_pattern, calib, halvane_variant);
    return bicubic_lnc_param_gen_halvane(raw, &param);
}
