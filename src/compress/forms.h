// The two forms of lsc_compress() and lsc_decompress(): a plain one, plane by plane with the passes that are
// exported, and a fast one, row by row from the centre outwards. All of them take records with an inner node
// and return -1 for a failed allocation, 0 otherwise; decompression leaves the borders as they are.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/planes.h"
#include "zerklsc.h"

namespace zerklsc {

namespace plain {

int32_t compress(const lsc_otp_info& info);
int32_t decompress(const lsc_otp_info& info);

} // namespace plain

// Whether the fast forms can do it. What they leave to the plain ones are rows shorter than a block, patterns
// and modes that do not exist, and processors without vectors or with the high byte first.
bool has_fast_form(const lsc_otp_info& info);

int32_t compress_rows(const lsc_otp_info& info);
int32_t decompress_rows(const lsc_otp_info& info);

// The first inner nodes of the colours' tables; a pattern that exists. The next row is grid_width further on.
ByColour<uint16_t*> inner_nodes(const lsc_otp_info& info);

} // namespace zerklsc
