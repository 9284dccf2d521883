// The hash by which reports name their inputs.
#pragma once

#include <string>

namespace zerklsc::tool {

// The SHA-256 (FIPS 180-4) of a file in hexadecimal digits; a failure when it cannot be read.
std::string sha256_of_file(const std::string& path);

} // namespace zerklsc::tool
