// The kernels of the fast forms: one row of the tables, eight nodes at a time.
#pragma once

#include <cstdint>

#include "compress/centre.h"
#include "cpu/dispatch.h"
#include "frame/planes.h"

namespace zerklsc {

// The least width of a row.
constexpr int32_t block_nodes = 8;

// A row of gains on its way to node words.
struct CompressedRow {
    ByColour<const uint16_t*> gains;    // of the inner nodes
    ByColour<const uint16_t*> previous; // differences along the row one step nearer the centre
    ByColour<uint16_t*> current;        // written: differences along this row
    const uint16_t* from_right;         // all ones where the inward neighbour is the right one
    const uint16_t* from_left;          // all ones where it is the left one
    uint32_t* words;                    // written
    int32_t width;
};

ZERKLSC_DECLARE_NARROW_KERNEL(compress_row_24_bit, void(const CompressedRow& row))
ZERKLSC_DECLARE_NARROW_KERNEL(compress_row_14_bit, void(const CompressedRow& row))

// A row of node words on its way to gains.
struct DecompressedRow {
    const uint32_t* words;     // a block before the row and a block behind it are read
    ByColour<uint16_t*> sums;  // of the row one step nearer the centre; become those of this row, and as many
                               // on either side are written
    ByColour<uint16_t*> gains; // written: the inner nodes alone
    int32_t width;
    Centre centre;
};

ZERKLSC_DECLARE_NARROW_KERNEL(decompress_row_24_bit, void(const DecompressedRow& row))
ZERKLSC_DECLARE_NARROW_KERNEL(decompress_row_14_bit, void(const DecompressedRow& row))

} // namespace zerklsc
