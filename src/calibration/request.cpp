// The request of the calibration entry point.
#include "calibration/request.h"

#include <algorithm>

#include "sampling/center_points.h"

namespace zerklsc {
namespace {

constexpr int32_t highest_byte = 255;

// The border and the ISP interpolate over three nodes in either direction.
bool holds_stencils(const Request& request) {
    constexpr int32_t least = 3 + 2 * ZERKLSC_BORDER;
    return request.table_w >= least && request.table_h >= least;
}

// The parameter generators take the low byte of the step and reflect the planes into a margin.
bool generator_accepts(const Request& request, int32_t least_extent) {
    const int32_t extent = std::min(request.plane_w, request.plane_h);
    return extent >= least_extent && request.param.grid <= highest_byte
           && request.param.filter_radius < extent && holds_stencils(request);
}

// Whether the planes are large enough for the cluster that gives the reference level.
bool has_centre(const Request& request) {
    return centre_cluster(request.plane_w, request.plane_h).points() > 0;
}

} // namespace

Request make_request(const uint16_t* raw, const lsc2d_info& info) {
    Request request{.raw = const_cast<uint16_t*>(raw),
                    .width = info.width,
                    .height = info.height,
                    .plane_w = info.width >> 1,
                    .plane_h = info.height >> 1,
                    .table_w = 0,
                    .table_h = 0,
                    .tables = {},
                    .param = {}};
    std::copy_n(info.lsc_table, ZERKLSC_CHANNELS, request.tables);
    lsc2d_table_size(request.plane_w, request.plane_h, info.grid, info.grid, &request.table_w,
                     &request.table_h);
    lsc2d_calib_param_default(&request.param, info.grid, info.filter_radius, info.shading_percent);
    return request;
}

bool method_accepts(int32_t algorithm, const Request& request) {
    constexpr int32_t halvane_block = 50;
    if (request.param.grid == 0 || request.param.filter_radius < 0)
        return false;
    switch (algorithm) {
    case ZERKLSC_ALGORITHM_HALVANE:
        return generator_accepts(request, halvane_block);
    case ZERKLSC_ALGORITHM_ORVEL_OTP:
        return generator_accepts(request, 1);
    case ZERKLSC_ALGORITHM_ORVEL:
        return has_centre(request) && holds_stencils(request);
    case ZERKLSC_ALGORITHM_BETA:
        return has_centre(request);
    case ZERKLSC_ALGORITHM_ORVEL_WEIGHTS:
        return has_centre(request) && holds_stencils(request) && request.param.grid <= highest_byte;
    default:
        return false;
    }
}

} // namespace zerklsc
