// The plain form of calibration by sampling.
#include "calibration/orvel_plain.h"

#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "sampling/plain.h"

namespace zerklsc::plain {
namespace {

struct Plane {
    const uint16_t* samples;
    int32_t width;
    int32_t height;
};

bool find_reference(const Plane& plane, const imfilter_t& filter, uint16_t& reference) {
    pix_point* points = nullptr;
    int32_t count = 0;
    if (init_center_points(plane.width, plane.height, &points, &count) != 0)
        return false;
    const bool sampled = sample_points(plane.samples, points, count, plane.width, plane.height, filter);
    reference = count == 0 ? uint16_t{0} : points[get_pixel_maximum(points, count)].value;
    release_center_points(points);
    return sampled;
}

bool calibrate_plane(const Plane& plane, uint16_t* table, int32_t stride_w, int32_t stride_h,
                     const lsc2d_calib_param& param) {
    const imfilter_t filter = {.filter_type = param.filter_type,
                               .filter_radius = param.filter_radius,
                               .boundary_mode = param.boundary_mode,
                               .sigma = nullptr};
    const int32_t gw = stride_w - 2 * ZERKLSC_BORDER;
    const int32_t gh = stride_h - 2 * ZERKLSC_BORDER;
    const Scratch<float> gains = allocate<float>(gw, gh);
    const Scratch<float> bordered = allocate<float>(stride_w, stride_h);
    uint16_t reference = 0;
    if (gains == nullptr || bordered == nullptr
        || !sample_grid(plane.samples, gains.get(), plane.width, plane.height, param.grid, param.grid, gw, gh,
                        filter)
        || !find_reference(plane, filter, reference))
        return false;
    std::transform(gains.get(), gains.get() + ptrdiff_t{gw} * gh, gains.get(), [reference](float sample) {
        return static_cast<float>(reference) / std::max(sample, 1.0f);
    });
    std::fill_n(bordered.get(), ptrdiff_t{stride_w} * stride_h, 0.0f);
    update_table_border(gains.get(), bordered.get(), plane.width, plane.height, param.grid, param.grid, gw,
                        gh, param.border_mode, param.border_aux);
    lsc_table_ftoi(bordered.get(), table, stride_w, stride_h);
    return true;
}

} // namespace

bool calibrate_orvel(const uint16_t* raw, int32_t width, int32_t height, uint16_t** tables, int32_t stride_w,
                     int32_t stride_h, const lsc2d_calib_param& param) {
    const int32_t w = width / 2;
    const int32_t h = height / 2;
    const ptrdiff_t size = ptrdiff_t{w} * h;
    const Scratch<uint16_t> buffer =
        allocate<uint16_t>(uint64_t{ZERKLSC_CHANNELS} * static_cast<uint64_t>(size));
    if (buffer == nullptr)
        return false;
    uint16_t* planes[ZERKLSC_CHANNELS];
    for (int32_t c = 0; c < ZERKLSC_CHANNELS; ++c)
        planes[c] = buffer.get() + c * size;
    bayer_split_channel(raw, planes, width, height);
    for (int32_t c = 0; c < ZERKLSC_CHANNELS; ++c) {
        if (!calibrate_plane({planes[c], w, h}, tables[c], stride_w, stride_h, param))
            return false;
    }
    return true;
}

} // namespace zerklsc::plain
