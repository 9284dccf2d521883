// lsc2d_calibration_wrapper
#include "calibration/methods.h"
#include "frame/planes.h"

namespace {

using namespace zerklsc;

bool is_complete(const uint16_t* raw, const lsc2d_info* info) {
    return raw != nullptr && info != nullptr && all_given(info->lsc_table);
}

// The exported functions only say that they refused; what for makes no difference here.
zerklsc_status as_status(int32_t result) {
    return result == 0 ? ZERKLSC_OK : ZERKLSC_NO_MEMORY;
}

zerklsc_status run_halvane(const uint16_t* raw, isp_param_tag* param, zerklsc_report*) {
    return as_status(bicubic_lnc_param_gen_halvane(const_cast<uint16_t*>(raw), param));
}

zerklsc_status run_orvel_otp(const uint16_t* raw, isp_param_tag* param, zerklsc_report*) {
    return as_status(bicubic_lnc_param_gen_orvel_otp(const_cast<uint16_t*>(raw), param));
}

zerklsc_status run_orvel(Request& r) {
    return as_status(
        lsc2d_calibration_orvel(r.raw, r.width, r.height, r.tables, r.table_w, r.table_h, &r.param));
}

zerklsc_status run_beta(Request& r) {
    return as_status(
        lsc2d_calibration_beta(r.raw, r.width, r.height, r.tables, r.table_w, r.table_h, &r.param));
}

} // namespace

int32_t lsc2d_calibration_wrapper(const uint16_t* raw, lsc2d_info* info) {
    if (!is_complete(raw, info))
        return -1;
    Request request = make_request(raw, *info);
    if (check_method(info->algorithm, request) != ZERKLSC_OK)
        return -1;
    constexpr MethodParts parts = {run_halvane, run_orvel_otp, run_orvel, run_beta};
    return run_method(request, *info, parts, nullptr) == ZERKLSC_OK ? 0 : -1;
}
