// A file of text, one line at a time, in bounded memory whatever its length.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/input_file.h"

namespace zerklsc::tool {

struct Line {
    std::string_view text; // without its line break; holds until the next one is read
    uint64_t number = 0;   // from 1
    uint64_t offset = 0;   // in the file, of the first byte
    bool whole = false;    // false: the file ends without a line break
    bool too_long = false; // the text is empty then
};

class LineReader {
  public:
    // A failure when the file cannot be opened. No line is held that is longer than `longest`.
    LineReader(const std::string& path, size_t longest);

    // Nothing at the end. A failure when the file cannot be read.
    std::optional<Line> next();

  private:
    bool fill();

    InputFile file_;
    size_t longest_;
    std::vector<char> buffer_;
    size_t begin_ = 0, end_ = 0; // of what is in the buffer and was not handed out
    uint64_t offset_ = 0;        // in the file, of the buffer's `begin_`
    uint64_t number_ = 0;
};

} // namespace zerklsc::tool
