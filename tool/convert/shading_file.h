// Files of camera stacks that hold lens shading, and the gain tables that come of them.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "convert/gain_surface.h"
#include "convert/table_formats.h"
#include "io/dng_mosaic.h"
#include "io/input_file.h"

namespace zerklsc::tool {

// The shading under light of one colour temperature.
struct ShadingSet {
    int kelvin = 0;            // 0 where the file does not say
    int width = 0, height = 0; // of the raw frame; 0 where the file does not say
    std::array<GainSurface, 4> by_colour;
    int at_limit = 0; // gains that the file may have limited

    GainSurface& of(Colour colour) { return by_colour[static_cast<size_t>(colour)]; }
};

struct ShadingFile {
    const char* format = nullptr; // as --to calls it
    std::optional<BayerPattern> pattern;
    std::optional<BlackLevel> black;
    int bits = 0;                        // 0 where the file does not say
    double spacing_x = 1, spacing_y = 1; // between nodes, as fractions of the frame
    bool has_nodes = true;               // false where a formula gives every gain
    std::vector<ShadingSet> sets;
    Losses losses; // what the file does not hold of the tables that it was made of
};

// No tuning file is longer, and no list of opcodes.
constexpr uint64_t largest_tuning_file = uint64_t{1} << 21;
constexpr uint64_t largest_opcode_list = uint64_t{1} << 24;

// Each throws a data failure that names the file and what is wrong.
// LensShadingCorrection of a libcamera tuning file; radial sets that say no size are for `size`,
// which is 0 where nobody says it.
ShadingFile read_rkisp1(const std::string& path, FrameSize size);
ShadingFile read_alsc(const std::string& path); // rpi.alsc of a Raspberry Pi tuning file
ShadingFile read_gain_maps(InputFile& file);    // GainMap opcodes (OpcodeList2) of a DNG

// Reads the file by its content; nothing where it is none of these.
std::optional<ShadingFile> read_shading_file(const std::string& path, FrameSize size);

// The names of the formats that are read, as "dng, alsc".
std::string shading_format_names();

// The tables of a set for frames and a step. `about` says all but the gains; `name` is for messages.
GainTables tables_of(const ShadingSet& set, GainTables about, const std::string& name, Losses& losses);

} // namespace zerklsc::tool
