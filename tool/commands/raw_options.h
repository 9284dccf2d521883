// The options of every command that reads a raw frame.
#pragma once

#include "commands/command_line.h"

#include "io/raw_format.h"

namespace zerklsc::tool {

struct RawOptions {
    std::string path;
    RawHints hints;
    std::string endian = "little";
    std::string alignment = "right";
    std::string packing;
    std::string pattern;
    std::string black;
    int white = 0;
};

// Adds the file argument under the name `argument`, and the options that say what the file itself does not.
void add_raw_options(Command command, RawOptions& options, const char* argument);

// Reads the frame; the options override what the file says.
RawReading read_raw_and_description(const RawOptions& options);

// The same, with a warning for what is overridden.
RawFrame read_raw(const RawOptions& options);

// The frame's black level, or `otherwise`.
BlackLevel black_level_of(const RawFrame& frame, const BlackLevel& otherwise);

} // namespace zerklsc::tool
