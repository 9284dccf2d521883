// Result files, line by line, in memory that does not grow with them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace zerklsc::tool {

// A line of a file without its end.
struct StreamLine {
    std::string_view text;
    uint64_t number = 0;  // from 1 on
    bool ended = true;    // false for a last line without a line break
    bool readable = true; // false for a line that is longer than any result; then there is no text
};

// Calls `take` for each line of a file; "-" is standard input.
void read_lines(const std::string& path, const std::function<void(const StreamLine&)>& take);

} // namespace zerklsc::tool
