// get_filter_mask
#include "sampling/mask.h"

#include <cstddef>

int32_t get_filter_mask(int32_t* mask_centre, int32_t* sum, const imfilter_t* filter) {
    if (!zerklsc::has_weights(*filter))
        return -1;
    const zerklsc::TapWeight weight(*filter);
    const int64_t r = filter->filter_radius;
    int64_t total = 0;
    for (int64_t dy = -r; dy <= r; ++dy) {
        for (int64_t dx = -r; dx <= r; ++dx) {
            const int32_t w = weight.at(dx * dx + dy * dy);
            mask_centre[static_cast<ptrdiff_t>(dy * (2 * r + 1) + dx)] = w;
            total += w;
        }
    }
    *sum = static_cast<int32_t>(total);
    return 0;
}
