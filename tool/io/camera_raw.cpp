// camera_raw_format: DNG and the raw files of camera makers, through LibRaw, as the sensor has seen them.
#include <algorithm>
#include <array>
#include <bit>
#include <memory>

#include <fmt/format.h>
#include <libraw/libraw.h>

#include "failure.h"
#include "io/raw_format.h"
#include "io/sample_rows.h"
#include "io/tiff_blocks.h"

namespace zerklsc::tool {
namespace {

// What is read of a pipe: a raw file has its parts in any order.
constexpr uint64_t largest_held = uint64_t{1} << 30;
// LibRaw's memory for one frame, in MiB: the largest sensors have some 150 megapixels.
constexpr unsigned most_memory = 1024;

constexpr std::array extensions{".dng", ".cr2", ".cr3", ".nef", ".nrw", ".arw", ".raf", ".orf", ".rw2",
                                ".pef", ".srw", ".3fr", ".iiq", ".erf", ".mrw", ".kdc", ".dcr", ".gpr"};

// Whether the first directory of a TIFF, where it stands in the head, has the tag DNGVersion.
bool says_dng(std::string_view head) {
    constexpr unsigned dng_version = 50706;
    const bool big = head.starts_with("MM");
    const auto number = [&](size_t at, size_t bytes) {
        unsigned value = 0;
        for (size_t i = 0; i < bytes && at + bytes <= head.size(); ++i)
            value |= unsigned{static_cast<unsigned char>(head[at + i])} << 8 * (big ? bytes - 1 - i : i);
        return value;
    };
    if ((!big && !head.starts_with("II")) || number(2, 2) != 42)
        return false;
    const size_t directory = number(4, 4);
    for (size_t i = 0; i < number(directory, 2) && directory < head.size(); ++i)
        if (number(directory + 2 + 12 * i, 2) == dng_version)
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
    if (status != LIBRAW_SUCCESS)
        data_failure("{}: cannot be read as a camera's raw file: {}", file.path(), libraw_strerror(status));
}

std::unique_ptr<LibRaw> open_raw(InputFile& file) {
    auto raw = std::make_unique<LibRaw>();
    raw->imgdata.params.max_raw_memory_mb = most_memory;
    raw->set_dataerror_handler(nullptr, nullptr);
    file.hold(largest_held);
    const std::string_view held = file.head();
    check(file, file.size() == held.size() ? raw->open_buffer(const_cast<char*>(held.data()), held.size())
                                           : raw->open_file(file.path().c_str()));
    if (raw->imgdata.idata.filters < 1000 || raw->imgdata.idata.colors < 3)
        data_failure("{}: is not a Bayer mosaic: frames of other sensors cannot be calibrated", file.path());
    const auto& sizes = raw->imgdata.sizes;
    if (sizes.left_margin + sizes.width > sizes.raw_width
        || sizes.top_margin + sizes.height > sizes.raw_height || sizes.width < 2 || sizes.height < 2)
        data_failure("{}: contradicts itself: its active area reaches beyond its frame", file.path());
    return raw;
}

bool is_uncompressed(LibRaw& raw) {
    libraw_decoder_info_t decoder{};
    return raw.get_decoder_info(&decoder) == LIBRAW_SUCCESS
           && std::string_view(decoder.decoder_name) == "packed_dng_load_raw()";
}

// Whether LibRaw would only copy whole words: then they can be read where they stay.
bool is_plain(LibRaw& raw) {
    if (!is_uncompressed(raw) || raw.get_internal_data_pointer()->unpacker_data.tiff_bps != 16)
        return false;
    const auto& curve = raw.imgdata.color.curve;
    for (size_t i = 0; i < std::size(curve); ++i)
        if (curve[i] != i)
            return false;
    return true;
}

// LibRaw takes the samples of an uncompressed DNG to follow its first one row by row. Nothing where they do.
std::optional<std::vector<uint16_t>> read_scattered(InputFile& file, LibRaw& raw,
                                                    const RawDescription& about) {
    if (!begins_tiff(file.head()))
        return std::nullopt;
    TiffFile tiff(file);
    const TiffDirectory directory = tiff.mosaic_directory();
    constexpr uint16_t strip_offsets = 273;
    const TiffEntry* const strips = directory.find(strip_offsets);
    if (!is_tiled(directory) && (strips == nullptr || strips->count == 1))
        return std::nullopt;
    const auto& sizes = raw.imgdata.sizes;
    return read_blocks(file, tiff, directory,
                       {sizes.left_margin, sizes.top_margin, static_cast<uint64_t>(about.width),
                        static_cast<uint64_t>(about.height)});
}

// The same mistake with fewer bits cannot be mended here.
void check_in_strips(InputFile& file, LibRaw& raw) {
    if (!is_uncompressed(raw) || !begins_tiff(file.head()))
        return;
    TiffFile tiff(file);
    if (is_tiled(tiff.mosaic_directory()))
        data_failure(
            "{}: holds uncompressed tiles of {}-bit samples, and only those of 16 bits are read: write "
            "it in strips, or compressed",
            file.path(), raw.get_internal_data_pointer()->unpacker_data.tiff_bps);
}

std::vector<uint16_t> read_plain(InputFile& file, LibRaw& raw, const RawDescription& about) {
    const unpacker_data_t& unpacker = raw.get_internal_data_pointer()->unpacker_data;
    const auto& sizes = raw.imgdata.sizes;
    if (auto samples = read_scattered(file, raw, about))
        return std::move(*samples);
    const uint64_t stride = 2 * uint64_t{sizes.raw_width};
    const uint64_t first = stride * sizes.top_margin + 2 * uint64_t{sizes.left_margin};
    const RowLayout layout{about.width, about.height, 2 * static_cast<uint64_t>(about.width), stride,
                           static_cast<uint64_t>(unpacker.data_offset) + first};
    if (layout.shortest_end() > file.size().value_or(0))
        data_failure("{}: holds {} bytes, but its {} x {} samples end at byte {}: the file is truncated",
                     file.path(), file.size().value_or(0), about.width, about.height, layout.shortest_end());
    return read_word_rows(file, layout, unpacker.order == 0x4D4D);
}

// LibRaw's colours: 0 R, 1 G in the rows of R, 2 B, 3 the other G.
std::optional<BayerPattern> pattern_of(LibRaw& raw) {
    std::string name;
    for (int plane = 0; plane < 4; ++plane)
        name += "RGBG"[raw.COLOR(plane >> 1, plane & 1) & 3];
    return bayer_pattern_from(name);
}

// A DNG repeats its black levels from the corner of its active area. LibRaw's frame begins a row or column
// further in where that corner is odd.
std::array<unsigned, 2> rows_and_columns_left_out(InputFile& file, LibRaw& raw) {
    if (raw.imgdata.idata.dng_version == 0 || !begins_tiff(file.head()))
        return {0, 0};
    constexpr uint16_t active_area = 50829;
    TiffFile tiff(file);
    const TiffDirectory directory = tiff.mosaic_directory();
    const TiffEntry* const area = directory.find(active_area);
    const std::vector<double> corners = area != nullptr ? tiff.numbers(*area, 4) : std::vector<double>();
    if (corners.size() != 4)
        return {0, 0};
    const auto left_out = [](unsigned margin, double corner) { return margin > corner ? 1U : 0U; };
    return {left_out(raw.imgdata.sizes.top_margin, corners[0]),
            left_out(raw.imgdata.sizes.left_margin, corners[1])};
}

// LibRaw splits black levels in a common part, one for each colour and one for each place in a repeated
// block.
BlackLevel black_of(InputFile& file, LibRaw& raw) {
    const auto& colour = raw.imgdata.color;
    const unsigned rows = colour.cblack[4], columns = colour.cblack[5];
    const auto [rows_left_out, columns_left_out] = rows_and_columns_left_out(file, raw);
    BlackLevel black{};
    for (unsigned plane = 0; plane < 4; ++plane) {
        const unsigned y = plane >> 1, x = plane & 1;
        unsigned level =
            colour.black + colour.cblack[raw.COLOR(static_cast<int>(y), static_cast<int>(x)) & 3];
        if (rows != 0 && columns != 0)
            level +=
                colour.cblack[6 + (y + rows_left_out) % rows * columns + (x + columns_left_out) % columns];
        black[plane] = static_cast<int>(level);
    }
    return black;
}

std::vector<uint16_t> unpack(const InputFile& file, LibRaw& raw, const RawDescription& about) {
    check(file, raw.unpack());
    if (raw.imgdata.rawdata.raw_image == nullptr)
        data_failure("{}: holds no mosaic of whole numbers", file.path());
    const auto& sizes = raw.imgdata.sizes;
    const auto width = static_cast<size_t>(about.width);
    std::vector<uint16_t> samples(width * static_cast<size_t>(about.height));
    for (size_t y = 0; y < static_cast<size_t>(about.height); ++y)
        std::copy_n(raw.imgdata.rawdata.raw_image + (y + sizes.top_margin) * (sizes.raw_pitch / 2)
                        + sizes.left_margin,
                    width, samples.data() + y * width);
    return samples;
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
    const std::unique_ptr<LibRaw> raw = open_raw(file);
    const auto& data = raw->imgdata;
    RawFrame frame;
    frame.format = data.idata.dng_version != 0 ? "DNG" : "camera raw";
    frame.width = data.sizes.width & ~1;
    frame.height = data.sizes.height & ~1;
    frame.pattern = pattern_of(*raw);
    frame.camera = fmt::format("{} {}", data.idata.make, data.idata.model);
    frame.lens = data.lens.Lens;
    const bool plain = is_plain(*raw);
    if (!plain)
        check_in_strips(file, *raw);
    frame.samples = plain ? read_plain(file, *raw, frame) : unpack(file, *raw, frame);
    set_depth(frame, data.color.maximum);
    frame.black = black_of(file, *raw);
    return frame;
}

} // namespace

const RawFormat camera_raw_format{"DNG and camera raws", ".dng", recognises_camera_raw, read_camera_raw,
                                  nullptr};

} // namespace zerklsc::tool
