#include <algorithm>

#include "bicubic/correction/correction.h"
#include "frame/convert.h"

namespace zerklsc::plain {
namespace {

// Gains of the four grid columns around a cell on one row of the frame, for the planes of its even and odd
// pixels.
struct Strip {
    uint16_t gain[2][4];
};

uint16_t column_gain(const Correction& c, int32_t plane, int32_t column, GridPosition at) {
    uint16_t gains[4];
    for (int32_t i = 0; i < 4; ++i)
        gains[i] = node(c, plane, column, at.cell + i);
    return cubic(gains, c.phases[at.phase]);
}

Strip first_strip(const Correction& c, const RowPosition& row) {
    Strip strip;
    for (int32_t side = 0; side < 2; ++side)
        for (int32_t column = 0; column < 4; ++column)
            strip.gain[side][column] = column_gain(c, 2 * row.parity + side, column, row.first);
    return strip;
}

// Moves the strip one cell on; `column` is the grid column that enters.
void refill_strip(const Correction& c, const RowPosition& row, int32_t column, Strip& strip) {
    for (int32_t side = 0; side < 2; ++side) {
        uint16_t* const gain = strip.gain[side];
        std::copy(gain + 1, gain + 4, gain);
        gain[3] = column_gain(c, 2 * row.parity + side, column, row.refill);
    }
}

// The hardware compares 16 bits: a product that passes them comes out as what is left, not as the limit.
uint16_t corrected(uint16_t sample, uint16_t gain) {
    const uint16_t product = low16((uint32_t{sample} * gain + 512) >> 10);
    return std::min(product, highest_sample);
}

void correct_row(const Correction& c, const RowPosition& row, const uint16_t* in, uint16_t* out) {
    const int32_t width = c.in.width;
    Strip strip = first_strip(c, row);
    for (int32_t x = 0; x < width; ++x) {
        const GridPosition at = shifted_grid_position(x / 2, width / 2, c.step);
        out[x] = corrected(in[x], cubic(strip.gain[x & 1], c.phases[at.phase]));
        const bool cell_ends = (x + 1) % (2 * c.step) == 0;
        if (cell_ends)
            refill_strip(c, row, at.cell + 4, strip);
    }
}

} // namespace

void correct(const Correction& c) {
    for (int32_t y = c.first_row; y < c.end_row; ++y)
        correct_row(c, row_position(c, y), c.in.row(y), c.out.row(y));
}

} // namespace zerklsc::plain
