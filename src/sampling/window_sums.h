// The sums of many large windows at once, which share the running sums of the rows that they lie on.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "sampling/plane_set.h"
#include "sampling/window.h"

namespace zerklsc {

struct WindowCentre {
    int32_t x, y;
};

// Whether `count` windows are so large that running along every row of the planes once costs less than
// sum_window() for each.
bool rows_should_be_shared(const PlaneSet& planes, const Window& window, int64_t count);

// The sums of all windows, one behind the other with planes.count() each. The windows fit. It is fastest
// where neighbours in the list have the same row. Null when there is no memory.
Scratch<uint64_t> sum_row_by_row(const PlaneSet& planes, const Window& window, const WindowCentre* centres,
                                 int64_t count);

// The same around the points that centre_of(k) gives; null also where it does not pay, so that the caller
// takes sum_window().
template <class CentreOf>
Scratch<uint64_t> shared_sums(const PlaneSet& planes, const Window& window, int64_t count,
                              CentreOf centre_of) {
    if (!rows_should_be_shared(planes, window, count))
        return nullptr;
    const Scratch<WindowCentre> centres = allocate<WindowCentre>(static_cast<uint64_t>(count));
    if (centres == nullptr)
        return nullptr;
    for (ptrdiff_t k = 0; k < count; ++k)
        centres.get()[k] = centre_of(k);
    return sum_row_by_row(planes, window, centres.get(), count);
}

// The sums of window k: the shared ones, or if there are none its own, which go to `own`.
inline const uint64_t* sums_of(const Scratch<uint64_t>& shared, ptrdiff_t k, const PlaneSet& planes,
                               const Window& window, WindowCentre centre, uint64_t* own) {
    if (shared != nullptr)
        return shared.get() + k * planes.count();
    sum_window(planes, window, centre.x, centre.y, own);
    return own;
}

} // namespace zerklsc
