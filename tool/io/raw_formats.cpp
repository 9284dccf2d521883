// read_raw_frame, overridden, write_raw_frame, raw_format_names
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "failure.h"
#include "io/fitting_sizes.h"
#include "io/raw_format.h"

namespace zerklsc::tool {
namespace {

// In the order in which they are asked; headerless takes whatever comes with a size.
constexpr std::array formats{
    &pgm_format,         &mipi_raw10_format, &mipi_raw12_format, &png_mosaic_format,
#ifdef ZERKLSC_LIBRAW
    &camera_raw_format, // before TIFF, of which DNG is a kind
#endif
#ifdef ZERKLSC_LIBTIFF
    &tiff_mosaic_format,
#endif
    &headerless_format,
};

bool has_header(const RawFormat& format) {
    return &format != &headerless_format && &format != &mipi_raw10_format && &format != &mipi_raw12_format;
}

const RawFormat& format_of(const InputFile& file, const RawHints& hints) {
    for (const RawFormat* format : formats)
        if (format->recognises(file, hints))
            return *format;
    const std::string sizes = file.size() ? fitting_sizes(*file.size(), hints, Packing::words) : "";
    data_failure(
        "{}: not a raw format known here: expected {}; what has no header needs --width and --height{}",
        file.path(), raw_format_names(), sizes.empty() ? "" : ", sizes that would fit: " + sizes);
}

const RawFormat* format_by_extension(const std::string& path) {
    const std::string extension = extension_of(path);
    for (const RawFormat* format : formats)
        if (format->write != nullptr && extension == format->extension)
            return format;
    return nullptr;
}

// What the user says about the depth; moves samples that fill the high bits of their words down.
void override_depth(RawFrame& frame, const RawHints& hints) {
    if (hints.bits != 0 && hints.bits != frame.bits) {
        frame.bits = hints.bits;
        frame.white.reset();
    }
    const int shift = frame.word_bits - frame.bits;
    if (!hints.left_aligned || shift <= 0)
        return;
    for (uint16_t& sample : frame.samples)
        sample = static_cast<uint16_t>(sample >> shift);
}

void override_levels(RawFrame& frame, const RawHints& hints) {
    if (hints.pattern)
        frame.pattern = hints.pattern;
    if (hints.black)
        frame.black = hints.black;
    if (hints.white)
        frame.white = hints.white;
}

// What the user says about the layout of a file that says it itself.
void check_layout(const RawFrame& frame, const RawHints& hints) {
    if ((hints.width != 0 && hints.width != frame.width)
        || (hints.height != 0 && hints.height != frame.height))
        data_failure("{}: is {} x {} samples, not {} x {}: leave --width and --height away for a file that "
                     "says its size",
                     frame.name, frame.width, frame.height, hints.width, hints.height);
    if (hints.stride != 0 || hints.offset != 0 || hints.big_endian || hints.packing)
        data_failure("{}: says itself where its samples are ({}): leave --stride, --offset, --endian and "
                     "--packing away",
                     frame.name, frame.format);
}

void check_levels(const RawFrame& frame) {
    if (frame.white && *frame.white > frame.full_scale())
        data_failure("{}: a white level of {} is above the full scale of {}: give the right --white-level or "
                     "--bits",
                     frame.name, *frame.white, frame.full_scale());
    if (!frame.black)
        return;
    for (const int level : *frame.black)
        if (level >= frame.white_level())
            data_failure("{}: a black level of {} leaves no range below the {} of {}: give the right "
                         "--black-level or --bits",
                         frame.name, level, frame.white ? "white level" : "full scale", frame.white_level());
}

void check_frame(const RawFrame& frame) {
    if (frame.width % 2 != 0 || frame.height % 2 != 0)
        data_failure("{}: {} x {} samples are not whole 2 x 2 Bayer cells: crop the frame to an even size",
                     frame.name, frame.width, frame.height);
    const int largest = largest_sample(frame);
    if (largest > frame.full_scale())
        data_failure(
            "{}: holds a sample of {}, but {}-bit samples end at {}: give the right --bits, --endian "
            "or --align",
            frame.name, largest, frame.bits, frame.full_scale());
    check_levels(frame);
}

} // namespace

RawReading read_raw_frame(const std::string& path, const RawHints& hints) {
    InputFile file(path);
    if (file.size() == 0)
        data_failure("{}: is empty: expected a raw frame", file.path());
    const RawFormat& format = format_of(file, hints);
    RawReading reading{format.read(file, hints), {}};
    file.expect_unchanged();
    RawFrame& frame = reading.frame;
    frame.name = file.path();
    reading.said = frame;
    if (has_header(format))
        check_layout(frame, hints);
    if (&format == &headerless_format)
        reading.said.bits = 0;
    override_depth(frame, hints);
    override_levels(frame, hints);
    check_frame(frame);
    return reading;
}

std::vector<std::string> overridden(const RawReading& reading) {
    const auto& [frame, said] = reading;
    std::vector<std::string> remarks;
    const auto remark = [&](const char* what, const auto& its, const auto& taken) {
        if (its != taken)
            remarks.push_back(fmt::format("{} {} ({} is taken)", what, its, taken));
    };
    if (said.bits != 0)
        remark("bit depth", said.bits, frame.bits);
    if (said.pattern)
        remark("Bayer pattern", std::string(name_of(*said.pattern)), std::string(name_of(*frame.pattern)));
    if (said.black)
        remark("black level", text_of(*said.black), text_of(*frame.black));
    if (said.white && said.bits == frame.bits)
        remark("white level", *said.white, frame.white_level());
    return remarks;
}

void write_raw_frame(const std::string& path, const RawFrame& frame, const std::string& like,
                     const ByteSink& sink) {
    const RawFormat* format = format_by_extension(path);
    if (format == nullptr && path != "-" && !extension_of(path).empty())
        usage_failure(
            "{}: names no format in which frames are written: give a name that ends in .pgm, or .raw for "
            "headerless words",
            path);
    if (format == nullptr)
        format = format_by_extension(like);
    if (format == nullptr)
        format = &headerless_format;
    format->write(frame, sink);
}

std::string raw_format_names() {
    std::string names;
    for (const RawFormat* format : formats)
        names += std::string(names.empty() ? "" : ", ") + format->name;
    return names;
}

} // namespace zerklsc::tool
