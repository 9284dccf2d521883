// zerklsc_check_calibration, zerklsc_calibrate
#include "calibration/beta.h"
#include "calibration/methods.h"
#include "calibration/orvel.h"
#include "frame/planes.h"
#include "table/inner_nodes.h"
#include "zerklsc_driver.h"

namespace {

using namespace zerklsc;

zerklsc_status as_status(Fit fit) {
    switch (fit) {
    case Fit::done:
        return ZERKLSC_OK;
    case Fit::rounded:
        return ZERKLSC_FIT_ROUNDS;
    case Fit::singular:
        return ZERKLSC_NO_SOLUTION;
    default:
        return ZERKLSC_NO_MEMORY;
    }
}

zerklsc_status orvel_otp(const uint16_t* raw, isp_param_tag* param, zerklsc_report* report) {
    return zerklsc_generate_orvel_otp(raw, param, report);
}

zerklsc_status orvel(Request& request) {
    NodeSamples samples;
    const bool done = sample_tables(request.raw, request.width, request.height, request.tables,
                                    request.table_w, request.table_h, request.param, samples);
    return done ? ZERKLSC_OK : ZERKLSC_NO_MEMORY;
}

zerklsc_status beta(Request& request) {
    return as_status(fit_surface(request.raw, request.width, request.height, request.tables, request.table_w,
                                 request.table_h, request.param));
}

zerklsc_status try_method(const lsc2d_info& info) {
    const Request request = make_request(nullptr, info);
    const zerklsc_status status = check_method(info.algorithm, request);
    if (status != ZERKLSC_OK || info.algorithm != ZERKLSC_ALGORITHM_BETA)
        return status;
    return as_status(
        try_fit({request.table_w, request.table_h}, request.plane_w, request.plane_h, request.param));
}

} // namespace

zerklsc_status zerklsc_check_calibration(const lsc2d_info* info) {
    const zerklsc_status correction = zerklsc_check_correction(info);
    if (ZERKLSC_REFUSED(correction))
        return correction;
    const zerklsc_status method = try_method(*info);
    return ZERKLSC_REFUSED(method) || correction == ZERKLSC_OK ? method : correction;
}

zerklsc_status zerklsc_calibrate(const uint16_t* raw, lsc2d_info* info, zerklsc_report* report) {
    const zerklsc_status correction = zerklsc_check_correction(info);
    if (ZERKLSC_REFUSED(correction))
        return correction;
    if (raw == nullptr || !all_given(info->lsc_table))
        return ZERKLSC_NULL_POINTER;
    Request request = make_request(raw, *info);
    zerklsc_status status = check_method(info->algorithm, request);
    if (status != ZERKLSC_OK)
        return status;
    constexpr MethodParts parts = {zerklsc_generate_halvane, orvel_otp, orvel, beta};
    zerklsc_report found{};
    status = run_method(request, *info, parts, report != nullptr ? &found : nullptr);
    if (status != ZERKLSC_OK || report == nullptr)
        return status;
    for (int32_t c = 0; c < ZERKLSC_CHANNELS; ++c)
        found.capped_nodes[c] = count_inner_nodes(
            packed_view(request.tables[c], request.table_w, request.table_h), ZERKLSC_HIGHEST_GAIN);
    *report = found;
    return ZERKLSC_OK;
}
