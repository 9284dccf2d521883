// The calibration methods that run a parameter generator of the ISP.
#pragma once

#include "calibration/request.h"
#include "zerklsc_driver.h"

namespace zerklsc {

// A parameter generator, with what it finds written to `report` or printed.
using Generator = zerklsc_status(const uint16_t* raw, isp_param_tag* param, zerklsc_report* report);

zerklsc_status run_halvane(Request& request, const lsc2d_info& info, Generator& generate,
                           zerklsc_report* report);

// The report is of the generator's tables, which the shading model then changes.
zerklsc_status run_orvel_otp(Request& request, const lsc2d_info& info, Generator& generate,
                             zerklsc_report* report);

} // namespace zerklsc
