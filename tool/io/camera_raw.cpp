// camera_raw_format: DNG and the raw files of camera makers, through LibRaw, as the sensor has seen them.
#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <new>

#include <fmt/format.h>
#include <libraw/libraw.h>

#include "failure.h"
#include "io/loaded_library.h"
#include "io/raw_format.h"
#include "io/sample_rows.h"
#include "io/tiff_blocks.h"

namespace zerklsc::tool {
namespace {

// LibRaw's memory for one frame, in MiB: the largest sensors have some 150 megapixels.
constexpr unsigned most_memory = 1024;

// LibRaw's functions, under their names without the prefix.
struct LibRawFunctions {
    LoadedLibrary library{ZERKLSC_LIBRAW};
    decltype(libraw_COLOR)* COLOR = library.function("libraw_COLOR");
    decltype(libraw_close)* close = library.function("libraw_close");
    decltype(libraw_get_decoder_info)* get_decoder_info = library.function("libraw_get_decoder_info");
    decltype(libraw_init)* init = library.function("libraw_init");
    decltype(libraw_open_buffer)* open_buffer = library.function("libraw_open_buffer");
    decltype(libraw_open_file)* open_file = library.function("libraw_open_file");
    decltype(libraw_set_dataerror_handler)* set_dataerror_handler =
        library.function("libraw_set_dataerror_handler");
    decltype(libraw_strerror)* strerror = library.function("libraw_strerror");
    decltype(libraw_unpack)* unpack = library.function("libraw_unpack");
};

const LibRawFunctions& libraw() {
    static const LibRawFunctions loaded;
    return loaded;
}

struct CloseRaw {
    void operator()(libraw_data_t* raw) const { libraw().close(raw); }
};
using Raw = std::unique_ptr<libraw_data_t, CloseRaw>;

const unpacker_data_t& unpacker_of(libraw_data_t& raw) {
    return static_cast<LibRaw*>(raw.parent_class)->get_internal_data_pointer()->unpacker_data;
}

constexpr std::array extensions{".dng", ".cr2", ".cr3", ".nef", ".nrw", ".arw", ".raf", ".orf", ".rw2",
                                ".pef", ".srw", ".3fr", ".iiq", ".erf", ".mrw", ".kdc", ".dcr", ".gpr"};

// Whether the first directory of a TIFF, where it stands in the head, has the tag DNGVersion.
bool says_dng(std::string_view head) {
    const bool big = head.starts_with("MM");
    const auto number = [&](uint64_t at, size_t bytes) {
        unsigned value = 0;
        for (size_t i = 0; i < bytes && at + bytes <= head.size(); ++i)
            value |= unsigned{static_cast<unsigned char>(head[static_cast<size_t>(at + i)])}
                     << 8 * (big ? bytes - 1 - i : i);
        return value;
    };
    if ((!big && !head.starts_with("II")) || number(2, 2) != 42)
        return false;
    const uint64_t directory = number(4, 4); // of 64 bits, which does not wrap below
    for (uint64_t i = 0; i < number(directory, 2); ++i)
        if (number(directory + 2 + 12 * i, 2) == tag::dng_version)
            return true;
    return false;
}

bool recognises_camera_raw(const InputFile& file, const RawHints& hints) {
    return std::ranges::find(extensions, extension_of(file.path())) != extensions.end()
           || (hints.width == 0 && says_dng(file.head()));
}

void check(const InputFile& file, int status) {
    if (status == LIBRAW_UNSUFFICIENT_MEMORY || status == LIBRAW_TOO_BIG)
        data_failure("{}: promises a frame of more than {} MiB, the most that is read", file.path(),
                     most_memory);
    if (status == LIBRAW_IO_ERROR)
        data_failure("{}: ends before its samples do: the file is truncated or damaged", file.path());
    if (status != LIBRAW_SUCCESS)
        data_failure("{}: cannot be read as a camera's raw file: {}", file.path(), libraw().strerror(status));
}

constexpr const char* other_sensor =
    "{}: is not a Bayer mosaic: frames of other sensors cannot be calibrated";

// LibRaw 0.20 writes a pattern of 6 x 6 over data of its own.
void refuse_wide_patterns(InputFile& file) {
    constexpr uint32_t widest = 16;
    for (const TiffDirectory& directory : TiffFile(file).directories())
        for (const TiffEntry& entry : directory.entries)
            if (entry.tag == tag::cfa_pattern && entry.count > widest)
                data_failure(other_sensor, file.path());
}

Raw open_raw(InputFile& file) {
    if (extension_of(file.path()) == ".dng" && !begins_tiff(file.head()))
        data_failure("{}: is not a DNG: it does not begin as a TIFF does", file.path());
    if (begins_tiff(file.head()))
        refuse_wide_patterns(file);
    Raw raw(libraw().init(LIBRAW_OPTIONS_NONE));
    if (!raw)
        throw std::bad_alloc();
    raw->params.max_raw_memory_mb = most_memory;
    libraw().set_dataerror_handler(raw.get(), nullptr, nullptr);
    file.hold();
    const std::string_view held = file.head();
    check(file, file.size() == held.size()
                    ? libraw().open_buffer(raw.get(), const_cast<char*>(held.data()), held.size())
                    : libraw().open_file(raw.get(), file.path().c_str()));
    if (raw->idata.filters < 1000 || raw->idata.colors < 3)
        data_failure(other_sensor, file.path());
    const auto& sizes = raw->sizes;
    if (sizes.left_margin + sizes.width > sizes.raw_width
        || sizes.top_margin + sizes.height > sizes.raw_height || sizes.width < 2 || sizes.height < 2)
        data_failure("{}: contradicts itself: its active area reaches beyond its frame", file.path());
    return raw;
}

std::string_view decoder_of(libraw_data_t& raw) {
    libraw_decoder_info_t decoder{};
    return libraw().get_decoder_info(&raw, &decoder) == LIBRAW_SUCCESS ? decoder.decoder_name : "";
}

bool is_uncompressed(libraw_data_t& raw) {
    return decoder_of(raw) == "packed_dng_load_raw()";
}

// Whether LibRaw would only copy whole words: then they can be read where they stay.
bool is_plain(libraw_data_t& raw) {
    if (!is_uncompressed(raw) || unpacker_of(raw).tiff_bps != 16)
        return false;
    const auto& curve = raw.color.curve;
    for (size_t i = 0; i < std::size(curve); ++i)
        if (curve[i] != i)
            return false;
    return true;
}

// LibRaw begins its frame a row or column further in where the corner of a DNG's active area is odd. The
// frame of the file is that area, from whose corner its pattern and black levels repeat.
SampleArea mosaic_area(libraw_data_t& raw, DngMosaic* mosaic) {
    const auto& sizes = raw.sizes;
    const SampleArea area{sizes.left_margin, sizes.top_margin, sizes.width, sizes.height};
    const auto corners = mosaic == nullptr ? std::vector<double>{} : mosaic->active_area();
    const auto begins_at = [](double corner, uint64_t margin) {
        return corner == static_cast<double>(margin) || corner + 1 == static_cast<double>(margin);
    };
    if (corners.size() != 4 || !begins_at(corners[0], area.top) || !begins_at(corners[1], area.left)
        || !(corners[2] <= sizes.raw_height && corners[3] <= sizes.raw_width)
        || !(corners[2] >= corners[0] + 2 && corners[3] >= corners[1] + 2))
        return area;
    return {static_cast<uint64_t>(corners[1]), static_cast<uint64_t>(corners[0]),
            static_cast<uint64_t>(corners[3] - corners[1]), static_cast<uint64_t>(corners[2] - corners[0])};
}

// LibRaw takes the samples of an uncompressed DNG to follow its first one row by row. Plain words are read
// here wherever they stand; fewer bits are not, nor lossless JPEG, of which LibRaw reads the first strip
// alone, and whatever number of samples that promises.
void check_as_libraw_reads(libraw_data_t& raw, DngMosaic& mosaic) {
    const bool uncompressed = is_uncompressed(raw);
    if (!uncompressed && decoder_of(raw) != "lossless_dng_load_raw()")
        return;
    const unsigned bits = unpacker_of(raw).tiff_bps;
    if (uncompressed && !is_in_one_piece(mosaic))
        data_failure(
            "{}: holds {}-bit samples{} in tiles or scattered strips, and only plain ones of 16 bits are "
            "read from there: write it in one strip, or compressed in tiles",
            mosaic.path(), bits, bits == 16 ? " for a linearization table" : "");
    if (!uncompressed && strip_count(mosaic) > 1)
        data_failure("{}: holds compressed samples in {} strips: write it in one strip, or in tiles",
                     mosaic.path(), strip_count(mosaic));
    if (!uncompressed)
        check_jpeg_sizes(mosaic);
}

std::vector<uint16_t> read_plain(InputFile& file, libraw_data_t& raw, const SampleArea& area) {
    const unpacker_data_t& unpacker = unpacker_of(raw);
    const uint64_t stride = 2 * uint64_t{raw.sizes.raw_width};
    const uint64_t first = stride * area.top + 2 * area.left;
    const RowLayout layout{static_cast<int>(area.width), static_cast<int>(area.height), 2 * area.width,
                           stride, static_cast<uint64_t>(unpacker.data_offset) + first};
    if (layout.shortest_end() > file.size().value_or(0))
        data_failure("{}: holds {} bytes, but its {} x {} samples end at byte {}: the file is truncated",
                     file.path(), file.size().value_or(0), area.width, area.height, layout.shortest_end());
    return read_word_rows(file, layout, unpacker.order == 0x4D4D);
}

// LibRaw's colour of a plane of the area: 0 R, 1 G in the rows of R, 2 B, 3 the other G.
int colour_of_plane(libraw_data_t& raw, const SampleArea& area, unsigned plane) {
    const unsigned y = (plane >> 1) + (raw.sizes.top_margin - area.top) % 2,
                   x = (plane & 1) + (raw.sizes.left_margin - area.left) % 2;
    return libraw().COLOR(&raw, static_cast<int>(y), static_cast<int>(x)) & 3;
}

std::optional<BayerPattern> pattern_of(libraw_data_t& raw, const SampleArea& area) {
    std::string name;
    for (unsigned plane = 0; plane < 4; ++plane)
        name += "RGBG"[colour_of_plane(raw, area, plane)];
    return bayer_pattern_from(name);
}

// LibRaw splits black levels in a common part, one for each colour and one for each place in a repeated
// block. A level below 0, which some processors make 0 and others a large number, is seen where it stands.
BlackLevel black_of(const InputFile& file, libraw_data_t& raw, DngMosaic* mosaic, const SampleArea& area) {
    if (mosaic != nullptr)
        for (const double level : mosaic->values(tag::black_level, 4))
            if (!(level >= 0 && level <= 65535))
                data_failure("{}: has a black level of {}: expected 0 to 65535", file.path(), level);
    const auto& colour = raw.color;
    const unsigned rows = colour.cblack[4], columns = colour.cblack[5];
    BlackLevel black{};
    for (unsigned plane = 0; plane < 4; ++plane) {
        unsigned level = colour.black + colour.cblack[colour_of_plane(raw, area, plane)];
        if (rows != 0 && columns != 0)
            level += colour.cblack[6 + (plane >> 1) % rows * columns + (plane & 1) % columns];
        black[plane] = static_cast<int>(level);
        if (level > 65535)
            data_failure("{}: has a black level of {}: expected 0 to 65535", file.path(), black[plane]);
    }
    return black;
}

std::vector<uint16_t> unpack(const InputFile& file, libraw_data_t& raw, const SampleArea& area) {
    check(file, libraw().unpack(&raw));
    if (raw.rawdata.raw_image == nullptr)
        data_failure("{}: holds no mosaic of whole numbers", file.path());
    const size_t pitch = raw.sizes.raw_pitch / 2;
    std::vector<uint16_t> samples(static_cast<size_t>(area.width * area.height));
    for (uint64_t y = 0; y < area.height; ++y)
        std::copy_n(raw.rawdata.raw_image + (y + area.top) * pitch + area.left, area.width,
                    samples.data() + y * area.width);
    return samples;
}

std::vector<uint16_t> samples_of(InputFile& file, libraw_data_t& raw, DngMosaic* mosaic,
                                 const SampleArea& area) {
    if (!is_plain(raw)) {
        if (mosaic != nullptr)
            check_as_libraw_reads(raw, *mosaic);
        return unpack(file, raw, area);
    }
    if (mosaic != nullptr && strip_count(*mosaic) != 1)
        return read_blocks(file, *mosaic, area);
    return read_plain(file, raw, area);
}

void set_depth(RawFrame& frame, unsigned white) {
    // Some cameras deliver a little more than the level at which they clip.
    const int most = std::max(static_cast<int>(std::min(white, 65535U)), largest_sample(frame));
    frame.bits = std::max(8, static_cast<int>(std::bit_width(static_cast<unsigned>(most))));
    frame.word_bits = frame.bits;
    if (white != 0 && static_cast<int>(white) < frame.full_scale())
        frame.white = static_cast<int>(white);
}

RawFrame read_camera_raw(InputFile& file, const RawHints&) {
    const Raw raw = open_raw(file);
    const libraw_data_t& data = *raw;
    RawFrame frame;
    frame.format = data.idata.dng_version != 0 ? "DNG" : "camera raw";
    std::optional<DngMosaic> mosaic; // where LibRaw takes a DNG otherwise than it is meant
    if (data.idata.dng_version != 0)
        mosaic.emplace(file);
    DngMosaic* const dng = mosaic ? &*mosaic : nullptr;
    SampleArea area = mosaic_area(*raw, dng);
    area.width &= ~uint64_t{1};
    area.height &= ~uint64_t{1};
    frame.width = static_cast<int>(area.width);
    frame.height = static_cast<int>(area.height);
    frame.pattern = pattern_of(*raw, area);
    frame.camera = fmt::format("{} {}", data.idata.make, data.idata.model);
    frame.lens = data.lens.Lens;
    frame.samples = samples_of(file, *raw, dng, area);
    set_depth(frame, data.color.maximum);
    frame.black = black_of(file, *raw, dng, area);
    return frame;
}

} // namespace

const RawFormat camera_raw_format{"DNG and camera raws", ".dng", recognises_camera_raw, read_camera_raw,
                                  nullptr};

} // namespace zerklsc::tool
