// Reading whole files, with failures in words.
#pragma once

#include <string>

namespace zerklsc::tool {

// The bytes of a file; a data failure when it cannot be read.
std::string read_file(const std::string& path);

// The file name extension in lower case with its dot, or nothing.
std::string extension_of(const std::string& path);

} // namespace zerklsc::tool
