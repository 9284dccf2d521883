// The calibration methods, from a request to finished tables.
#pragma once

#include "calibration/generators.h"
#include "calibration/request.h"
#include "zerklsc_driver.h"

namespace zerklsc {

// What the methods are made of. The entry points differ in it: what the parts of the one print or leave
// allocated is no business of the other. Each part writes all of its tables or, on a refusal, nothing.
struct MethodParts {
    Generator* halvane;
    Generator* orvel_otp;
    zerklsc_status (*orvel)(Request& request);
    zerklsc_status (*beta)(Request& request);
};

// The method of info.algorithm, which check_method() accepts. Writes the request's tables and, for the method
// with weights, info.weight; nothing on a refusal. The generators get `report`.
zerklsc_status run_method(Request& request, lsc2d_info& info, const MethodParts& parts,
                          zerklsc_report* report);

} // namespace zerklsc
