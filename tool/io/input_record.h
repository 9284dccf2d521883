// How tables and reports name the files that they were made from.
#pragma once

#include <optional>
#include <string>

#include "imaging/gain_tables.h"
#include "io/input_file.h"
#include "io/json_value.h"

namespace zerklsc::tool {

// Reads the file for its hash, which is a failure when it is no longer as it was before the command read it;
// "-", a pipe or a device cannot be read again, and has none.
TableInput input_record(const char* role, const std::string& path, const std::optional<FileState>& read);

// "role", "name" and "sha256", or null where it is not known.
JsonValue json_of(const TableInput& input);

} // namespace zerklsc::tool
