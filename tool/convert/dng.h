// A raw frame as a DNG whose GainMap opcodes correct its shading.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// The frame as it is, uncompressed, with four gain maps (OpcodeList2) of the tables. The tables are for
// frames of its size and pattern.
std::string encode_dng(const RawFrame& frame, const GainTables& tables);

} // namespace zerklsc::tool
