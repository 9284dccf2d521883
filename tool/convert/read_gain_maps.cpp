// read_gain_maps
//
// Tags and opcodes: Adobe, "Digital Negative (DNG) Specification", version 1.4.0.0. The maps of OpcodeList2
// are laid over the active area.
#include <algorithm>
#include <bit>
#include <cmath>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "convert/shading_file.h"
#include "failure.h"
#include "io/dng_mosaic.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

constexpr uint32_t gain_map_id = 9;
constexpr double highest_gain = 64;

// Big-endian numbers from the front of some bytes.
class BigEndian {
  public:
    BigEndian(const std::string& path, std::string_view bytes) : path_(path), bytes_(bytes) {}

    bool empty() const { return bytes_.empty(); }
    uint32_t word() {
        uint32_t value = 0;
        for (const char byte : take(4))
            value = value << 8 | static_cast<uint8_t>(byte);
        return value;
    }
    double number() {
        const uint64_t high = word();
        return std::bit_cast<double>(high << 32 | word());
    }
    std::string_view take(uint64_t size) {
        if (size > bytes_.size())
            data_failure("{}: its opcode list ends in the middle: the file is damaged", path_);
        const std::string_view taken = bytes_.substr(0, static_cast<size_t>(size));
        bytes_.remove_prefix(taken.size());
        return taken;
    }

  private:
    const std::string& path_;
    std::string_view bytes_;
};

struct GainMap {
    uint32_t top, left, bottom, right, row_pitch, column_pitch;
    GainGrid grid;

    bool covers(int plane) const {
        const auto number = static_cast<uint32_t>(plane);
        return row_pitch == 1 || (top % 2 == number >> 1 && left % 2 == (number & 1));
    }
};

GridAxis read_axis(const std::string& path, uint32_t count, double spacing, double first) {
    const bool sound = spacing > 0 && spacing <= 1 && std::abs(first) <= 1;
    if (count > 1 && !sound)
        data_failure("{}: a gain map begins at {} with points every {} of the frame, which cannot be", path,
                     first, spacing);
    return {static_cast<int>(count), count > 1 ? first : 0, count > 1 ? spacing : 1};
}

void read_gains(const std::string& path, BigEndian& bytes, GainMap& map) {
    const uint64_t count = static_cast<uint64_t>(map.grid.x.count) * static_cast<uint64_t>(map.grid.y.count);
    BigEndian gains(path, bytes.take(4 * count));
    for (uint64_t i = 0; i < count; ++i) {
        const double gain = static_cast<double>(std::bit_cast<float>(gains.word()));
        if (!(gain > 0 && gain <= highest_gain))
            data_failure("{}: a gain map holds {}, which is not a gain above 0 and up to {}", path, gain,
                         highest_gain);
        map.grid.gains.push_back(gain);
    }
}

GainMap read_map(const std::string& path, BigEndian bytes) {
    GainMap map{bytes.word(), bytes.word(), bytes.word(), bytes.word(), 0, 0, {}};
    const uint32_t plane = bytes.word(), planes = bytes.word();
    map.row_pitch = bytes.word();
    map.column_pitch = bytes.word();
    const uint32_t rows = bytes.word(), columns = bytes.word();
    const double spacing_y = bytes.number(), spacing_x = bytes.number();
    const double first_y = bytes.number(), first_x = bytes.number();
    const uint32_t map_planes = bytes.word();
    if (plane != 0 || planes != 1 || map_planes != 1 || map.row_pitch != map.column_pitch || map.row_pitch < 1
        || map.row_pitch > 2)
        data_failure("{}: a gain map is for planes {} to {} with pitches {} and {}: expected one plane of a "
                     "mosaic with pitches 2 and 2, or 1 and 1",
                     path, plane, uint64_t{plane} + planes - 1, map.row_pitch, map.column_pitch);
    // With more points than this in a direction, the product below could overflow.
    if (rows < 1 || columns < 1 || rows > largest_opcode_list || columns > largest_opcode_list)
        data_failure("{}: a gain map promises {} x {} points", path, columns, rows);
    map.grid.x = read_axis(path, columns, spacing_x, first_x);
    map.grid.y = read_axis(path, rows, spacing_y, first_y);
    read_gains(path, bytes, map);
    return map;
}

std::vector<GainMap> read_maps(const std::string& path, const std::string& list, Losses& losses) {
    std::vector<GainMap> maps;
    BigEndian bytes(path, list);
    uint32_t others = 0;
    for (uint32_t left = bytes.word(); left > 0; --left) {
        const uint32_t id = bytes.word();
        bytes.take(8); // version and flags
        const uint32_t size = bytes.word();
        const BigEndian parameters(path, bytes.take(size));
        if (id == gain_map_id)
            maps.push_back(read_map(path, parameters));
        else
            ++others;
    }
    if (maps.empty())
        data_failure("{}: its OpcodeList2 holds no GainMap: expected a DNG with lens shading", path);
    if (others > 0)
        losses.push_back(fmt::format("opcodes that are no gain maps are left out: {}", others));
    return maps;
}

void read_levels(DngMosaic& mosaic, ShadingFile& file) {
    const auto repeat = mosaic.values(tag::black_level_repeat_dim, 2),
               levels = mosaic.values(tag::black_level, 4);
    const auto white = mosaic.values(tag::white_level, 1);
    const auto in_range = [](double level) { return level >= 0 && level <= 65535; };
    if (!white.empty() && in_range(white[0]))
        file.bits = std::clamp(static_cast<int>(std::bit_width(static_cast<unsigned>(white[0]))), 8, 16);
    const bool each = repeat == std::vector<double>{2, 2} && levels.size() == 4;
    if (levels.empty() || !std::ranges::all_of(levels, in_range))
        return;
    file.black.emplace();
    for (size_t plane = 0; plane < 4; ++plane)
        (*file.black)[plane] = static_cast<int>(std::lround(levels[each ? plane : 0]));
}

const GainMap& map_of_plane(const std::string& path, const std::vector<GainMap>& maps, int plane,
                            const ShadingSet& set) {
    const GainMap* found = nullptr;
    for (const GainMap& map : maps) {
        if (!map.covers(plane))
            continue;
        if (found != nullptr)
            data_failure("{}: has several gain maps for one plane: expected one for each", path);
        found = &map;
    }
    if (found == nullptr)
        data_failure("{}: has no gain map for plane {}: expected one for each", path, plane);
    const auto width = static_cast<uint32_t>(set.width), height = static_cast<uint32_t>(set.height);
    if (found->top > 1 || found->left > 1 || found->bottom + 1 < height || found->right + 1 < width)
        data_failure("{}: the gain map of plane {} ends before the frame of {} x {}", path, plane, set.width,
                     set.height);
    return *found;
}

} // namespace

ShadingFile read_gain_maps(InputFile& input) {
    DngMosaic mosaic(input);
    const TiffEntry* const opcodes = mosaic.directory.find(tag::opcode_list_2);
    if (opcodes == nullptr)
        data_failure("{}: its mosaic has no OpcodeList2: expected a DNG with lens shading", mosaic.path());
    ShadingFile file;
    file.format = "dng";
    const auto maps = read_maps(mosaic.path(), mosaic.tiff.bytes(*opcodes, largest_opcode_list), file.losses);
    file.pattern = mosaic.pattern();
    read_levels(mosaic, file);
    ShadingSet set;
    const FrameSize size = mosaic.size();
    set.width = size.width & ~1;
    set.height = size.height & ~1;
    for (int plane = 0; plane < ZERKLSC_CHANNELS; ++plane) {
        const GainMap& map = map_of_plane(mosaic.path(), maps, plane, set);
        set.of(colour_of_plane(*file.pattern, plane)) = surface_of(map.grid);
        file.spacing_x = std::min(file.spacing_x, map.grid.x.spacing);
        file.spacing_y = std::min(file.spacing_y, map.grid.y.spacing);
    }
    file.sets.push_back(std::move(set));
    return file;
}

} // namespace zerklsc::tool
