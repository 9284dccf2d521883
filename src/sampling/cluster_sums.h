// The largest window of the centre cluster, with the column sums shared between overlapping windows.
#pragma once

#include <cstdint>

#include "sampling/center_points.h"
#include "sampling/field.h"
#include "sampling/window.h"

namespace zerklsc {

// Whether the windows overlap enough to share, and are boxes inside the plane whose sums fit 32 bits.
bool columns_should_be_shared(const Field& field, const Window& window, const CentreCluster& cluster);

// Raises each most[c] to the largest window sum of plane c over the points. False when there is no memory for
// the column sums. Needs columns_should_be_shared().
bool raise_to_cluster(const Field& field, const Window& window, const CentreCluster& cluster,
                      uint64_t most[4]);

} // namespace zerklsc
