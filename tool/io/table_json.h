// The tool's table file.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

constexpr const char* table_format_name = "zerklsc-tables";
constexpr int table_format_version = 2; // docs/table-file.md says what each version holds

// The same tables give the same bytes.
std::string encode_table_json(const GainTables& tables);

// The form that the path's extension says: the bare gains for .txt (io/table_text.h), else this one.
std::string encode_tables_for(const std::string& path, const GainTables& tables);

// A usage failure for an extension that names neither form. Commands call it before they read anything.
void check_table_name(const std::string& path);

// Reads a table file of this version or an earlier one; a data failure says which field is missing or wrong.
GainTables read_table_json(const std::string& path);

// The same where the gains are to be applied: a data failure for tables that are relative to others.
GainTables read_whole_gains(const std::string& path);

} // namespace zerklsc::tool
