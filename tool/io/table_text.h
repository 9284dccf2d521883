// Gain tables as plain text, the form that load_table() reads.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// The four tables one after another by plane number, one grid row a line.
std::string encode_table_text(const GainTables& tables);

} // namespace zerklsc::tool
