// DNGs whose GainMap opcodes correct the shading of a raw frame.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// The frame as it is, uncompressed, with four gain maps (OpcodeList2) of the tables. The tables are for
// frames of its size and pattern.
std::string encode_dng(const RawFrame& frame, const GainTables& tables);

// A copy of the DNG with four gain maps of the tables as its OpcodeList2. All else keeps its bytes and its
// place, compressed or not; what is new comes behind the last byte. A data failure where the tables are for
// frames of another size or pattern, and where there is an OpcodeList2 which `replace` does not give up.
std::string insert_gain_maps(const std::string& path, const GainTables& tables,
                             const std::string& tables_path, bool replace);

} // namespace zerklsc::tool
