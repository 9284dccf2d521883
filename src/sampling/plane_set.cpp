// Views of a plane and of a mosaic, and the sums of their blocks.
#include "sampling/plane_set.h"

namespace zerklsc {

PlaneSet single_plane(const uint16_t* plane, int32_t width, int32_t height) {
    return {plane, width, height, width, 1, ZERKLSC_KERNEL(add_pairs)};
}

PlaneSet mosaic_planes(const uint16_t* raw, int32_t width, int32_t height) {
    return {raw, width / 2, height / 2, width, 2, ZERKLSC_KERNEL(add_pairs)};
}

// A single plane is summed by pairs of columns too; an odd last column is added by itself.
void add_block(const PlaneSet& planes, const Block& block, uint64_t weight, uint64_t sums[4]) {
    const auto [x, y, columns, rows] = block;
    if (planes.interleave == 2) {
        for (int32_t parity = 0; parity < 2; ++parity) {
            uint64_t pair[2] = {};
            planes.add_pairs(planes.row(y, parity) + 2 * ptrdiff_t{x}, 2 * planes.stride, columns, rows,
                             pair);
            sums[2 * parity] += weight * pair[0];
            sums[2 * parity + 1] += weight * pair[1];
        }
        return;
    }
    const uint16_t* const first = planes.row(y, 0) + x;
    uint64_t pair[2] = {};
    planes.add_pairs(first, planes.stride, columns / 2, rows, pair);
    for (int32_t row = 0; columns % 2 != 0 && row < rows; ++row)
        pair[0] += first[row * planes.stride + columns - 1];
    sums[0] += weight * (pair[0] + pair[1]);
}

} // namespace zerklsc
