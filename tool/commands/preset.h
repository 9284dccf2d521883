// Options from a file: those of a kind of module, so that every command line need not say them.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace zerklsc::tool {

// Replaces --preset FILE by the options that the file gives the command, except those that the command line
// gives itself. The file is TOML: `step = 32`, `limit = ["shadow=3,6"]`; what stands below [check] is for
// that command alone, what stands above is for all that have such an option. A usage failure for a name that
// no command has.
std::vector<std::string> with_preset(const CLI::App& app, const std::vector<std::string>& words);

} // namespace zerklsc::tool
