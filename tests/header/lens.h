// A frame behind a lens that darkens towards the corners, and the records to calibrate and correct it.
#pragma once

#include <cstdint>
#include <vector>

#include "zerklsc.h"

namespace zerklsc::testing {

// `centre` in the middle, 0.6 of it in the corners; the same for all colours.
inline std::vector<uint16_t> lens_frame(int width, int height, int centre) {
    std::vector<uint16_t> frame;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double dx = 2.0 * x / width - 1, dy = 2.0 * y / height - 1;
            frame.push_back(static_cast<uint16_t>(centre * (1 - 0.2 * (dx * dx + dy * dy))));
        }
    return frame;
}

struct Shading {
    lsc2d_info info{};
    int32_t table_w = 0;
    int32_t table_h = 0;
    std::vector<uint16_t> tables[ZERKLSC_CHANNELS];

    Shading(int width, int height, int step, int algorithm) {
        info.width = static_cast<uint16_t>(width);
        info.height = static_cast<uint16_t>(height);
        info.grid = static_cast<uint16_t>(step);
        info.shading_percent = 100;
        info.filter_radius = 4;
        info.algorithm = algorithm;
        lsc2d_table_size(width / 2, height / 2, step, step, &table_w, &table_h);
        for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
            tables[c].assign(static_cast<size_t>(table_w) * static_cast<size_t>(table_h), 1024);
            info.lsc_table[c] = tables[c].data();
        }
    }

    // The gain of the inner node (i, j) of plane 0.
    int gain(int i, int j) const { return tables[0][static_cast<size_t>((j + 1) * table_w + i + 1)]; }
};

} // namespace zerklsc::testing
