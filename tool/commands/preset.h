// Options from a file: those of a kind of module, so that every command line need not say them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "commands/command_line.h"

namespace zerklsc::tool {

// Replaces --preset FILE by the options that the file gives the command, except those that the command line
// gives itself. The file is TOML: `step = 32`, `limit = ["shadow=3,6"]`; what stands below [check] is for
// that command alone, what stands above is for all that have such an option. A usage failure for a name that
// none of the commands has.
std::vector<std::string> with_preset(const CLI::App& app, AddCommands add_commands,
                                     const std::vector<std::string>& words);

// Sets the options that `add_options` adds to what the file gives them; those that it does not name stay as
// they are. `section` is the name of the command whose own part of the file counts too. A usage failure as
// above, and for what is no value of an option.
void set_from_preset(const std::string& path, const std::string& section,
                     const std::function<void(Command)>& add_options, AddCommands add_commands);

} // namespace zerklsc::tool
