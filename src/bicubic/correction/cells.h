// What the kernel of the correction does with neighbouring pixels and grid columns. There are three forms:
//   cells_pairs.h  products of pairs of words, which x86 has an instruction for; vectors of any length
//   cells_lanes.h  products of vectors by one word, which NEON has one for
//   cells_words.h  word by word, where there are no vectors
// Each of them defines
//   Pixels                          neighbouring pixels of a row, `pixels_at_once`, the first of which is
//   even load_pixels(from), store_pixels(to, pixels) advance(pointer, count)         moves a pointer on
//   first_pixels(count, a, b)       the first `count` pixels of a, the rest of b; neither none nor all
//   corrected<ten_bits>(samples, gains)
//                                   low 16 bits of the rounded products, limited to 10 bits. Where
//                                   `ten_bits_are_faster`, samples that have_ten_bits(samples, count) have a
//                                   faster way
//   Columns                         neighbouring grid columns, `columns_at_once`
//   row_taps(taps)                  the taps of three rows of nodes, RowTaps
//   blended(taps, anchor, a, b, d)  the vertical pass: for a strip, rounded and limited,
//                                     anchor + ((a - anchor) * tap a + (b - anchor) * tap b
//                                               + (d - anchor) * tap d) / 1024,
//                                   where differences are words that wrap and are read as signed
//   PixelTaps, set_taps(taps, pixel, weights)
//                                   the taps of `Pixels`
//   cell_nodes(even, odd)           the four nodes from an address on in the strips of even and odd pixels,
//                                   CellNodes
//   interpolated(taps, nodes)       the horizontal pass: the gains of `Pixels`; moves to the next taps
// No sum of products with the taps that come here leaves 32 bits.
#pragma once

#include "bicubic/correction/correction.h"
#include "cpu/vectors.h"

#if ZERKLSC_VECTOR_BYTES == 0
#include "bicubic/correction/cells_words.h"
#elif defined(__ARM_NEON) && ZERKLSC_VECTOR_BYTES == 16
#include "bicubic/correction/cells_lanes.h"
#else
#include "bicubic/correction/cells_pairs.h"
#endif
