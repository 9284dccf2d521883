// Samples of a flat field that are above white: what the generators measure there is too dark.
#pragma once

#include "bicubic/generator/colour_plane.h"
#include "frame/view.h"
#include "zerklsc.h"

namespace zerklsc {

// Calls visit(plane) for every sample that is above white without its black level, in raster order.
template <class Visit>
void for_each_clipped_sample(View<const uint16_t> raw, const isp_param_tag& param, const Visit& visit) {
    for (int32_t y = 0; y < raw.height; ++y) {
        const uint16_t* const row = raw.row(y);
        for (int32_t x = 0; x < raw.width; ++x) {
            const int32_t plane = plane_at(x, y);
            if (row[x] - param.blc[plane] > white_level)
                visit(plane);
        }
    }
}

// Prints a line for each, which names its colour.
void print_clipped_samples(View<const uint16_t> raw, const isp_param_tag& param);

} // namespace zerklsc
