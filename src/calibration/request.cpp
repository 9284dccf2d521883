// The request of the calibration entry points.
#include "calibration/request.h"

#include <algorithm>

#include "calibration/fit_points.h"
#include "sampling/brightest_level.h"
#include "sampling/mask.h"

namespace zerklsc {
namespace {

constexpr int32_t highest_byte = 255;

// The border and the ISP interpolate over three nodes in either direction.
bool holds_stencils(const Request& request) {
    constexpr int32_t least = 3 + 2 * ZERKLSC_BORDER;
    return request.table_w >= least && request.table_h >= least;
}

// The parameter generators take the low byte of the step and reflect the planes into a margin.
zerklsc_status check_generator(const Request& request, int32_t least_extent) {
    const int32_t extent = std::min(request.plane_w, request.plane_h);
    if (request.param.grid > highest_byte)
        return ZERKLSC_BAD_STEP;
    if (extent < least_extent)
        return ZERKLSC_PLANE_TOO_SMALL;
    if (request.param.filter_radius >= extent)
        return ZERKLSC_BAD_RADIUS;
    return holds_stencils(request) ? ZERKLSC_OK : ZERKLSC_TOO_FEW_NODES;
}

// How far the averaging window reaches, which is all that the questions below ask of it.
Window outline(const Request& request) {
    Window window;
    window.radius = request.param.filter_radius;
    window.boundary_mode = request.param.boundary_mode;
    return window;
}

// Whether the planes are large enough for the cluster that gives the reference level, and for the windows
// around its points.
zerklsc_status check_centre(const Request& request) {
    const CentreCluster cluster = centre_cluster(request.plane_w, request.plane_h);
    if (cluster.points() == 0)
        return ZERKLSC_PLANE_TOO_SMALL;
    const PlaneSet planes = mosaic_planes(request.raw, request.width, request.height);
    return request.param.filter_radius <= max_radius && cluster_fits(planes, outline(request), cluster)
               ? ZERKLSC_OK
               : ZERKLSC_BAD_RADIUS;
}

zerklsc_status check_sampling(const Request& request) {
    const zerklsc_status centre = check_centre(request);
    if (centre != ZERKLSC_OK)
        return centre;
    if (request.param.filter_radius >= std::min(request.plane_w, request.plane_h))
        return ZERKLSC_BAD_RADIUS;
    return holds_stencils(request) ? ZERKLSC_OK : ZERKLSC_TOO_FEW_NODES;
}

zerklsc_status check_fit(const Request& request) {
    const zerklsc_status centre = check_centre(request);
    if (centre != ZERKLSC_OK)
        return centre;
    for (const int32_t extent : {request.plane_w, request.plane_h}) {
        const FitLines lines = fit_lines(extent, request.param.grid, request.param.filter_radius);
        const zerklsc_status status = check_lines(lines, extent, outline(request));
        if (status != ZERKLSC_OK)
            return status;
    }
    return ZERKLSC_OK;
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

zerklsc_status check_method(int32_t algorithm, const Request& request) {
    constexpr int32_t halvane_block = 50;
    if (algorithm < ZERKLSC_ALGORITHM_HALVANE || algorithm > ZERKLSC_ALGORITHM_ORVEL_WEIGHTS)
        return ZERKLSC_UNKNOWN_ALGORITHM;
    if (request.param.grid == 0)
        return ZERKLSC_BAD_STEP;
    if (request.param.filter_radius < 0)
        return ZERKLSC_BAD_RADIUS;
    switch (algorithm) {
    case ZERKLSC_ALGORITHM_HALVANE:
        return check_generator(request, halvane_block);
    case ZERKLSC_ALGORITHM_ORVEL_OTP:
        return check_generator(request, 1);
    case ZERKLSC_ALGORITHM_BETA:
        return check_fit(request);
    case ZERKLSC_ALGORITHM_ORVEL_WEIGHTS:
        return request.param.grid > highest_byte ? ZERKLSC_BAD_STEP : check_sampling(request);
    default:
        return check_sampling(request);
    }
}

} // namespace zerklsc
