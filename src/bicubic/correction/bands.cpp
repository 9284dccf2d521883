// zerklsc_check_correction, zerklsc_correct
#include <algorithm>

#include "bicubic/correction/correction.h"
#include "frame/geometry.h"
#include "frame/planes.h"
#include "zerklsc_driver.h"

namespace zerklsc {
namespace {

bool is_known(int32_t algorithm) {
    return algorithm >= ZERKLSC_ALGORITHM_HALVANE && algorithm <= ZERKLSC_ALGORITHM_ORVEL_WEIGHTS;
}

bool is_tvessa2(const lsc2d_info& info) {
    return info.algorithm != ZERKLSC_ALGORITHM_ORVEL_WEIGHTS;
}

// Whether the ISP counts as many nodes along a plane as lsc2d_table_size() does.
bool has_usual_nodes(int32_t size, int32_t step) {
    int32_t usual = 0;
    int32_t same = 0;
    lsc2d_grid_samples(size, size, step, step, &usual, &same);
    return nodes_to_last_sample(size, step) == usual;
}

zerklsc_status check_tvessa2(const lsc2d_info& info) {
    if (!has_usual_nodes(info.width / 2, info.grid) || !has_usual_nodes(info.height / 2, info.grid))
        return ZERKLSC_OTHER_TABLE_SIZE;
    if (fixed_phases % info.grid != 0)
        return ZERKLSC_STEP_NOT_SMOOTH;
    return info.width < narrowest_slice ? ZERKLSC_NARROW_FRAME : ZERKLSC_OK;
}

// The rows of a frame that a call works on.
struct Band {
    uintptr_t begin; // of the first row
    size_t stride;
    size_t row_bytes;
    size_t rows;

    uintptr_t end() const { return begin + (rows - 1) * stride + row_bytes; }
};

// Whether a row of the one shares a byte with a row of the other, without being the same row.
bool overlap(const Band& in, const Band& out) {
    if (in.rows == 0 || in.end() <= out.begin || out.end() <= in.begin)
        return false;
    if (in.stride != out.stride)
        return true;
    const size_t gap = (std::max(in.begin, out.begin) - std::min(in.begin, out.begin)) % in.stride;
    const bool side_by_side = gap >= in.row_bytes && gap + in.row_bytes <= in.stride;
    return in.begin != out.begin && !side_by_side;
}

bool is_stride(size_t bytes, const lsc2d_info& info) {
    return bytes % sizeof(uint16_t) == 0 && bytes >= info.width * sizeof(uint16_t)
           && bytes <= PTRDIFF_MAX / size_t{info.height};
}

Correction correction_of(const lsc2d_info& info, const uint16_t* in, uint16_t* out) {
    isp_param_tag param{};
    lsc2d_info_to_isp_param(&info, &param);
    if (is_tvessa2(info))
        return tvessa2_correction(in, out, param);
    generate_bicubic_weight_table(&param.weight, param.grid);
    return vessal2_correction(in, out, param);
}

} // namespace
} // namespace zerklsc

zerklsc_status zerklsc_check_correction(const lsc2d_info* info) {
    using namespace zerklsc;
    if (info == nullptr)
        return ZERKLSC_NULL_POINTER;
    if (!is_known(info->algorithm))
        return ZERKLSC_UNKNOWN_ALGORITHM;
    if (info->width == 0 || info->height == 0)
        return ZERKLSC_EMPTY_FRAME;
    if (info->grid == 0 || info->grid > highest_step)
        return ZERKLSC_BAD_STEP;
    return is_tvessa2(*info) ? check_tvessa2(*info) : ZERKLSC_OK;
}

zerklsc_status zerklsc_correct(const lsc2d_info* info, const uint16_t* in, size_t in_stride, uint16_t* out,
                               size_t out_stride, int32_t first_row, int32_t rows) {
    using namespace zerklsc;
    const zerklsc_status fit = zerklsc_check_correction(info);
    if (ZERKLSC_REFUSED(fit))
        return fit;
    if (in == nullptr || out == nullptr || !all_given(info->lsc_table))
        return ZERKLSC_NULL_POINTER;
    if (!is_stride(in_stride, *info) || !is_stride(out_stride, *info))
        return ZERKLSC_BAD_STRIDE;
    if (first_row < 0 || rows < 0 || rows > info->height - first_row)
        return ZERKLSC_BAD_ROWS;
    const size_t first = static_cast<size_t>(first_row);
    const auto band = [&](const uint16_t* frame, size_t stride) {
        return Band{reinterpret_cast<uintptr_t>(frame) + first * stride, stride,
                    info->width * sizeof(uint16_t), static_cast<size_t>(rows)};
    };
    if (overlap(band(in, in_stride), band(out, out_stride)))
        return ZERKLSC_OVERLAP;
    Correction correction = correction_of(*info, in, out);
    correction.in.stride = static_cast<ptrdiff_t>(in_stride / sizeof(uint16_t));
    correction.out.stride = static_cast<ptrdiff_t>(out_stride / sizeof(uint16_t));
    correction.first_row = first_row;
    correction.end_row = first_row + rows;
    fastest_form(correction)(correction);
    return ZERKLSC_OK;
}
