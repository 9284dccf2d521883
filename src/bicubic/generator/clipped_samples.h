// Samples of a flat field that are above white: what the generators measure there is too dark.
#pragma once

#include <algorithm>

#include "bicubic/generator/colour_plane.h"
#include "bicubic/generator/level_kernels.h"
#include "frame/view.h"
#include "zerklsc.h"

namespace zerklsc {

// Calls visit(plane) for every sample that is above white without its black level, in raster order. Most
// parts of most rows have none and are only looked at as a whole.
template <class Visit>
void for_each_clipped_sample(View<const uint16_t> raw, const isp_param_tag& param, const Visit& visit) {
    constexpr int32_t part = 512;
    AnyAbove* const any_above = ZERKLSC_KERNEL(any_above);
    for (int32_t y = 0; y < raw.height; ++y) {
        const uint8_t* const black = param.blc + plane_at(0, y);
        const uint16_t limits[] = {static_cast<uint16_t>(white_level + black[0]),
                                   static_cast<uint16_t>(white_level + black[1])};
        const uint16_t* const row = raw.row(y);
        for (int32_t begin = 0; begin < raw.width; begin += part) {
            const int32_t count = std::min(part, raw.width - begin);
            if (!any_above(row + begin, count, limits))
                continue;
            for (int32_t x = begin; x < begin + count; ++x)
                if (row[x] > limits[x % 2])
                    visit(plane_at(x, y));
        }
    }
}

// Prints a line for each, which names its colour.
void print_clipped_samples(View<const uint16_t> raw, const isp_param_tag& param);

} // namespace zerklsc
