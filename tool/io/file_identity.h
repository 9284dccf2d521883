// Which names stand for one file.
#pragma once

#include <string>
#include <vector>

namespace zerklsc::tool {

// Where a symbolic link leads in the end, whether that exists or not; any other path as it is.
std::string link_target(const std::string& path);

// Names a file that was read before the command began, as a preset: it counts as an input of the command.
void note_input(const std::string& path);

// A usage failure where an output would be written over an input, or two outputs into one file, whatever
// their names are. Commands call it before they read anything. Empty names are options that were not given;
// what is no regular file (a device, a pipe) can be named twice, the standard output "-" only once.
void keep_files_apart(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs);

} // namespace zerklsc::tool
