// The kernels of the fast forms: half of the rows of the tables, from a centre row outwards, eight nodes at a
// time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "compress/centre.h"
#include "cpu/dispatch.h"
#include "frame/planes.h"

namespace zerklsc {

// The least width of a row.
constexpr int32_t block_nodes = 8;

// Rows of gains on their way to node words.
struct CompressedHalf {
    ByColour<const uint16_t*> gains; // the inner nodes of the first row
    ptrdiff_t next_gains;            // to the same node of the next row
    ByColour<uint16_t*> previous;    // differences along the row one step nearer the centre; overwritten
    ByColour<uint16_t*> current;     // written: those along a row
    const uint16_t* from_right;      // all ones where the inward neighbour is the right one
    const uint16_t* from_left;       // all ones where it is the left one
    uint32_t* words;                 // written: those of the first row
    ptrdiff_t next_words;
    int32_t width;
    int32_t rows;
};

ZERKLSC_DECLARE_NARROW_KERNEL(compress_half_24_bit, void(const CompressedHalf& half))
ZERKLSC_DECLARE_NARROW_KERNEL(compress_half_14_bit, void(const CompressedHalf& half))

// Rows of node words on their way to gains.
struct DecompressedHalf {
    const uint32_t* words; // of the first row; a block before each row and a block behind it are read
    ptrdiff_t next_words;
    ByColour<uint16_t*> sums;  // of the row one step nearer the centre; become those of a row, and as many on
                               // either side are written
    ByColour<uint16_t*> gains; // written: the inner nodes of the first row
    ptrdiff_t next_gains;
    int32_t width;
    int32_t rows;
    Centre centre;
};

ZERKLSC_DECLARE_NARROW_KERNEL(decompress_half_24_bit, void(const DecompressedHalf& half))
ZERKLSC_DECLARE_NARROW_KERNEL(decompress_half_14_bit, void(const DecompressedHalf& half))

} // namespace zerklsc
