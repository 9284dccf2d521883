// Where the taps of a window are read when they fall beyond the edge of the plane.
#pragma once

#include <cstdint>

namespace zerklsc {

// Consecutive positions that are all read with the same weight.
struct Run {
    int32_t first;
    int32_t count;
    int32_t weight;
};

// The taps of one direction: those inside the plane, then what the boundary rule makes of those before the
// first and of those behind the last position.
struct Runs {
    Run run[3];
    int32_t count = 0;

    const Run* begin() const { return run; }
    const Run* end() const { return run + count; }
};

// Whether all taps first .. last of a plane of n positions are read inside it. Mirroring happens once only,
// so that taps further out than the plane is wide have no place.
bool taps_fit(int32_t n, int64_t first, int64_t last, int32_t mode);

// The taps first .. last, which fit. The order of the positions within a mirrored run is that of the plane.
Runs tap_runs(int32_t n, int64_t first, int64_t last, int32_t mode);

} // namespace zerklsc
