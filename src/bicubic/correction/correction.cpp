#include "bicubic/correction/correction.h"

#include <algorithm>
#include <cstdlib>

#include "frame/planes.h"

namespace zerklsc {
namespace {

// Whether the four taps sum to unity without a wrap, and no sum of products with 16-bit values leaves 32
// bits. All generated weights are so; a record's own may not be.
bool cannot_overflow(const PhaseWeights& weights) {
    int32_t sum = 0;
    int32_t magnitude = 0;
    for (const int16_t tap : weights.tap) {
        sum += tap;
        magnitude += std::abs(tap);
    }
    return sum == ZERKLSC_UNITY_GAIN && magnitude <= INT16_MAX;
}

} // namespace

CorrectionForm fastest_form(const Correction& correction) {
    if (std::all_of(correction.phases, correction.phases + correction.step, cannot_overflow))
        return ZERKLSC_KERNEL(correct_cells);
    return plain::correct;
}

GridPosition grid_position(int32_t i, int32_t step) {
    return {i / step, i % step};
}

GridPosition shifted_grid_position(int32_t i, int32_t extent, int32_t step) {
    const GridPosition at = grid_position(i, step);
    if (extent % step == 1 && i == extent - 1)
        return {at.cell - 1, at.phase + 1};
    return at;
}

RowPosition row_position(const Correction& c, int32_t y) {
    return {y & 1, grid_position(y / 2, c.step), shifted_grid_position(y / 2, c.in.height / 2, c.step)};
}

uint16_t node(const Correction& correction, int32_t plane, int32_t column, int32_t row) {
    const int64_t index = int64_t{row} * correction.table_w + column;
    const int64_t last = int64_t{correction.table_w} * correction.table_h - 1;
    return correction.table[plane][std::clamp(index, int64_t{0}, last)];
}

const char* missing_pointer(const uint16_t* in, const uint16_t* out, const isp_param_tag* param) {
    if (in == nullptr)
        return "The lens_correction input data pointer is NULL.";
    if (out == nullptr)
        return "The lens_correction output data pointer is NULL.";
    if (param == nullptr || !all_given(param->lsc_table))
        return "The lens correction input parameter pointer is NULL.";
    return nullptr;
}

Correction frame_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param) {
    Correction correction{};
    correction.in = packed_view(in, param.width, param.height);
    correction.out = packed_view(out, param.width, param.height);
    correction.end_row = param.height;
    for (int32_t k = 0; k < ZERKLSC_CHANNELS; ++k)
        correction.table[plane_of_pointer[k]] = param.lsc_table[k];
    return correction;
}

} // namespace zerklsc
