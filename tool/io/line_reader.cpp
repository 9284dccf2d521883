// LineReader
#include "io/line_reader.h"

#include <algorithm>
#include <cstring>

namespace zerklsc::tool {
namespace {

constexpr size_t first_buffer = size_t{1} << 16;

} // namespace

LineReader::LineReader(const std::string& path, size_t longest)
    : file_(path), longest_(longest), buffer_(std::min(first_buffer, longest + 1)) {}

// More bytes behind those that are there; false at the end of the file.
bool LineReader::fill() {
    if (begin_ > 0) {
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
                  buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
        end_ -= begin_;
        begin_ = 0;
    }
    if (end_ == buffer_.size())
        buffer_.resize(std::min(2 * buffer_.size(), longest_ + 1));
    const size_t got =
        file_.read_some(offset_ + end_, std::as_writable_bytes(std::span(buffer_).subspan(end_)));
    end_ += got;
    return got > 0;
}

std::optional<Line> LineReader::next() {
    Line line{{}, ++number_, offset_, false, false};
    for (size_t searched = 0;;) {
        const char* const from = buffer_.data() + begin_;
        const size_t held = end_ - begin_;
        const void* const found = std::memchr(from + searched, '\n', held - searched);
        line.whole = found != nullptr;
        const size_t length = line.whole ? static_cast<size_t>(static_cast<const char*>(found) - from) : held;
        searched = held;
        if (held > longest_ && !line.whole) {
            // The rest of it is passed over; what stood first is not kept.
            line.too_long = true;
            begin_ += held;
            offset_ += held;
            searched = 0;
        }
        if (line.whole || !fill()) {
            if (!line.whole && held == 0 && !line.too_long)
                return std::nullopt;
            if (!line.too_long)
                line.text = {buffer_.data() + begin_, length};
            const size_t taken = line.whole ? length + 1 : end_ - begin_;
            begin_ += taken;
            offset_ += taken;
            return line;
        }
    }
}

} // namespace zerklsc::tool
