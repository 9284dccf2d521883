// An averaging window, ready to be laid over the samples.
#pragma once

#include <cstdint>

#include "frame/convert.h"
#include "frame/scratch.h"
#include "sampling/plane_set.h"
#include "zerklsc.h"

namespace zerklsc {

// All weights are 0 or 1 and every row of ones is centred, so that a window is known by the reach of its
// rows.
struct Window {
    int32_t radius = 0;
    int32_t boundary_mode = 0;
    bool box = false;
    int64_t taps = 0;       // of weight 1
    float scale = 0.0f;     // 1 / taps
    Scratch<int32_t> reach; // radius + 1 elements by distance from the centre row; -1 for a row without ones

    // Null when the filter is refused: unknown type or boundary mode, radius below 0 or above max_radius, a
    // Gaussian without a sigma or without a tap, or no memory.
    explicit operator bool() const { return reach != nullptr; }

    // How far the ones reach from the middle of the row at distance dy from the centre.
    int32_t reach_of(int32_t dy) const { return reach.get()[dy < 0 ? -dy : dy]; }
};

// The most taps whose full-scale samples sum up within 31 and within 32 bits.
constexpr int64_t max_small_taps = INT32_MAX / UINT16_MAX;
constexpr int64_t max_narrow_taps = UINT32_MAX / UINT16_MAX;

Window make_window(const imfilter_t& filter);

// Whether the windows around all positions first .. last of a plane of n positions can be read.
bool window_fits(const Window& window, int32_t n, int64_t first, int64_t last);

// The sums of each plane under the window around (x, y), which fits.
void sum_window(const PlaneSet& planes, const Window& window, int64_t x, int64_t y, uint64_t sums[4]);

inline float mean_level(uint64_t sum, const Window& window) {
    return static_cast<float>(static_cast<int64_t>(sum)) * window.scale;
}

inline uint16_t rounded_level(uint64_t sum, const Window& window) {
    return floor_low16(static_cast<double>(mean_level(sum, window) + 0.5f));
}

} // namespace zerklsc
