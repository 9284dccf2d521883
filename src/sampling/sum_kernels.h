// The sums of samples that are compiled for each instruction set.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cpu/dispatch.h"

namespace zerklsc {

// Adds the first and the second samples of `pairs` pairs of columns, `rows` rows `stride` samples apart, to
// sums[0] and sums[1]; at most 2 * max_radius + 1 of either. Nothing outside the pairs is read.
using AddPairs = void(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]);

// sums[i] += entering[i] for i in 0 .. count - 1.
using AddRow = void(uint32_t* sums, const uint16_t* entering, int32_t count);

// sums[i] += entering[i] - leaving[i], for a leaving row that the sums hold.
using ExchangeRow = void(uint32_t* sums, const uint16_t* entering, const uint16_t* leaving, int32_t count);

// sums[i] becomes the sum, modulo 2^32, of the samples i - interleave, i - 2 * interleave, ... for i in 0 ..
// count + interleave - 1: the sum of a span of a plane is the difference of the two at its ends. interleave
// is 1 or 2.
using RunningSamples = void(const uint16_t* samples, int32_t count, int32_t interleave, uint32_t* sums);

// A row of a window by the running sums at its two ends, for the leftmost of the windows that stand side by
// side.
template <class Sum>
struct SpanRow {
    const Sum* start;
    const Sum* end;
};

// Writes the rounded level of `count` windows side by side: the sum of their rows times `scale`, which is 1
// by the number of their taps. A sum fits the 32 bits, 31 bits if it is small, or 52 bits if it is wide.
using AverageSpans = void(const SpanRow<uint32_t>* rows, int32_t row_count, int32_t count, float scale,
                          uint16_t* dst);
using AverageWideSpans = void(const SpanRow<uint64_t>* rows, int32_t row_count, int32_t count, float scale,
                              uint16_t* dst);

// A row of boxes side by side. What belongs to even numbers and to odd ones stands apart, for number x in
// place x / 2.
struct BoxRow {
    uint32_t* running[2]; // working memory, for each sample of a row under the boxes; running[1][-1] is 0
    uint32_t* high[2];    // the sum under each box is high * box_high_unit + low
    uint32_t* low[2];     // below box_high_unit
};
constexpr int32_t box_low_bits = 22;
constexpr int32_t box_high_unit = 1 << box_low_bits;

// Takes a row of samples into `count` boxes and another one out of them, from the first sample under the
// first box on, and writes the rounded levels: the sums times `scale`, which is 1 by the number of taps.
using MoveBoxes = void(const BoxRow& row, const uint16_t* entering, const uint16_t* leaving, int32_t radius,
                       int32_t count, float scale, uint16_t* dst);

ZERKLSC_DECLARE_KERNEL(add_pairs, AddPairs)
ZERKLSC_DECLARE_KERNEL(add_row, AddRow)
ZERKLSC_DECLARE_KERNEL(exchange_row, ExchangeRow)
ZERKLSC_DECLARE_KERNEL(running_samples, RunningSamples)
ZERKLSC_DECLARE_KERNEL(average_spans, AverageSpans)
ZERKLSC_DECLARE_KERNEL(average_small_spans, AverageSpans)
ZERKLSC_DECLARE_KERNEL(average_wide_spans, AverageWideSpans)
ZERKLSC_DECLARE_KERNEL(move_boxes, MoveBoxes)

} // namespace zerklsc
