// Each calibration method step by step.
#include "calibration/methods.h"

namespace zerklsc {
namespace {

// The shading model and the limit of the hardware, on tables of the size that the model asks for.
void finish_tables(Request& request) {
    lsc2d_table_postproc(request.tables, request.plane_w, request.plane_h, request.table_w, request.table_h,
                         &request.param);
}

} // namespace

zerklsc_status run_method(Request& request, lsc2d_info& info, const MethodParts& parts,
                          zerklsc_report* report) {
    if (info.algorithm == ZERKLSC_ALGORITHM_HALVANE)
        return run_halvane(request, info, *parts.halvane, report);
    if (info.algorithm == ZERKLSC_ALGORITHM_ORVEL_OTP)
        return run_orvel_otp(request, info, *parts.orvel_otp, report);
    const zerklsc_status status =
        info.algorithm == ZERKLSC_ALGORITHM_BETA ? parts.beta(request) : parts.orvel(request);
    if (status != ZERKLSC_OK)
        return status;
    finish_tables(request);
    if (info.algorithm == ZERKLSC_ALGORITHM_ORVEL_WEIGHTS)
        generate_bicubic_weight_table(&info.weight, info.grid);
    return ZERKLSC_OK;
}

} // namespace zerklsc
