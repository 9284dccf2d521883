#include "bicubic/correction/correction.h"

#include <algorithm>
#include <cstdio>

#include "frame/planes.h"

namespace zerklsc {
namespace {

bool has_tables(const isp_param_tag* param) {
    return param != nullptr && all_given(param->lsc_table);
}

} // namespace

Position plain_position(int32_t i, int32_t step) {
    return {i / step, i % step};
}

Position last_sample_position(int32_t i, int32_t extent, int32_t step) {
    const Position at = plain_position(i, step);
    if (extent % step == 1 && i == extent - 1)
        return {at.cell - 1, at.phase + 1};
    return at;
}

Row row_position(const Correction& c, int32_t y) {
    return {y & 1, plain_position(y / 2, c.step), last_sample_position(y / 2, c.height / 2, c.step)};
}

uint16_t node(const Correction& correction, int32_t slot, int32_t column, int32_t row) {
    const int64_t index = int64_t{row} * correction.table_w + column;
    const int64_t last = int64_t{correction.table_w} * correction.table_h - 1;
    return correction.table[slot][std::clamp(index, int64_t{0}, last)];
}

bool has_pointers(const uint16_t* in, const uint16_t* out, const isp_param_tag* param) {
    if (in == nullptr)
        std::puts("The lens_correction input data pointer is NULL.");
    else if (out == nullptr)
        std::puts("The lens_correction output data pointer is NULL.");
    else if (!has_tables(param))
        std::puts("The lens correction input parameter pointer is NULL.");
    else
        return true;
    return false;
}

Correction frame_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param) {
    Correction correction{};
    correction.in = in;
    correction.out = out;
    correction.width = param.width;
    correction.height = param.height;
    for (int32_t k = 0; k < ZERKLSC_CHANNELS; ++k)
        correction.table[plane_of_pointer[k]] = param.lsc_table[k];
    return correction;
}

} // namespace zerklsc
