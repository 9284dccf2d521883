// The brightest level of the centre cluster, which is the reference of the gains.
#pragma once

#include <cstdint>

#include "sampling/center_points.h"
#include "sampling/plane_set.h"
#include "sampling/window.h"

namespace zerklsc {

// Whether there is a cluster, and the windows around all its points can be read. A plane of fewer than 10
// samples in either direction has none.
bool cluster_fits(const PlaneSet& planes, const Window& window, const CentreCluster& cluster);

// The level of the brightest point of each plane. Needs cluster_fits(); false when there is no memory.
bool brightest_levels(const PlaneSet& planes, const Window& window, const CentreCluster& cluster,
                      uint16_t levels[4]);

} // namespace zerklsc
