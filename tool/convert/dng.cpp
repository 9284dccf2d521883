// encode_dng, insert_gain_maps
//
// Tags, opcodes and their layout: Adobe, "Digital Negative (DNG) Specification", version 1.4.0.0.
#include "convert/dng.h"

#include <algorithm>
#include <bit>

#include "convert/target_grid.h"
#include "convert/tiff_writer.h"
#include "failure.h"
#include "io/dng_mosaic.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// From CIE XYZ to linear sRGB: colours that look right until the module's own matrix is known.
const std::vector<double> xyz_to_srgb{3.2405, -1.5371, -0.4985, -0.9693, 1.8760,
                                      0.0416, 0.0556,  -0.2040, 1.0572};

void append_big(std::string& bytes, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
}

void append_big(std::string& bytes, double value) {
    const auto word = std::bit_cast<uint64_t>(value);
    append_big(bytes, static_cast<uint32_t>(word >> 32));
    append_big(bytes, static_cast<uint32_t>(word & 0xFFFFFFFF));
}

// The map of one plane. Its area ends at the frame's size exactly: readers pass over maps that end before it.
std::string gain_map(const GainTables& tables, const TargetGrid& grid, int plane) {
    const auto word = [](int value) { return static_cast<uint32_t>(value); };
    std::string map;
    for (const int value :
         {plane >> 1, plane & 1, tables.raw_height, tables.raw_width, 0, 1, 2, 2, grid.rows, grid.columns})
        append_big(map, word(value));
    append_big(map, 1.0 / (grid.rows - 1));
    append_big(map, 1.0 / (grid.columns - 1));
    append_big(map, 0.0);
    append_big(map, 0.0);
    append_big(map, uint32_t{1}); // map planes
    for (const double gain : grid.of(colour_of_plane(tables.pattern, plane)))
        append_big(map, std::bit_cast<uint32_t>(static_cast<float>(gain)));
    return map;
}

// Readers interpolate linearly between the points of a map, so it has two for each cell of the tables.
int points_of(int table_side) {
    return 2 * (table_side - 2 * ZERKLSC_BORDER - 1) + 1;
}

// Opcode lists are big-endian whatever the file is.
std::string opcode_list(const GainTables& tables) {
    constexpr uint32_t gain_map_id = 9, dng_1_3 = 0x01030000, optional = 1;
    const TargetGrid grid = evaluate(tables, corner_points(points_of(tables.table_width)),
                                     corner_points(points_of(tables.table_height)));
    std::string list;
    append_big(list, uint32_t{ZERKLSC_CHANNELS});
    for (int plane = 0; plane < ZERKLSC_CHANNELS; ++plane) {
        const std::string map = gain_map(tables, grid, plane);
        append_big(list, gain_map_id);
        append_big(list, dng_1_3);
        append_big(list, optional);
        append_big(list, static_cast<uint32_t>(map.size()));
        list += map;
    }
    return list;
}

void add_mosaic(TiffWriter& tiff, const RawFrame& frame) {
    const auto width = static_cast<uint32_t>(frame.width), height = static_cast<uint32_t>(frame.height);
    tiff.add_longs(tag::new_subfile_type, {0}); // the main image
    tiff.add_longs(tag::image_width, {width});
    tiff.add_longs(tag::image_length, {height});
    tiff.add_shorts(tag::bits_per_sample, {16});
    tiff.add_shorts(tag::compression, {1}); // none
    tiff.add_shorts(tag::photometric_interpretation, {tag::colour_filter_array});
    tiff.add_shorts(tag::orientation, {1});
    tiff.add_shorts(tag::samples_per_pixel, {1});
    tiff.add_longs(tag::rows_per_strip, {height});
    tiff.add_shorts(tag::planar_configuration, {1});
    tiff.add_shorts(tag::cfa_repeat_pattern_dim, {2, 2});
    std::vector<uint8_t> colours;
    for (int plane = 0; plane < ZERKLSC_CHANNELS; ++plane) {
        constexpr std::array<uint8_t, 4> dng_colour{0, 1, 1, 2};
        colours.push_back(dng_colour[static_cast<size_t>(colour_of_plane(*frame.pattern, plane))]);
    }
    tiff.add_bytes(tag::cfa_pattern, colours);
    tiff.add_longs(tag::active_area, {0, 0, height, width});
}

void add_levels(TiffWriter& tiff, const RawFrame& frame) {
    const BlackLevel black = frame.black.value_or(BlackLevel{});
    tiff.add_shorts(tag::black_level_repeat_dim, {2, 2});
    tiff.add_shorts(tag::black_level, std::vector<uint16_t>(black.begin(), black.end()));
    tiff.add_longs(tag::white_level, {static_cast<uint32_t>(frame.white_level())});
}

void add_camera(TiffWriter& tiff, const RawFrame& frame) {
    const std::string camera = frame.camera.empty() ? "Unknown Bayer sensor" : frame.camera;
    const size_t space = camera.find(' '); // between make and model
    tiff.add_text(tag::make, camera.substr(0, space));
    tiff.add_text(tag::model, camera.substr(space + 1));
    tiff.add_text(tag::unique_camera_model, camera);
    tiff.add_bytes(tag::dng_version, {1, 4, 0, 0});
    tiff.add_bytes(tag::dng_backward_version, {1, 3, 0, 0});
    tiff.add_rationals(tag::color_matrix_1, xyz_to_srgb, true);
    tiff.add_rationals(tag::as_shot_neutral, {1, 1, 1}, false);
    tiff.add_shorts(tag::calibration_illuminant_1, {21}); // D65
}

constexpr uint16_t undefined_type = 7;

std::string word(uint64_t value, size_t size, bool big_endian) {
    std::string bytes;
    for (size_t i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> 8 * (big_endian ? size - 1 - i : i) & 0xFF);
    return bytes;
}

// An entry of a directory for a value that stands elsewhere.
std::string opcode_entry(const std::string& list, uint64_t at, bool big_endian) {
    return word(tag::opcode_list_2, 2, big_endian) + word(undefined_type, 2, big_endian)
           + word(list.size(), 4, big_endian) + word(at, 4, big_endian);
}

// The directory with one more entry. Readers expect them by rising tags.
std::string with_entry(const std::string& file, const TiffDirectory& directory, const std::string& entry,
                       bool big_endian) {
    constexpr size_t entry_bytes = 12, next_bytes = 4;
    std::string bytes = word(directory.entries.size() + 1, 2, big_endian);
    bool inserted = false;
    for (const TiffEntry& old : directory.entries) {
        if (!inserted && old.tag > tag::opcode_list_2)
            bytes += entry;
        inserted = inserted || old.tag > tag::opcode_list_2;
        bytes += file.substr(static_cast<size_t>(old.at), entry_bytes);
    }
    if (!inserted)
        bytes += entry;
    std::string next =
        file.substr(static_cast<size_t>(directory.entries.back().at) + entry_bytes, next_bytes);
    next.resize(next_bytes, '\0');
    return bytes + next;
}

void check_frame(DngMosaic& mosaic, const GainTables& tables, const std::string& tables_path) {
    const FrameSize size = mosaic.size();
    if (size.width != tables.raw_width || size.height != tables.raw_height)
        data_failure("{}: is for frames of {} x {}, but the active area of {} is {} x {}: resample it first",
                     tables_path, tables.raw_width, tables.raw_height, mosaic.path(), size.width,
                     size.height);
    const BayerPattern pattern = mosaic.pattern();
    if (pattern != tables.pattern)
        data_failure(
            "{}: is for the Bayer pattern {}, but {} is {}: take the tables of this module and orientation",
            tables_path, name_of(tables.pattern), mosaic.path(), name_of(pattern));
}

std::string whole_file(InputFile& file) {
    // Offsets have 32 bits.
    constexpr uint64_t longest = 0xF0000000;
    if (file.size().value_or(0) > longest)
        data_failure("{}: is longer than the {} bytes to which a DNG can grow", file.path(), longest);
    std::string bytes(static_cast<size_t>(file.size().value_or(0)), '\0');
    file.read(0, std::as_writable_bytes(std::span(bytes)));
    file.expect_unchanged();
    bytes.resize((bytes.size() + 1) / 2 * 2);
    return bytes;
}

} // namespace

std::string insert_gain_maps(const std::string& path, const GainTables& tables,
                             const std::string& tables_path, bool replace) {
    InputFile file(path);
    DngMosaic mosaic(file);
    const TiffDirectory& directory = mosaic.directory;
    check_frame(mosaic, tables, tables_path);
    const TiffEntry* const existing = directory.find(tag::opcode_list_2);
    if (existing != nullptr && !replace)
        data_failure("{}: has an OpcodeList2 of its own: give --replace to put the gain maps in its place",
                     path);
    std::string bytes = whole_file(file);
    const std::string list = opcode_list(tables);
    const std::string entry = opcode_entry(list, bytes.size(), mosaic.tiff.big_endian());
    const std::string grown =
        existing == nullptr ? with_entry(bytes, directory, entry, mosaic.tiff.big_endian()) : std::string();
    bytes += list;
    if (existing != nullptr) {
        bytes.replace(static_cast<size_t>(existing->at), entry.size(), entry);
        return bytes;
    }
    bytes.replace(static_cast<size_t>(directory.pointer_at), 4,
                  word(bytes.size(), 4, mosaic.tiff.big_endian()));
    return bytes + grown;
}

std::string encode_dng(const RawFrame& frame, const GainTables& tables) {
    TiffWriter tiff;
    add_mosaic(tiff, frame);
    add_levels(tiff, frame);
    add_camera(tiff, frame);
    tiff.add_undefined(tag::opcode_list_2, opcode_list(tables));
    return tiff.bytes(frame.samples);
}

} // namespace zerklsc::tool
