// The options of every command that reads a raw frame.
#pragma once

#include <string>
#include <vector>

#include "commands/command_line.h"
#include "commands/option_values.h"
#include "imaging/gain_tables.h"
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

// Adds the file argument under the name `argument`, which may be left out where it is an option, and the
// options that say what the file itself does not.
void add_raw_options(Command command, RawOptions& options, const char* argument);

// The same for one file or several, which share the options.
void add_raw_options(Command command, RawOptions& options, std::vector<std::string>& paths,
                     const char* argument);

// The options alone, for files that are named elsewhere.
void add_raw_description_options(Command command, RawOptions& options);

// Reads the frame; the options override what the file says.
RawReading read_raw_and_description(const RawOptions& options);

// What to do when neither an option nor the file says the black level: gains measured from a wrong one are
// wrong without showing it, while a frame that is only looked at may have none. `leave` is for a frame whose
// dark is subtracted.
enum class UnknownBlack { refuse, take_0, leave };

// The same with a warning for what is overridden, and with the frame's pattern and black level known: from
// the option, else the file, else (pattern) RGGB with a warning.
RawFrame read_raw(const RawOptions& options, UnknownBlack unknown);

// The same for a frame that goes with tables, which know both where option and file do not. A data failure
// where frame and tables are of different patterns.
RawFrame read_raw_for(const RawOptions& options, const GainTables& tables, const std::string& tables_path);

} // namespace zerklsc::tool
