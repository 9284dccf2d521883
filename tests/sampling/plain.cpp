// The plain form of the samplers.
#include "sampling/plain.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "frame/convert.h"

namespace zerklsc::plain {
namespace {

struct Mask {
    int32_t radius;
    std::vector<int32_t> weights;
    float scale;

    explicit Mask(const imfilter_t& filter)
        : radius(filter.filter_radius),
          weights(static_cast<size_t>(2 * radius + 1) * static_cast<size_t>(2 * radius + 1)) {
        int32_t sum = 0;
        static_cast<void>(get_filter_mask(&weights[weights.size() / 2], &sum, &filter));
        scale = 1.0f / static_cast<float>(sum);
    }

    // The level of the taps row(dy)(dx).
    template <class Row>
    float level(const Row& row) const {
        const int32_t* weight = weights.data();
        int64_t sum = 0;
        for (int32_t dy = -radius; dy <= radius; ++dy) {
            const auto tap = row(dy);
            for (int32_t dx = -radius; dx <= radius; ++dx)
                sum += int64_t{*weight++} * tap(dx);
        }
        return static_cast<float>(sum) * scale;
    }
};

// Around (x, y) of a plane.
auto taps(const uint16_t* plane, int32_t width, int32_t height, int32_t x, int32_t y, int32_t mode) {
    return [=](int32_t dy) {
        const uint16_t* const row = plane + ptrdiff_t{get_boundary_pos(height, y + dy, mode)} * width;
        return [=](int32_t dx) { return row[get_boundary_pos(width, x + dx, mode)]; };
    };
}

uint16_t rounded(float level) {
    return floor_low16(static_cast<double>(level + 0.5f));
}

} // namespace

void sample_grid(const uint16_t* plane, float* samples, int32_t width, int32_t height, int32_t step_x,
                 int32_t step_y, int32_t out_w, int32_t out_h, const imfilter_t& filter) {
    const Mask mask(filter);
    for (int32_t j = 0; j < out_h; ++j)
        for (int32_t i = 0; i < out_w; ++i) {
            const auto x = static_cast<int32_t>(std::clamp<int64_t>(int64_t{i} * step_x, 0, width - 1));
            const auto y = static_cast<int32_t>(std::clamp<int64_t>(int64_t{j} * step_y, 0, height - 1));
            *samples++ = mask.level(taps(plane, width, height, x, y, filter.boundary_mode));
        }
}

void sample_points(const uint16_t* plane, pix_point* points, int32_t count, int32_t width, int32_t height,
                   const imfilter_t& filter) {
    const Mask mask(filter);
    for (pix_point* p = points; p < points + count; ++p)
        p->value = rounded(mask.level(taps(plane, width, height, p->x, p->y, filter.boundary_mode)));
}

void filter_plane(const uint16_t* src, uint16_t* dst, int32_t s1, int32_t s2, const imfilter_t& filter) {
    const Mask mask(filter);
    for (ptrdiff_t row = 0; row < s1; ++row)
        for (ptrdiff_t at = row * s1; at < row * s1 + s2; ++at)
            dst[at] = rounded(mask.level(
                [=](ptrdiff_t dy) { return [=](ptrdiff_t dx) { return src[at + dy * s1 + dx]; }; }));
}

uint16_t brightest_level(const uint16_t* plane, int32_t width, int32_t height, const imfilter_t& filter) {
    pix_point* points = nullptr;
    int32_t count = 0;
    init_center_points(width, height, &points, &count);
    sample_points(plane, points, count, width, height, filter);
    const uint16_t level = points[get_pixel_maximum(points, count)].value;
    release_center_points(points);
    return level;
}

} // namespace zerklsc::plain
