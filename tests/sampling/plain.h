// The samplers in their plain form: a full mask, laid tap by tap over a plane. The fast ones equal it to the
// bit.
#pragma once

#include <cstdint>

#include "zerklsc.h"

namespace zerklsc::plain {

// As img_sample_grid(), img_sample() and img_filter(), for filters and positions that those do not refuse.
void sample_grid(const uint16_t* plane, float* samples, int32_t width, int32_t height, int32_t step_x,
                 int32_t step_y, int32_t out_w, int32_t out_h, const imfilter_t& filter);
void sample_points(const uint16_t* plane, pix_point* points, int32_t count, int32_t width, int32_t height,
                   const imfilter_t& filter);
void filter_plane(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2, const imfilter_t& filter);

// The level of the brightest point of the centre cluster, which must have one.
uint16_t brightest_level(const uint16_t* plane, int32_t width, int32_t height, const imfilter_t& filter);

} // namespace zerklsc::plain
