// One-dimensional cubic interpolation of gains in 10-bit fixed point.
#pragma once

#include <cstdint>

#include "zerklsc.h"

namespace zerklsc {

// The highest step whose rows fit a weight block, which stores half a table.
constexpr int32_t highest_step = 255;

// The rows of a weight block for step 64, for the ISP that has no programmable weights.
extern const int16_t fixed_weights[33][3];

// What phase `phase` of a cell does to the four gains around it. The anchor is the gain that every difference
// is taken from (0: the first, 3: the last). Its own tap is what the other three leave of 1024, in its low 16
// bits; it meets a difference of 0.
struct PhaseWeights {
    int16_t tap[4];
    int16_t anchor;
};

// From a weight block for `step`. A phase above half the step reads the row of its mirror image back to
// front. A row outside the block becomes the nearest one that is inside.
PhaseWeights programmed_phase(const lnc_bicubic_weight_t_64_tag& weights, int32_t phase, int32_t step);

// The phases of the fixed table.
inline constexpr int32_t fixed_phases = 64;

// From the fixed table, whose phases are spread over the cell in whole multiples. A step of 0 counts as
// one above 64: the multiple is 0 and every phase is phase 0. A phase beyond the end of the cell is its end.
PhaseWeights fixed_phase(int32_t phase, int32_t step);

// The interpolated gain, from unity to the highest. Differences wrap in 16 bits and are read as signed, the
// sum wraps in 32.
uint16_t cubic(const uint16_t gains[4], const PhaseWeights& weights);

} // namespace zerklsc
