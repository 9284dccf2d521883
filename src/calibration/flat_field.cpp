#include "calibration/flat_field.h"

#include <algorithm>

#include "sampling/brightest_level.h"

namespace zerklsc {

FlatField make_flat_field(const uint16_t* image, int32_t width, int32_t height, const imfilter_t& filter) {
    FlatField flat = {mosaic_planes(image, width, height), make_window(filter), {}, false};
    const CentreCluster cluster = centre_cluster(width / 2, height / 2);
    flat.measurable = flat.window && cluster_fits(flat.planes, flat.window, cluster)
                      && brightest_levels(flat.planes, flat.window, cluster, flat.peaks);
    return flat;
}

void gains_at(const FlatField& flat, int32_t x, int32_t y, float gains[ZERKLSC_CHANNELS]) {
    uint64_t sums[ZERKLSC_CHANNELS];
    sum_window(flat.planes, flat.window, x, y, sums);
    for (int k = 0; k < ZERKLSC_CHANNELS; ++k) {
        // A black point takes parity with a gain of ten million times the peak: there is no other guard.
        const float level = std::max(static_cast<float>(rounded_level(sums[k], flat.window)), 1e-7f);
        gains[k] = static_cast<float>(flat.peaks[k]) / level;
    }
}

} // namespace zerklsc
