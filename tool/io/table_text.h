// Gain tables as plain text, the form that load_table() reads.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// The four tables one after another by plane number, one grid row a line.
std::string encode_table_text(const GainTables& tables);

// Reads the gains of tables whose geometry is known; a data failure for any other number of gains.
void read_table_text(const std::string& path, GainTables& tables);

} // namespace zerklsc::tool
