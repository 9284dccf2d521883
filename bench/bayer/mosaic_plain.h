// The mosaic operations one pixel after the other, in the words of the manual; compiled without vectors.
#pragma once

#include "zerklsc.h"

namespace zerklsc::plain {

void split_channel(const uint16_t* raw, uint16_t* const* planes, int32_t width, int32_t height);
void merge_channel(uint16_t* raw, const uint16_t* const* planes, int32_t width, int32_t height);
void subtract_black(uint16_t* raw, const isp_blc_param& param);

} // namespace zerklsc::plain
