// The options of every command that reads a raw frame.
#pragma once

#include "commands/command_line.h"

#include "io/raw_format.h"

namespace zerklsc::tool {

struct RawOptions {
    std::string path;
    RawHints hints;
    std::string endian = "little";
    std::string pattern;
    std::string black;
};

// Adds the file argument under the name `argument`, and the options that say what the file itself does not.
void add_raw_options(Command command, RawOptions& options, const char* argument);

// Reads the frame; what the options say stands above what the file says.
RawFrame read_raw(const RawOptions& options);

// The frame's black level, or `otherwise`.
BlackLevel black_level_of(const RawFrame& frame, const BlackLevel& otherwise);

} // namespace zerklsc::tool
