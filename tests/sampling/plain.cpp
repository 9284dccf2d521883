// The plain form of the samplers.
#include "sampling/plain.h"

#include <algorithm>
#include <cstddef>

#include "frame/convert.h"
#include "frame/scratch.h"

namespace zerklsc::plain {
namespace {

struct Mask {
    Scratch<int32_t> weights;
    const int32_t* centre = nullptr;
    int32_t radius = 0;
    float scale = 0.0f;
};

Mask make_mask(const imfilter_t& filter) {
    const int64_t r = filter.filter_radius;
    const int64_t side = 2 * r + 1;
    Mask mask;
    mask.weights = allocate<int32_t>(static_cast<uint64_t>(side * side));
    if (mask.weights == nullptr)
        return mask;
    int32_t* const centre = mask.weights.get() + r * side + r;
    int32_t sum = 0;
    static_cast<void>(get_filter_mask(centre, &sum, &filter));
    mask.centre = centre;
    mask.radius = filter.filter_radius;
    mask.scale = 1.0f / static_cast<float>(sum);
    return mask;
}

int64_t sum_taps(const uint16_t* plane, int32_t width, int32_t height, int32_t x, int32_t y, const Mask& mask,
                 int32_t boundary_mode) {
    const int32_t r = mask.radius;
    int64_t sum = 0;
    for (int32_t dy = -r; dy <= r; ++dy) {
        const ptrdiff_t row = get_boundary_pos(height, y + dy, boundary_mode);
        const int32_t* const weights = mask.centre + static_cast<ptrdiff_t>(dy) * (2 * r + 1);
        for (int32_t dx = -r; dx <= r; ++dx)
            sum += int64_t{weights[dx]} * plane[row * width + get_boundary_pos(width, x + dx, boundary_mode)];
    }
    return sum;
}

} // namespace

bool sample_grid(const uint16_t* plane, float* samples, int32_t width, int32_t height, int32_t step_x,
                 int32_t step_y, int32_t out_w, int32_t out_h, const imfilter_t& filter) {
    const Mask mask = make_mask(filter);
    if (mask.centre == nullptr)
        return false;
    for (int32_t j = 0; j < out_h; ++j) {
        for (int32_t i = 0; i < out_w; ++i) {
            const int32_t x = std::clamp(i * step_x, 0, width - 1);
            const int32_t y = std::clamp(j * step_y, 0, height - 1);
            const int64_t sum = sum_taps(plane, width, height, x, y, mask, filter.boundary_mode);
            *samples++ = static_cast<float>(sum) * mask.scale;
        }
    }
    return true;
}

bool sample_points(const uint16_t* plane, pix_point* points, int32_t count, int32_t width, int32_t height,
                   const imfilter_t& filter) {
    const Mask mask = make_mask(filter);
    if (mask.centre == nullptr)
        return false;
    for (int32_t k = 0; k < count; ++k) {
        const int64_t sum =
            sum_taps(plane, width, height, points[k].x, points[k].y, mask, filter.boundary_mode);
        points[k].value = floor_low16(static_cast<double>(static_cast<float>(sum) * mask.scale + 0.5f));
    }
    return true;
}

bool filter_plane(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2, const imfilter_t& filter) {
    const Mask mask = make_mask(filter);
    if (mask.centre == nullptr)
        return false;
    const int32_t r = mask.radius;
    for (ptrdiff_t row = 0; row < s1; ++row) {
        for (ptrdiff_t at = row * s1; at < row * s1 + s2; ++at) {
            int64_t sum = 0;
            for (ptrdiff_t dy = -r; dy <= r; ++dy)
                for (ptrdiff_t dx = -r; dx <= r; ++dx)
                    sum += int64_t{mask.centre[dy * (2 * r + 1) + dx]} * src[at + dy * s1 + dx];
            dst[at] = floor_low16(static_cast<double>(static_cast<float>(sum) * mask.scale + 0.5f));
        }
    }
    return true;
}

} // namespace zerklsc::plain
