// encode_c_array, encode_csv, encode_npy
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "convert/table_formats.h"

namespace zerklsc::tool {
namespace {

std::string row_text(const GainTables& tables, size_t plane, int row) {
    const auto first = tables.gains[plane].begin() + row * tables.table_width;
    return fmt::format("{}", fmt::join(first, first + tables.table_width, ", "));
}

} // namespace

std::string encode_c_array(const GainTables& tables) {
    std::string text = fmt::format(
        "/* Gain tables by plane (column parity + 2 * row parity), 1024 = 1.0, a border of one node around.\n"
        " * Frames of {} x {} pixels, pattern {}, nodes every {} plane samples. */\n"
        "#include <stdint.h>\n\nstatic const uint16_t lsc_gains[4][{}][{}] = {{\n",
        tables.raw_width, tables.raw_height, name_of(tables.pattern), tables.step, tables.table_height,
        tables.table_width);
    for (size_t plane = 0; plane < tables.gains.size(); ++plane) {
        text += "    {\n";
        for (int row = 0; row < tables.table_height; ++row)
            text += fmt::format("        {{{}}},\n", row_text(tables, plane, row));
        text += "    },\n";
    }
    return text + "};\n";
}

std::string encode_csv(const GainTables& tables) {
    std::string text = "plane,colour,row,column,gain\n";
    for (size_t plane = 0; plane < tables.gains.size(); ++plane)
        for (size_t i = 0; i < tables.table_size(); ++i)
            text += fmt::format("{},{},{},{},{}\n", plane,
                                name_of(colour_of_plane(tables.pattern, static_cast<int>(plane))),
                                i / static_cast<size_t>(tables.table_width),
                                i % static_cast<size_t>(tables.table_width), tables.gains[plane][i]);
    return text;
}

std::string encode_npy(const GainTables& tables) {
    // Format version 1.0: the header is padded so that the data begin at a multiple of 64 bytes.
    std::string header = fmt::format("{{'descr': '<u2', 'fortran_order': False, 'shape': (4, {}, {}), }}",
                                     tables.table_height, tables.table_width);
    constexpr size_t prefix = 10;
    header.resize((prefix + header.size() + 1 + 63) / 64 * 64 - prefix - 1, ' ');
    header += '\n';
    std::string bytes("\x93NUMPY\x01\x00", 8);
    bytes += static_cast<char>(header.size() & 0xFF);
    bytes += static_cast<char>(header.size() >> 8);
    bytes += header;
    for (const auto& gains : tables.gains)
        for (const uint16_t gain : gains) {
            bytes += static_cast<char>(gain & 0xFF);
            bytes += static_cast<char>(gain >> 8);
        }
    return bytes;
}

} // namespace zerklsc::tool
