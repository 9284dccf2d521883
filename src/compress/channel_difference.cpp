// intra_cnl_diff, deintra_cnl_diff
#include "compress/centre.h"
#include "compress/precision_mode.h"
#include "frame/convert.h"
#include "frame/view.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// The type of the plane whose anchors hold gains. Any other type is a plane of differences between colours,
// whose anchors are small numbers already.
constexpr int32_t base_plane = 1;

// The passes along columns take whole rows, since every node of a row has its neighbour in the same other
// row.

void subtract_row(const View<int16_t>& plane, int32_t row, int32_t other) {
    int16_t* const x = plane.row(row);
    const int16_t* const y = plane.row(other);
    for (int32_t c = 0; c < plane.width; ++c)
        x[c] = wrap16(x[c] - y[c]);
}

void add_row(const View<int16_t>& plane, int32_t row, int32_t other) {
    int16_t* const x = plane.row(row);
    const int16_t* const y = plane.row(other);
    for (int32_t c = 0; c < plane.width; ++c)
        x[c] = wrap16(x[c] + y[c]);
}

// Each half from its edge inwards, so that a difference is taken from a neighbour that is still unchanged.
void difference_row(int16_t* x, int32_t width) {
    const Centre centre = centre_of(width);
    for (int32_t c = 0; c < centre.first; ++c)
        x[c] = wrap16(x[c] - x[c + 1]);
    for (int32_t c = width - 1; c > centre.last; --c)
        x[c] = wrap16(x[c] - x[c - 1]);
}

// Rows from the top and bottom edges inwards, for the same reason.
void difference_columns(const View<int16_t>& plane) {
    const Centre centre = centre_of(plane.height);
    for (int32_t r = 0; r < centre.first; ++r)
        subtract_row(plane, r, r + 1);
    for (int32_t r = plane.height - 1; r > centre.last; --r)
        subtract_row(plane, r, r - 1);
}

// The inverse runs from the centre outwards, so that a neighbour has its value before it is added.
void sum_row(int16_t* x, int32_t width) {
    const Centre centre = centre_of(width);
    for (int32_t c = centre.first - 1; c >= 0; --c)
        x[c] = wrap16(x[c] + x[c + 1]);
    for (int32_t c = centre.last + 1; c < width; ++c)
        x[c] = wrap16(x[c] + x[c - 1]);
}

void sum_columns(const View<int16_t>& plane) {
    const Centre centre = centre_of(plane.height);
    for (int32_t r = centre.first - 1; r >= 0; --r)
        add_row(plane, r, r + 1);
    for (int32_t r = centre.last + 1; r < plane.height; ++r)
        add_row(plane, r, r - 1);
}

// Adds `offset` to the anchors of one centre row.
void offset_anchors(const View<int16_t>& plane, int32_t row, int offset) {
    const Centre columns = centre_of(plane.width);
    for (int32_t c = columns.first; c <= columns.last; ++c)
        plane.at(c, row) = wrap16(plane.at(c, row) + offset);
}

} // namespace
} // namespace zerklsc

int32_t intra_cnl_diff(int16_t* plane, int32_t width, int32_t height, int32_t type, uint8_t mode) {
    using namespace zerklsc;
    if (width < 1 || height < 1)
        return 0;
    const View<int16_t> view = packed_view(plane, width, height);
    for (int32_t r = 0; r < height; ++r)
        difference_row(view.row(r), width);
    difference_columns(view);
    // Neither pass has changed the anchors: they still hold gains, which are near unity at the optical
    // centre.
    const Centre rows = centre_of(height);
    if (type == base_plane)
        for (int32_t r = rows.first; r <= rows.last; ++r)
            offset_anchors(view, r, -unity_offset(mode));
    return 0;
}

int32_t deintra_cnl_diff(int16_t* plane, int32_t width, int32_t height, int32_t type, uint8_t mode) {
    using namespace zerklsc;
    if (width < 1 || height < 1)
        return 0;
    const View<int16_t> view = packed_view(plane, width, height);
    const Centre rows = centre_of(height);
    if (type == base_plane)
        for (int32_t r = rows.first; r <= rows.last; ++r)
            offset_anchors(view, r, decoded_unity_offset(r, width, height, mode));
    sum_columns(view);
    for (int32_t r = 0; r < height; ++r)
        sum_row(view.row(r), width);
    return 0;
}
