// The hash by which files and serials are named.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "io/input_file.h"

namespace zerklsc::tool {

// The SHA-256 (FIPS 180-4) of bytes.
std::array<uint8_t, 32> sha256_of(std::string_view bytes);

// In hexadecimal digits.
std::string sha256_text(const std::array<uint8_t, 32>& digest);

// The SHA-256 (FIPS 180-4) of a file in hexadecimal digits; a failure when it cannot be read, or is no longer
// as it was when it was read before.
std::string sha256_of_file(const std::string& path, const std::optional<FileState>& read = {});

} // namespace zerklsc::tool
