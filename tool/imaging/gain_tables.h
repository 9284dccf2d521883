// A set of four gain tables with all that is known about where they come from.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "imaging/bayer_pattern.h"
#include "imaging/finding.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// What was kept out of the averages that gains are made from.
struct KeptOut {
    int samples = 0, lines = 0, dust_spots = 0;

    bool any() const { return samples > 0 || lines > 0 || dust_spots > 0; }
};

// A file that tables were made from.
struct TableInput {
    std::string role;   // "flat field"
    std::string name;   // of the file, without its directory
    std::string sha256; // in hexadecimal digits; nothing where the file could be read but once
    Findings checks;    // what was found in a flat field
    KeptOut kept_out;   // of the gains
};

struct GainTables {
    int raw_width = 0;
    int raw_height = 0;
    int step = 0;      // in plane samples, the same in both directions
    int algorithm = 0; // ZERKLSC_ALGORITHM_...
    int filter_radius = 0;
    int shading_percent = 100;
    std::string average = "mean"; // how several captures became one
    BayerPattern pattern = BayerPattern::rggb;
    BlackLevel black{};             // at `bits`
    int bits = 0;                   // of the capture
    std::vector<TableInput> inputs; // nothing where they are not known
    int table_width = 0;            // border included
    int table_height = 0;
    std::array<std::vector<uint16_t>, 4> gains; // by plane number, row by row, 1024 = gain 1.0
    // The tables that these are to be multiplied by: then 1024 is their gain, not 1.0.
    std::optional<TableInput> relative_to;

    int plane_width() const { return raw_width / 2; }
    int plane_height() const { return raw_height / 2; }
    size_t table_size() const { return static_cast<size_t>(table_width) * static_cast<size_t>(table_height); }

    // Sets the table size that goes with the raw size and the step.
    void set_table_size();
    // The same, and makes the tables that long.
    void resize();
    // The four tables, as the library takes them.
    std::array<uint16_t*, 4> pointers();
    // The largest gain of the nodes that are not border, as a factor.
    double largest_gain(int plane) const;
};

// The largest and smallest step that the records and both ISPs take.
constexpr int smallest_step = 1;
constexpr int largest_step = 255;

// "orvel" for 2.
const char* algorithm_name(int algorithm);

} // namespace zerklsc::tool
