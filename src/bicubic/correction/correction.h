// What both ISP corrections work on: a frame, its four gain tables and the cells laid over it.
#pragma once

#include <cstdint>

#include "bicubic/correction/cubic_1d.h"

namespace zerklsc {

constexpr uint16_t highest_sample = 1023;

// A slot is a position in the 2 x 2 Bayer cell, 2 * (y & 1) + (x & 1) for pixel (x, y).
struct Correction {
    const uint16_t* in;
    uint16_t* out; // may be `in`
    int32_t width;
    int32_t height;
    const uint16_t* table[4]; // by slot, table_w x table_h nodes each
    int32_t table_w;
    int32_t table_h;
    int32_t step;                      // 1 .. highest_step
    PhaseWeights phases[highest_step]; // phases 0 .. step - 1
};

// Where a plane row or column falls: the cell, which is also the number of the node before it in the bordered
// table, and the phase inside it.
struct Position {
    int32_t cell;
    int32_t phase;
};

// The position of plane row or column `i` of `extent`.
Position plain_position(int32_t i, int32_t step);

// The same, with a quirk of the hardware: where the extent is one more than a whole number of cells, the last
// row or column counts as phase 1 of the cell before it instead of phase 0 of its own.
Position last_sample_position(int32_t i, int32_t extent, int32_t step);

// Where image row y stands between the grid rows.
struct Row {
    int32_t parity;
    Position first;  // for the first four grid columns
    Position refill; // for those that enter the strip later
};

// The quirk of the last row reaches the refills only: the hardware fills the first strip without it.
Row row_position(const Correction& correction, int32_t y);

// The gain of `slot` at a node. Some geometries name nodes that the table does not have: the index just goes
// on into the next row, and stays at the first and the last node of the table.
uint16_t node(const Correction& correction, int32_t slot, int32_t column, int32_t row);

// Prints which pointer is missing; false when one is.
bool has_pointers(const uint16_t* in, const uint16_t* out, const isp_param_tag* param);

// A correction of the record's frame with its tables, without a step: table sizes and phases are still to be
// set.
Correction frame_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param);

// The whole correction of either ISP, for records whose step it takes.
Correction tvessa2_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param);
Correction vessal2_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param);

} // namespace zerklsc
