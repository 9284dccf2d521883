// Frames and gain tables like those of a real module, for the benchmarks.
#pragma once

#include <cmath>
#include <vector>

#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace zerklsc::bench {

// A flat field of 10 bits whose corners keep 35 % of the centre, with noise.
inline std::vector<uint16_t> flat_field(int32_t width, int32_t height, uint64_t seed = 1) {
    testing::Random random(seed);
    std::vector<uint16_t> frame(static_cast<size_t>(width) * static_cast<size_t>(height));
    const double scale = 4.0 / (static_cast<double>(width) * width + static_cast<double>(height) * height);
    uint16_t* out = frame.data();
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            const double dx = x - width * 0.5, dy = y - height * 0.5;
            const double level = 900.0 * (1.0 - 0.65 * scale * (dx * dx + dy * dy));
            *out++ = static_cast<uint16_t>(level + static_cast<double>(random.between(-8, 8)));
        }
    return frame;
}

// Four tables of random gains in the hardware's range, with the info that names them. The tables are large
// enough for either ISP.
struct Tables {
    std::vector<uint16_t> gains[ZERKLSC_CHANNELS];
    lsc2d_info info{};
    int32_t table_w = 0;
    int32_t table_h = 0;

    Tables(int32_t width, int32_t height, int32_t step, int32_t algorithm) {
        lsc2d_table_size(width / 2, height / 2, step, step, &table_w, &table_h);
        testing::Random random(static_cast<uint64_t>(step));
        for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
            gains[c].resize(static_cast<size_t>(table_w) * static_cast<size_t>(table_h));
            for (uint16_t& gain : gains[c])
                gain = static_cast<uint16_t>(random.between(ZERKLSC_UNITY_GAIN, ZERKLSC_HIGHEST_GAIN));
            info.lsc_table[c] = gains[c].data();
        }
        info.width = static_cast<uint16_t>(width);
        info.height = static_cast<uint16_t>(height);
        info.grid = static_cast<uint16_t>(step);
        info.shading_percent = 100;
        info.algorithm = algorithm;
    }

    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;
};

} // namespace zerklsc::bench
