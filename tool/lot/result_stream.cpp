// read_lines
#include "lot/result_stream.h"

#include <span>

#include "io/input_file.h"

namespace zerklsc::tool {
namespace {

constexpr size_t block_size = size_t{1} << 20;
constexpr size_t longest_line = size_t{1} << 26; // four tables with a gain for every sample of a large plane

} // namespace

void read_lines(const std::string& path, const std::function<void(const StreamLine&)>& take) {
    InputFile file(path);
    std::string buffer;
    StreamLine line;
    const auto hand_over = [&](std::string_view text, bool ended) {
        ++line.number;
        line.ended = ended;
        line.text = line.readable ? text : std::string_view();
        take(line);
        line.readable = true;
    };
    for (uint64_t offset = 0;;) {
        const size_t kept = buffer.size();
        buffer.resize(kept + block_size);
        const size_t got = file.read_some(offset, std::as_writable_bytes(std::span(buffer).subspan(kept)));
        offset += got;
        buffer.resize(kept + got);
        size_t start = 0;
        for (size_t end = buffer.find('\n', kept); end != std::string::npos; end = buffer.find('\n', start)) {
            hand_over(std::string_view(buffer).substr(start, end - start), true);
            start = end + 1;
        }
        buffer.erase(0, start);
        if (buffer.size() > longest_line) {
            buffer.clear();
            line.readable = false;
        }
        if (got == 0)
            break;
    }
    if (!buffer.empty() || !line.readable)
        hand_over(buffer, false);
}

} // namespace zerklsc::tool
