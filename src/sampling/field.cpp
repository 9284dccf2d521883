// Views of a plane and of a mosaic, and the sums of their blocks.
#include "sampling/field.h"

namespace zerklsc {
namespace {

void add_column(const uint16_t* first, ptrdiff_t stride, int32_t rows, uint64_t& sum) {
    for (int32_t y = 0; y < rows; ++y)
        sum += first[y * stride];
}

// A single plane is summed by pairs of columns too; an odd last column is added by itself.
void add_plane_block(const Field& field, const uint16_t* first, int32_t columns, int32_t rows,
                     uint64_t& sum) {
    uint64_t pair[2] = {};
    field.add_pairs(first, field.stride, columns / 2, rows, pair);
    sum += pair[0] + pair[1];
    if (columns % 2 != 0)
        add_column(first + columns - 1, field.stride, rows, sum);
}

} // namespace

Field plane_field(const uint16_t* plane, int32_t width, int32_t height) {
    return {plane, width, height, width, 1, ZERKLSC_KERNEL(add_pairs)};
}

Field mosaic_field(const uint16_t* raw, int32_t width, int32_t height) {
    return {raw, width / 2, height / 2, width, 2, ZERKLSC_KERNEL(add_pairs)};
}

void add_block(const Field& field, int32_t x, int32_t y, int32_t columns, int32_t rows, uint64_t sums[4]) {
    const ptrdiff_t column = static_cast<ptrdiff_t>(x) * field.interleave;
    if (field.interleave == 1) {
        add_plane_block(field, field.row(y, 0) + column, columns, rows, sums[0]);
        return;
    }
    for (int32_t part = 0; part < 2; ++part)
        field.add_pairs(field.row(y, part) + column, 2 * field.stride, columns, rows, sums + 2 * part);
}

} // namespace zerklsc
