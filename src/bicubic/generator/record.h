// The parameter record that the functions with plain arguments hand to the generators.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/convert.h"
#include "zerklsc.h"

namespace zerklsc {

// For the tvessa2 ISP, with everything that is not given 0.
inline isp_param_tag generator_record(uint16_t width, uint16_t height, uint16_t* const tables[4],
                                      uint32_t grid, uint32_t margin, uint32_t percent) {
    lsc2d_info info{};
    info.width = width;
    info.height = height;
    std::copy_n(tables, ZERKLSC_CHANNELS, info.lsc_table);
    info.grid = low16(grid);
    info.shading_percent = static_cast<int32_t>(percent);
    info.filter_radius = static_cast<int32_t>(margin);
    info.algorithm = ZERKLSC_ALGORITHM_ORVEL_OTP;
    isp_param_tag param{};
    lsc2d_info_to_isp_param(&info, &param);
    return param;
}

} // namespace zerklsc
