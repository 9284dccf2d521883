// The samplers in their plain form: a full mask, laid tap by tap over a plane. The fast ones equal it to the
// bit.
#pragma once

#include <cstdint>

#include "zerklsc.h"

namespace zerklsc::plain {

// As img_sample_grid() and img_sample(), for filters and positions that those do not refuse; false when the
// mask cannot be had.
bool sample_grid(const uint16_t* plane, float* samples, int32_t width, int32_t height, int32_t step_x,
                 int32_t step_y, int32_t out_w, int32_t out_h, const imfilter_t& filter);

// As img_filter(), likewise.
bool filter_plane(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2, const imfilter_t& filter);

bool sample_points(const uint16_t* plane, pix_point* points, int32_t count, int32_t width, int32_t height,
                   const imfilter_t& filter);

} // namespace zerklsc::plain
