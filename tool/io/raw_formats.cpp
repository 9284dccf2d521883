// raw_format_names, read_raw_frame, encode_raw_frame
#include <algorithm>
#include <array>

#include "failure.h"
#include "io/input_file.h"
#include "io/raw_format.h"

namespace zerklsc::tool {
namespace {

// In the order in which they are asked; headerless takes whatever comes with a size.
constexpr std::array formats{&pgm_format, &headerless_format};

const RawFormat& format_of(const std::string& path, const std::string& bytes, const RawHints& hints) {
    for (const RawFormat* format : formats)
        if (format->recognises(path, bytes, hints))
            return *format;
    data_failure(
        "{}: not a raw format known here: expected a 16-bit PGM (P5), or a headerless 16-bit file with "
        "--width and --height",
        path);
}

const RawFormat* format_by_extension(const std::string& path) {
    const std::string extension = extension_of(path);
    for (const RawFormat* format : formats)
        if (format->write != nullptr && extension == format->extension)
            return format;
    return nullptr;
}

void check_frame(const RawFrame& frame) {
    if (frame.width % 2 != 0 || frame.height % 2 != 0)
        data_failure("{}: {} x {} samples are not whole 2 x 2 Bayer cells: crop the frame to an even size",
                     frame.name, frame.width, frame.height);
    const int largest = *std::ranges::max_element(frame.samples);
    if (largest > frame.full_scale())
        data_failure(
            "{}: holds a sample of {}, but {}-bit samples end at {}: give the right --bits (or --endian)",
            frame.name, largest, frame.bits, frame.full_scale());
}

} // namespace

std::string raw_format_names() {
    std::string names;
    for (const RawFormat* format : formats)
        names += std::string(names.empty() ? "" : ", ") + format->name
                 + (format->write == nullptr ? " (read only)" : "");
    return names;
}

RawFrame read_raw_frame(const std::string& path, const RawHints& hints) {
    const std::string bytes = read_file(path);
    RawFrame frame = format_of(path, bytes, hints).read(path, bytes, hints);
    frame.name = path;
    check_frame(frame);
    return frame;
}

std::string encode_raw_frame(const std::string& path, const RawFrame& frame, const std::string& like) {
    const RawFormat* format = format_by_extension(path);
    if (format == nullptr)
        format = format_by_extension(like);
    if (format == nullptr)
        format = &headerless_format;
    return format->write(frame);
}

} // namespace zerklsc::tool
