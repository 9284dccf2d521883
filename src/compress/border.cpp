// expand_lsc_table_c2 (unsigned 16-bit tables)
#include <cstddef>

#include "compress/border.h"
#include "frame/convert.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// The next value of the parabola through three equally spaced nodes. It wraps: a caller meets a large gain in
// the border where a table falls so steeply that the parabola goes below 0, as decoders in the field have it.
uint16_t extrapolate_wrapping(int nearest, int second, int third) {
    return low16(3 * (nearest - second) + third);
}

// The border nodes left and right of the inner nodes of a row, which start at row[1].
void expand_row(uint16_t* row, ptrdiff_t width) {
    row[0] = extrapolate_wrapping(row[1], row[2], row[3]);
    row[width + 1] = extrapolate_wrapping(row[width], row[width - 1], row[width - 2]);
}

// Fills `row` from the rows at the distances step, 2 * step and 3 * step behind it.
void extrapolate_row(uint16_t* row, ptrdiff_t step, ptrdiff_t length) {
    for (ptrdiff_t c = 0; c < length; ++c)
        row[c] = extrapolate_wrapping(row[c + step], row[c + 2 * step], row[c + 3 * step]);
}

} // namespace

void expand_border(uint16_t* table, ptrdiff_t width, ptrdiff_t height) {
    if (width < 3 || height < 3)
        return;
    const ptrdiff_t stride = width + 2;
    // Rows first: the corners continue the border columns.
    for (ptrdiff_t r = 1; r <= height; ++r)
        expand_row(table + r * stride, width);
    extrapolate_row(table, stride, stride);
    extrapolate_row(table + (height + 1) * stride, -stride, stride);
}

} // namespace zerklsc

void expand_lsc_table_c2(unsigned short* table, int width, int height) {
    zerklsc::expand_border(table, width, height);
}
