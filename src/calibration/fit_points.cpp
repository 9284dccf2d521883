#include "calibration/fit_points.h"

namespace zerklsc {
namespace {

constexpr int64_t endless = -1;

// first, first + step and so on, `count` of them.
struct Ramp {
    int64_t first;
    int64_t step;
    int64_t count;
};

// As far as the values stay below `end`.
Ramp ramp(int64_t first, int64_t end, int64_t step) {
    if (first >= end)
        return {first, step, 0};
    return {first, step, step > 0 ? (end - first + step - 1) / step : endless};
}

int16_t* store(const Ramp& r, int16_t* to) {
    for (int64_t i = 0; i < r.count; ++i)
        *to++ = static_cast<int16_t>(r.first + i * r.step);
    return to;
}

} // namespace

FitLines fit_lines(int32_t extent, int32_t step, int32_t start) {
    const int32_t centre = extent / 2;
    const Ramp edge = ramp(start, step, step / 8);
    const Ramp inside = ramp(step, centre, step / 2);
    if (edge.count == endless || inside.count == endless)
        return {nullptr, 0};
    const int64_t half = edge.count + inside.count;
    const int64_t count = 2 * half + 1;
    FitLines lines = {allocate<int16_t>(static_cast<uint64_t>(count)), static_cast<int32_t>(count)};
    if (lines.at == nullptr)
        return lines;
    int16_t* const middle = store(inside, store(edge, lines.at.get()));
    *middle = static_cast<int16_t>(centre);
    for (int64_t i = 1; i <= half; ++i)
        middle[i] = static_cast<int16_t>(int64_t{extent} - 1 - middle[-i]);
    return lines;
}

zerklsc_status check_lines(const FitLines& lines, int32_t extent, const Window& window) {
    if (lines.at == nullptr)
        return lines.count == 0 ? ZERKLSC_BAD_STEP : ZERKLSC_NO_MEMORY;
    for (const int16_t at : lines) {
        // Only a step longer than the plane takes lines out of it, behind its end first.
        if (!window_fits(window, extent, at, at))
            return at >= extent ? ZERKLSC_BAD_STEP : ZERKLSC_BAD_RADIUS;
    }
    return ZERKLSC_OK;
}

} // namespace zerklsc
