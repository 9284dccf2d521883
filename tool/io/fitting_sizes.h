// Sizes of frames in files that do not say theirs.
#pragma once

#include <string>

#include "io/raw_format.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {

// The bit depth of words where nobody says another.
constexpr int usual_bits = 10;

// The bytes that a row of `width` samples takes.
uint64_t packed_row_bytes(Packing packing, int width);

// Where the rows of a file without a header are. A failure that names sizes which would fit when the hints do
// not go with the file's length.
RowLayout headerless_layout(const InputFile& file, const RawHints& hints, Packing packing);

// Options that would read a file of `size` bytes, likeliest first, as "--width 4208 --height 3120", at most
// four of them; empty when none is known. `packing` is taken unless the options say another.
std::string fitting_sizes(uint64_t size, const RawHints& hints, Packing packing);

} // namespace zerklsc::tool
