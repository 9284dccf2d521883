// tiff_mosaic_format: a mosaic as a TIFF of one sample a pixel, 8 or 16 bits, in strips of any compression.
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <memory>

#include <fmt/format.h>
#include <tiffio.h>

#include "failure.h"
#include "io/loaded_library.h"
#include "io/raw_format.h"

namespace zerklsc::tool {
namespace {

// libtiff's functions, under their names without the prefix.
struct LibTiff {
    LoadedLibrary library{ZERKLSC_LIBTIFF};
    decltype(TIFFClientOpen)* ClientOpen = library.function("TIFFClientOpen");
    decltype(TIFFClose)* Close = library.function("TIFFClose");
    decltype(TIFFComputeStrip)* ComputeStrip = library.function("TIFFComputeStrip");
    decltype(TIFFGetField)* GetField = library.function("TIFFGetField");
    decltype(TIFFGetFieldDefaulted)* GetFieldDefaulted = library.function("TIFFGetFieldDefaulted");
    decltype(TIFFIsTiled)* IsTiled = library.function("TIFFIsTiled");
    decltype(TIFFReadEncodedStrip)* ReadEncodedStrip = library.function("TIFFReadEncodedStrip");
    decltype(TIFFSetErrorHandler)* SetErrorHandler = library.function("TIFFSetErrorHandler");
    decltype(TIFFSetWarningHandler)* SetWarningHandler = library.function("TIFFSetWarningHandler");
};

const LibTiff& libtiff() {
    static const LibTiff loaded;
    return loaded;
}

// What libtiff reads from.
struct TiffSource {
    InputFile* file;
    uint64_t position = 0;
};

tmsize_t read_bytes(thandle_t handle, void* to, tmsize_t size) {
    auto* const source = static_cast<TiffSource*>(handle);
    try {
        const auto bytes = std::span(static_cast<std::byte*>(to), static_cast<size_t>(size));
        const size_t got = source->file->read_some(source->position, bytes);
        source->position += got;
        return static_cast<tmsize_t>(got);
    } catch (const std::exception&) {
        return -1; // through C code, nothing may be thrown
    }
}

tmsize_t write_nothing(thandle_t, void*, tmsize_t) {
    return -1;
}

toff_t seek(thandle_t handle, toff_t offset, int whence) {
    auto* const source = static_cast<TiffSource*>(handle);
    const uint64_t from = whence == SEEK_SET   ? 0
                          : whence == SEEK_CUR ? source->position
                                               : source->file->size().value_or(0);
    return source->position = from + offset;
}

int close_nothing(thandle_t) {
    return 0;
}

toff_t size_of(thandle_t handle) {
    return static_cast<TiffSource*>(handle)->file->size().value_or(0);
}

// The last message of libtiff, whose handlers have no argument of the caller's.
thread_local std::array<char, 256> last_error;

void keep_error(const char*, const char* format, va_list arguments) {
    std::vsnprintf(last_error.data(), last_error.size(), format, arguments);
}

struct CloseTiff {
    void operator()(TIFF* tiff) const { libtiff().Close(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

[[noreturn]] void fail(const InputFile& file) {
    // A file without a directory is no error to libtiff.
    data_failure("{}: is not a TIFF that can be read: {}", file.path(),
                 last_error[0] != '\0' ? last_error.data() : "it holds no image");
}

Tiff open_tiff(TiffSource& source) {
    libtiff().SetErrorHandler(keep_error);
    libtiff().SetWarningHandler(nullptr);
    last_error.fill('\0');
    // "m": no memory mapping.
    Tiff tiff(libtiff().ClientOpen(source.file->path().c_str(), "rm", &source, read_bytes, write_nothing,
                                   seek, close_nothing, size_of, nullptr, nullptr));
    if (!tiff)
        fail(*source.file);
    return tiff;
}

struct TiffHeader {
    uint32_t width = 0, height = 0;
    uint16_t depth = 1, samples = 1, format = SAMPLEFORMAT_UINT, compression = COMPRESSION_NONE,
             photometric = PHOTOMETRIC_MINISBLACK;
    uint32_t strip_rows = 0;
};

TiffHeader read_header(const InputFile& file, TIFF* tiff) {
    TiffHeader header;
    libtiff().GetField(tiff, TIFFTAG_IMAGEWIDTH, &header.width);
    libtiff().GetField(tiff, TIFFTAG_IMAGELENGTH, &header.height);
    libtiff().GetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &header.depth);
    libtiff().GetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &header.samples);
    libtiff().GetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &header.format);
    libtiff().GetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &header.compression);
    libtiff().GetField(tiff, TIFFTAG_PHOTOMETRIC, &header.photometric);
    libtiff().GetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &header.strip_rows);
    if (header.samples != 1 || (header.depth != 8 && header.depth != 16)
        || header.format != SAMPLEFORMAT_UINT)
        data_failure(
            "{}: has {} samples a pixel of {} bits: a raw frame is a mosaic of one sample a pixel, 8 or "
            "16 bits",
            file.path(), header.samples, header.depth);
    if (header.photometric == PHOTOMETRIC_MINISWHITE || header.photometric == PHOTOMETRIC_PALETTE)
        data_failure("{}: its samples are {}: expected levels that rise with the light", file.path(),
                     header.photometric == PHOTOMETRIC_PALETTE ? "entries of a palette" : "0 for white");
    if (header.width < 2 || header.height < 2 || header.width > largest_side || header.height > largest_side)
        data_failure("{}: is {} x {} samples: expected 2 to {} in each direction", file.path(), header.width,
                     header.height, largest_side);
    if (libtiff().IsTiled(tiff) != 0)
        data_failure("{}: is in tiles: write the TIFF in strips", file.path());
    header.strip_rows = std::clamp(header.strip_rows, 1U, header.height);
    const uint64_t bytes = uint64_t{header.width} * header.height * (header.depth / 8U);
    // No compression of libtiff's packs closer than this.
    const uint64_t closest = header.compression == COMPRESSION_NONE ? 1 : 4096;
    if (bytes / closest > file.size().value_or(0))
        data_failure("{}: is shorter than its {} x {} samples of {} bits: the file is truncated", file.path(),
                     header.width, header.height, header.depth);
    return header;
}

// Grows with the strips that come, not with what the header promises.
template <class Sample>
std::vector<uint16_t> read_strips(const InputFile& file, TIFF* tiff, const TiffHeader& header) {
    std::vector<uint16_t> samples;
    std::vector<Sample> strip;
    for (uint32_t y = 0; y < header.height; y += header.strip_rows) {
        const uint32_t rows = std::min(header.strip_rows, header.height - y);
        strip.resize(size_t{rows} * header.width);
        const auto bytes = static_cast<tmsize_t>(strip.size() * sizeof(Sample));
        if (libtiff().ReadEncodedStrip(tiff, libtiff().ComputeStrip(tiff, y, 0), strip.data(), bytes)
            != bytes)
            fail(file);
        samples.insert(samples.end(), strip.begin(), strip.end());
    }
    return samples;
}

std::optional<BayerPattern> pattern_of(TIFF* tiff) {
    uint16_t count = 0;
    const uint8_t* colours = nullptr;
    if (libtiff().GetField(tiff, TIFFTAG_CFAPATTERN, &count, &colours) != 1 || count != 4)
        return std::nullopt;
    std::string name;
    for (int i = 0; i < 4; ++i)
        name += colours[i] <= 2 ? "RGB"[colours[i]] : '?';
    return bayer_pattern_from(name);
}

bool is_tiff(const InputFile& file) {
    const std::string_view magic = file.head().substr(0, 4);
    using namespace std::string_view_literals;
    return magic == "II*\0"sv || magic == "MM\0*"sv || magic == "II+\0"sv || magic == "MM\0+"sv;
}

bool recognises_tiff(const InputFile& file, const RawHints& hints) {
    const std::string extension = extension_of(file.path());
    return extension == ".tif" || extension == ".tiff" || (is_tiff(file) && hints.width == 0);
}

RawFrame read_tiff(InputFile& file, const RawHints&) {
    if (!is_tiff(file))
        data_failure("{}: is not a TIFF: it begins with neither II nor MM", file.path());
    file.hold();
    TiffSource source{&file};
    const Tiff tiff = open_tiff(source);
    const TiffHeader header = read_header(file, tiff.get());
    RawFrame frame;
    frame.format = fmt::format("{}-bit TIFF", header.depth);
    frame.width = static_cast<int>(header.width);
    frame.height = static_cast<int>(header.height);
    frame.bits = header.depth;
    frame.word_bits = header.depth;
    frame.pattern = pattern_of(tiff.get());
    frame.samples = header.depth == 8 ? read_strips<uint8_t>(file, tiff.get(), header)
                                      : read_strips<uint16_t>(file, tiff.get(), header);
    return frame;
}

} // namespace

const RawFormat tiff_mosaic_format{"TIFF", ".tif", recognises_tiff, read_tiff, nullptr};

} // namespace zerklsc::tool
