// Bytes as text of 64 characters (RFC 4648), for what must stand in a page or in a line.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zerklsc::tool {

std::string base64_of(std::string_view bytes);

// Nothing for text that base64_of() does not write: every length, padding and unused bit counts.
std::optional<std::string> bytes_of_base64(std::string_view text);

} // namespace zerklsc::tool
