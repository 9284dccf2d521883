// The methods of lsc2d_calibration_wrapper() that run a parameter generator of the ISP.
#pragma once

#include <cstdint>

#include "calibration/request.h"
#include "zerklsc.h"

namespace zerklsc {

int32_t run_halvane(Request& request, const lsc2d_info& info);

int32_t run_orvel_otp(Request& request, const lsc2d_info& info);

} // namespace zerklsc
