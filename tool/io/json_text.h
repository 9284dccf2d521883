// JSON of unknown origin, held to what the files of this tool need before anything is made of it.
#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace zerklsc::tool {

constexpr int deepest_json = 16;

// The value of a text; discarded where it is no JSON, and where its brackets stand deeper than `deepest_json`
// or there are more of them, or more numbers, than in the tables of a large sensor. The memory of a value is
// thus bounded: half a gigabyte at most, and 16 bytes for each number.
nlohmann::json parse_json(std::string_view text);

// What is wrong with a text that was discarded, as "is not valid JSON".
const char* why_discarded(std::string_view text);

// A value as a message shows it: its first characters.
std::string shown(const nlohmann::json& value);

} // namespace zerklsc::tool
