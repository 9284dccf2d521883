// The correction of both ISPs: a frame, its four gain tables, the cells laid over it, and what corrects it.
#pragma once

#include <cstdint>

#include "bicubic/correction/cubic_1d.h"
#include "cpu/dispatch.h"
#include "frame/view.h"
#include "zerklsc.h"

namespace zerklsc {

constexpr uint16_t highest_sample = 1023;

struct Correction {
    View<const uint16_t> in;
    View<uint16_t> out;                      // of the size of `in`; may be `in`
    int32_t first_row;                       // the rows from here
    int32_t end_row;                         // up to here, not included, are corrected
    const uint16_t* table[ZERKLSC_CHANNELS]; // by plane, table_w x table_h nodes each
    int32_t table_w;
    int32_t table_h;
    int32_t step;                      // 1 .. highest_step
    PhaseWeights phases[highest_step]; // phases 0 .. step - 1
};

// Corrects with the fastest form that gives what the plain one gives for these weights, on this processor.
using CorrectionForm = void (*)(const Correction&);
CorrectionForm fastest_form(const Correction& correction);

namespace plain {

// Pixel by pixel, as the hardware does it: the form that every faster one equals to the bit.
void correct(const Correction& correction);

} // namespace plain

// The form for weights that cannot overflow, by instruction set.
ZERKLSC_DECLARE_KERNEL(correct_cells, void(const Correction& correction))

// Where a plane row or column stands in the grid: the cell, which is also the number of the node before it in
// the bordered table, and the phase inside it.
struct GridPosition {
    int32_t cell;
    int32_t phase;
};

// The position of plane row or column `i`.
GridPosition grid_position(int32_t i, int32_t step);

// The same, with a quirk of the hardware: where the extent is one more than a whole number of cells, the last
// row or column counts as phase 1 of the cell before it instead of phase 0 of its own.
GridPosition shifted_grid_position(int32_t i, int32_t extent, int32_t step);

// Where a row of the frame stands between the grid rows.
struct RowPosition {
    int32_t parity;
    GridPosition first;  // for the first four grid columns
    GridPosition refill; // for those that enter the strip later
};

// The quirk of the last row reaches the refills only: the hardware fills the first strip without it.
RowPosition row_position(const Correction& correction, int32_t y);

// The gain of a plane at a node. Some geometries name nodes that the table does not have: the index just goes
// on into the next row, and stays at the first and the last node of the table.
uint16_t node(const Correction& correction, int32_t plane, int32_t column, int32_t row);

// The narrowest slice of a frame that the tvessa2 ISP is made for.
inline constexpr int32_t narrowest_slice = 128;

// The line that says which pointer of a call is missing; null when none is.
const char* missing_pointer(const uint16_t* in, const uint16_t* out, const isp_param_tag* param);

// The correction of a whole frame without padding by either ISP, for a record whose step that ISP takes.
Correction tvessa2_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param);
Correction vessal2_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param);

// The same with nothing that is the ISP's own: table size, step and phases are still to be set.
Correction frame_correction(const uint16_t* in, uint16_t* out, const isp_param_tag& param);

} // namespace zerklsc
