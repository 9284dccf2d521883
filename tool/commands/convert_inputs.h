// What convert reads: table files, or one file of a camera stack.
#pragma once

#include <string>
#include <vector>

#include "commands/command_line.h"
#include "commands/raw_options.h"
#include "convert/table_formats.h"

namespace zerklsc::tool {

struct ConvertInputs {
    std::vector<std::string> paths;
    std::string kelvin; // --ct
    std::string size;   // --size
    int step = 0;       // --step; 0 where it is not given
};

// The file arguments, --ct, --size and --step.
void add_convert_inputs(Command command, ConvertInputs& inputs);

// Reads them for a format that holds sets of several colour temperatures (`lit`), or one set. The pattern,
// black level and bit depth that no file says are those of `raw`. Warns of what the files do not hold.
std::vector<LitTables> read_convert_inputs(const ConvertInputs& inputs, const RawOptions& raw,
                                           const std::string& format, bool lit);

} // namespace zerklsc::tool
