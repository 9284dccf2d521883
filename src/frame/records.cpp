// lsc2d_calib_param_default, lsc2d_info_to_isp_param, isp_param_to_lsc2d_info
#include "frame/planes.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

// The fields that both conversions carry over unchanged.
template <class From, class To>
void copy_shared_fields(const From& from, To& to) {
    to.width = from.width;
    to.height = from.height;
    // The info lists the tables by plane, the ISP by pointer; the order is its own inverse.
    for (int32_t k = 0; k < ZERKLSC_CHANNELS; ++k)
        to.lsc_table[k] = from.lsc_table[plane_of_pointer[k]];
    to.grid = from.grid;
    to.shading_percent = from.shading_percent;
    to.filter_radius = from.filter_radius;
    to.weight = from.weight;
}

} // namespace

void lsc2d_calib_param_default(lsc2d_calib_param* param, int32_t grid, int32_t filter_radius,
                               int32_t shading_percent) {
    *param = {.grid = grid,
              .filter_type = ZERKLSC_FILTER_BOX,
              .filter_radius = filter_radius,
              .boundary_mode = ZERKLSC_BOUNDARY_MIRROR,
              .border_mode = ZERKLSC_EDGE_LINEAR,
              .border_aux = ZERKLSC_FILL_QUADRATIC,
              .shading_type = ZERKLSC_SHADING_SQUARE_ROOT,
              .shading_percent = shading_percent};
}

void lsc2d_info_to_isp_param(const lsc2d_info* info, isp_param_tag* param) {
    copy_shared_fields(*info, *param);
    if (info->algorithm == ZERKLSC_ALGORITHM_ORVEL_WEIGHTS)
        param->isp_type = ZERKLSC_ISP_VESSAL2;
    else if (info->algorithm >= ZERKLSC_ALGORITHM_HALVANE && info->algorithm <= ZERKLSC_ALGORITHM_BETA)
        param->isp_type = ZERKLSC_ISP_TVESSA2;
}

void isp_param_to_lsc2d_info(lsc2d_info* info, const isp_param_tag* param) {
    copy_shared_fields(*param, *info);
    // Not what the forward conversion wrote: that one sets isp_type and leaves isp_algorithm to its caller,
    // so an info that went there and back carries whatever algorithm the ISP record holds.
    info->algorithm = param->isp_algorithm;
}
