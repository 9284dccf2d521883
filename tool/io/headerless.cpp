// headerless_format: 16-bit samples, row by row, and nothing else.
#include "failure.h"
#include "io/raw_format.h"

namespace zerklsc::tool {
namespace {

constexpr int usual_bits = 10;

bool recognises_headerless(const std::string&, const std::string&, const RawHints& hints) {
    return hints.width != 0 && hints.height != 0;
}

RawFrame read_headerless(const std::string& path, const std::string& bytes, const RawHints& hints) {
    const size_t count = static_cast<size_t>(hints.width) * static_cast<size_t>(hints.height);
    if (bytes.size() != 2 * count)
        data_failure(
            "{}: holds {} bytes, but {} x {} samples of 16 bits are {}: give the right --width and --height",
            path, bytes.size(), hints.width, hints.height, 2 * count);
    RawFrame frame;
    frame.width = hints.width;
    frame.height = hints.height;
    frame.bits = hints.bits != 0 ? hints.bits : usual_bits;
    frame.big_endian = hints.big_endian;
    frame.samples.resize(count);
    for (size_t i = 0; i < count; ++i) {
        const unsigned first = static_cast<unsigned char>(bytes[2 * i]);
        const unsigned second = static_cast<unsigned char>(bytes[2 * i + 1]);
        frame.samples[i] =
            static_cast<uint16_t>(hints.big_endian ? first << 8 | second : second << 8 | first);
    }
    return frame;
}

std::string write_headerless(const RawFrame& frame) {
    std::string bytes;
    bytes.reserve(2 * frame.samples.size());
    for (const uint16_t sample : frame.samples) {
        const auto high = static_cast<char>(sample >> 8);
        const auto low = static_cast<char>(sample & 0xFF);
        bytes += frame.big_endian ? high : low;
        bytes += frame.big_endian ? low : high;
    }
    return bytes;
}

} // namespace

const RawFormat headerless_format{"headerless", ".raw", recognises_headerless, read_headerless,
                                  write_headerless};

} // namespace zerklsc::tool
