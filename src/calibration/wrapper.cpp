// lsc2d_calibration_wrapper
#include "calibration/generators.h"
#include "calibration/request.h"
#include "frame/planes.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

bool is_complete(const uint16_t* raw, const lsc2d_info* info) {
    return raw != nullptr && info != nullptr && all_given(info->lsc_table);
}

int32_t run_orvel(Request& request) {
    return lsc2d_calibration_orvel(request.raw, request.width, request.height, request.tables,
                                   request.table_w, request.table_h, &request.param);
}

int32_t run_beta(Request& request) {
    return lsc2d_calibration_beta(request.raw, request.width, request.height, request.tables, request.table_w,
                                  request.table_h, &request.param);
}

// The shading model and the limit of the hardware, on tables of the size that the model asks for.
void finish_tables(Request& request) {
    lsc2d_table_postproc(request.tables, request.plane_w, request.plane_h, request.table_w, request.table_h,
                         &request.param);
}

} // namespace

int32_t lsc2d_calibration_wrapper(const uint16_t* raw, lsc2d_info* info) {
    if (!is_complete(raw, info))
        return -1;
    Request request = make_request(raw, *info);
    if (!method_accepts(info->algorithm, request))
        return -1;
    if (info->algorithm == ZERKLSC_ALGORITHM_HALVANE)
        return run_halvane(request, *info);
    if (info->algorithm == ZERKLSC_ALGORITHM_ORVEL_OTP)
        return run_orvel_otp(request, *info);

    const int32_t status = info->algorithm == ZERKLSC_ALGORITHM_BETA ? run_beta(request) : run_orvel(request);
    if (status == -1)
        return -1;
    finish_tables(request);
    if (info->algorithm == ZERKLSC_ALGORITHM_ORVEL_WEIGHTS)
        generate_bicubic_weight_table(&info->weight, info->grid);
    return status;
}
