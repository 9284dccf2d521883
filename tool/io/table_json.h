// The tool's table file.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

std::string encode_table_json(const GainTables& tables);

// Reads a table file; a data failure says which field is missing or wrong.
GainTables read_table_json(const std::string& path);

} // namespace zerklsc::tool
