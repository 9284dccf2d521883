// The directory that a file stands in.
#pragma once

#include <string>

namespace zerklsc::tool {

// The part of a path up to its last slash; empty where there is none.
std::string directory_of(const std::string& path);

// Brings a new name or a rename of `path` to the disk. Not every file system can, which nobody need know: the
// bytes of the file itself are safe already.
void sync_directory_of(const std::string& path);

} // namespace zerklsc::tool
