// The plain form of calibration by sampling.
#include "calibration/orvel_plain.h"

#include <algorithm>
#include <cstddef>

#include "sampling/plain.h"

namespace zerklsc::plain {

std::vector<uint16_t> planes_of(const uint16_t* raw, int32_t width, int32_t height) {
    const size_t size = static_cast<size_t>(width / 2) * static_cast<size_t>(height / 2);
    std::vector<uint16_t> samples(4 * size);
    uint16_t* planes[4] = {&samples[0], &samples[size], &samples[2 * size], &samples[3 * size]};
    bayer_split_channel(raw, planes, width, height);
    return samples;
}

void calibrate_orvel(const uint16_t* raw, int32_t width, int32_t height, uint16_t** tables, int32_t stride_w,
                     int32_t stride_h, const lsc2d_calib_param& param) {
    const imfilter_t filter = {param.filter_type, param.filter_radius, param.boundary_mode, nullptr};
    const int32_t w = width / 2, h = height / 2, gw = stride_w - 2, gh = stride_h - 2, step = param.grid;
    const std::vector<uint16_t> planes = planes_of(raw, width, height);
    std::vector<float> gains(static_cast<size_t>(gw) * static_cast<size_t>(gh));
    for (size_t c = 0; c < 4; ++c) {
        const uint16_t* const plane = &planes[c * planes.size() / 4];
        sample_grid(plane, gains.data(), w, h, step, step, gw, gh, filter);
        const float reference = brightest_level(plane, w, h, filter);
        for (float& gain : gains)
            gain = reference / std::max(gain, 1.0f);
        std::vector<float> bordered(static_cast<size_t>(stride_w) * static_cast<size_t>(stride_h));
        update_table_border(gains.data(), bordered.data(), w, h, step, step, gw, gh, param.border_mode,
                            param.border_aux);
        lsc_table_ftoi(bordered.data(), tables[c], stride_w, stride_h);
    }
}

} // namespace zerklsc::plain
