// The record layouts that compiled callers rely on, for 32-bit and 64-bit pointers.
#include <cstddef>

#include "zerklsc_driver.h"

namespace {

constexpr bool wide = sizeof(void*) == 8;

constexpr size_t by_width(size_t narrow_bytes, size_t wide_bytes) {
    return wide ? wide_bytes : narrow_bytes;
}

static_assert(sizeof(void*) == 4 || sizeof(void*) == 8);

#define LAYOUT(record, field, narrow_offset, wide_offset)                                                    \
    static_assert(offsetof(record, field) == by_width(narrow_offset, wide_offset))
#define SIZE(record, narrow_size, wide_size) static_assert(sizeof(record) == by_width(narrow_size, wide_size))

SIZE(lnc_bicubic_weight_t_64_tag, 774, 774);
LAYOUT(lnc_bicubic_weight_t_64_tag, weights, 0, 0);
LAYOUT(lnc_bicubic_weight_t_64_tag, reserved_0, 768, 768);
LAYOUT(lnc_bicubic_weight_t_64_tag, reserved_1, 770, 770);
LAYOUT(lnc_bicubic_weight_t_64_tag, reserved_2, 772, 772);

SIZE(lsc2d_info, 808, 832);
LAYOUT(lsc2d_info, width, 0, 0);
LAYOUT(lsc2d_info, height, 2, 2);
LAYOUT(lsc2d_info, lsc_table, 4, 8);
LAYOUT(lsc2d_info, weight, 20, 40);
LAYOUT(lsc2d_info, grid, 794, 814);
LAYOUT(lsc2d_info, shading_percent, 796, 816);
LAYOUT(lsc2d_info, filter_radius, 800, 820);
LAYOUT(lsc2d_info, algorithm, 804, 824);

SIZE(isp_param_tag, 832, 848);
LAYOUT(isp_param_tag, reserved_0, 0, 0);
LAYOUT(isp_param_tag, blc, 4, 4);
LAYOUT(isp_param_tag, lsc_table, 8, 8);
LAYOUT(isp_param_tag, weight, 24, 40);
LAYOUT(isp_param_tag, grid, 798, 814);
LAYOUT(isp_param_tag, shading_percent, 800, 816);
LAYOUT(isp_param_tag, filter_radius, 804, 820);
LAYOUT(isp_param_tag, isp_algorithm, 808, 824);
LAYOUT(isp_param_tag, reserved_1, 812, 828);
LAYOUT(isp_param_tag, corner_ratio, 816, 832);
LAYOUT(isp_param_tag, width, 824, 840);
LAYOUT(isp_param_tag, height, 826, 842);
LAYOUT(isp_param_tag, bayer_pattern, 828, 844);
LAYOUT(isp_param_tag, isp_type, 829, 845);

SIZE(lsc2d_calib_param, 32, 32);
LAYOUT(lsc2d_calib_param, grid, 0, 0);
LAYOUT(lsc2d_calib_param, filter_type, 4, 4);
LAYOUT(lsc2d_calib_param, filter_radius, 8, 8);
LAYOUT(lsc2d_calib_param, boundary_mode, 12, 12);
LAYOUT(lsc2d_calib_param, border_mode, 16, 16);
LAYOUT(lsc2d_calib_param, border_aux, 20, 20);
LAYOUT(lsc2d_calib_param, shading_type, 24, 24);
LAYOUT(lsc2d_calib_param, shading_percent, 28, 28);

SIZE(isp_blc_param, 8, 8);
LAYOUT(isp_blc_param, width, 0, 0);
LAYOUT(isp_blc_param, height, 2, 2);
LAYOUT(isp_blc_param, blc, 4, 4);

SIZE(imfilter_t, 16, 24);
LAYOUT(imfilter_t, filter_type, 0, 0);
LAYOUT(imfilter_t, filter_radius, 4, 4);
LAYOUT(imfilter_t, boundary_mode, 8, 8);
LAYOUT(imfilter_t, sigma, 12, 16);

SIZE(pix_point, 6, 6);
LAYOUT(pix_point, x, 0, 0);
LAYOUT(pix_point, y, 2, 2);
LAYOUT(pix_point, value, 4, 4);

SIZE(shading_t, 12, 12);
LAYOUT(shading_t, type, 0, 0);
LAYOUT(shading_t, percent, 4, 4);
LAYOUT(shading_t, reserved, 8, 8);

SIZE(lsc2d_grid, 20, 24);
LAYOUT(lsc2d_grid, table, 0, 0);
LAYOUT(lsc2d_grid, step_x, 4, 8);
LAYOUT(lsc2d_grid, step_y, 8, 12);
LAYOUT(lsc2d_grid, grid_w, 12, 16);
LAYOUT(lsc2d_grid, grid_h, 16, 20);

SIZE(lsc2d_table_desc, 16, 24);
LAYOUT(lsc2d_table_desc, width, 0, 0);
LAYOUT(lsc2d_table_desc, height, 2, 2);
LAYOUT(lsc2d_table_desc, step_x, 4, 4);
LAYOUT(lsc2d_table_desc, step_y, 6, 6);
LAYOUT(lsc2d_table_desc, table_w, 8, 8);
LAYOUT(lsc2d_table_desc, table_h, 10, 10);
LAYOUT(lsc2d_table_desc, table, 12, 16);

SIZE(lsc2d_crop, 8, 8);
LAYOUT(lsc2d_crop, x, 0, 0);
LAYOUT(lsc2d_crop, y, 2, 2);
LAYOUT(lsc2d_crop, width, 4, 4);
LAYOUT(lsc2d_crop, height, 6, 6);

SIZE(lsc_otp_info, 36, 64);
LAYOUT(lsc_otp_info, bayer_pattern, 0, 0);
LAYOUT(lsc_otp_info, grid_width, 4, 4);
LAYOUT(lsc_otp_info, grid_height, 8, 8);
LAYOUT(lsc_otp_info, lsc_table, 12, 16);
LAYOUT(lsc_otp_info, stream, 28, 48);
LAYOUT(lsc_otp_info, precision_mode, 32, 56);

SIZE(zerklsc_report, 36, 36);
LAYOUT(zerklsc_report, clipped_samples, 0, 0);
LAYOUT(zerklsc_report, capped_nodes, 16, 16);
LAYOUT(zerklsc_report, dark_row_ends, 32, 32);

} // namespace
