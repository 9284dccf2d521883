// apply_shading_table, calc_shading_table
#include <algorithm>
#include <cmath>

#include "frame/convert.h"
#include "zerklsc.h"

namespace {

// Squared distances from the middle of a plane, 1 at its corners.
struct Radius {
    float cx, cy, scale;

    float squared(int64_t x, int64_t y) const {
        const float dx = static_cast<float>(x) - cx;
        const float dy = static_cast<float>(y) - cy;
        return (dx * dx + dy * dy) * scale;
    }
};

Radius radius_over(int32_t width, int32_t height) {
    const float cx = static_cast<float>(width) * 0.5f;
    const float cy = static_cast<float>(height) * 0.5f;
    return {cx, cy, 1.0f / (cx * cx + cy * cy)};
}

// The model's factor at squared radius r2; 1 for an unknown model. Model 0 has none (not a number) where the
// square would be negative, beyond the corners at a low percentage.
float factor(const shading_t& shading, float r2) {
    const float s = static_cast<float>(shading.percent) * 0.01f;
    switch (shading.type) {
    case ZERKLSC_SHADING_SQUARE_ROOT:
        return static_cast<float>(std::sqrt(static_cast<double>(r2 * (s * s - 1.0f) + 1.0f)));
    case ZERKLSC_SHADING_EXPONENTIAL:
        return static_cast<float>(std::pow(static_cast<double>(s), static_cast<double>(r2)));
    case ZERKLSC_SHADING_LINEAR:
        return r2 * (s - 1.0f) + 1.0f;
    default:
        return 1.0f;
    }
}

// The product keeps its low 16 bits, without a limit: a percentage above 100 on a high gain, or a negative
// factor beyond the corners, wraps here and meets the 14-bit limit only in format_lsc_table().
uint16_t wrapped_product(float f, uint16_t gain) {
    return zerklsc::floor_low16(static_cast<double>(f * static_cast<float>(gain) + 0.5f));
}

int64_t clamped_into(int64_t position, int32_t size) {
    return std::min(std::max(position, int64_t{0}), int64_t{size} - 1);
}

} // namespace

void apply_shading_table(uint16_t* table, int32_t width, int32_t height, int32_t step_x, int32_t step_y,
                         int32_t table_w, int32_t table_h, const shading_t* shading) {
    const Radius radius = radius_over(width, height);
    for (int64_t j = 0; j < table_h; ++j) {
        const int64_t y = (j - ZERKLSC_BORDER) * step_y;
        for (int64_t i = 0; i < table_w; ++i) {
            const int64_t x = (i - ZERKLSC_BORDER) * step_x;
            uint16_t& gain = table[j * table_w + i];
            gain = wrapped_product(factor(*shading, radius.squared(x, y)), gain);
        }
    }
}

// Unlike apply_shading_table(), whose nodes begin with the border at -step, this table has no border: node
// (0, 0) stands at (0, 0), and nodes beyond the plane are taken at its edge. A caller who multiplies the two
// will see it.
int32_t calc_shading_table(float* table, int32_t width, int32_t height, int32_t step_x, int32_t step_y,
                           int32_t table_w, int32_t table_h, const shading_t* shading) {
    const Radius radius = radius_over(width, height);
    for (int64_t j = 0; j < table_h; ++j) {
        const int64_t y = clamped_into(j * step_y, height);
        for (int64_t i = 0; i < table_w; ++i) {
            const int64_t x = clamped_into(i * step_x, width);
            table[j * table_w + i] = factor(*shading, radius.squared(x, y));
        }
    }
    return 0;
}
