// get_boundary_pos
#include "sampling/boundary.h"

#include <algorithm>

#include "zerklsc.h"

namespace zerklsc {
namespace {

void append(Runs& runs, int64_t first, int64_t last, int64_t weight) {
    runs.run[runs.count++] = {static_cast<int32_t>(first), static_cast<int32_t>(last - first + 1),
                              static_cast<int32_t>(weight)};
}

} // namespace

bool taps_fit(int32_t n, int64_t first, int64_t last, int32_t mode) {
    if (n < 1)
        return false;
    return mode == ZERKLSC_BOUNDARY_CLAMP || (first > -int64_t{n} && last <= 2 * int64_t{n} - 2);
}

Runs tap_runs(int32_t n, int64_t first, int64_t last, int32_t mode) {
    const bool clamp = mode == ZERKLSC_BOUNDARY_CLAMP;
    const int64_t end = n;
    Runs runs;
    if (std::max<int64_t>(first, 0) <= std::min(last, end - 1))
        append(runs, std::max<int64_t>(first, 0), std::min(last, end - 1), 1);
    if (first < 0) {
        const int64_t nearest = std::min<int64_t>(last, -1);
        if (clamp)
            append(runs, 0, 0, nearest - first + 1);
        else
            append(runs, -nearest, -first, 1);
    }
    if (last >= end) {
        const int64_t nearest = std::max(first, end);
        if (clamp)
            append(runs, end - 1, end - 1, last - nearest + 1);
        else
            append(runs, 2 * end - 2 - last, 2 * end - 2 - nearest, 1);
    }
    return runs;
}

} // namespace zerklsc

int get_boundary_pos(int n, int p, int mode) {
    const int64_t size = n;
    const int64_t position = p;
    if (mode != ZERKLSC_BOUNDARY_MIRROR && mode != ZERKLSC_BOUNDARY_CLAMP)
        return -1;
    if (position >= 0 && position < size)
        return p;
    const bool before = position < 0;
    if (mode == ZERKLSC_BOUNDARY_CLAMP)
        return before ? 0 : static_cast<int>(size - 1);
    return static_cast<int>(before ? -position : 2 * size - 2 - position);
}
