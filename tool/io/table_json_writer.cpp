// encode_table_json, encode_tables_for, check_table_name
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "failure.h"
#include "io/findings_json.h"
#include "io/input_file.h"
#include "io/input_record.h"
#include "io/table_json.h"
#include "io/table_text.h"

namespace zerklsc::tool {
namespace {

// One grid row a line, so that people can read the tables and compare two files.
std::string encode_table(const GainTables& tables, int plane) {
    std::string rows;
    const auto& gains = tables.gains[static_cast<size_t>(plane)];
    for (int j = 0; j < tables.table_height; ++j) {
        const auto row = gains.begin() + j * tables.table_width;
        rows += fmt::format("{}        [{}]", j == 0 ? "" : ",\n",
                            fmt::join(row, row + tables.table_width, ", "));
    }
    return fmt::format(
        "    {{\n      \"plane\": {},\n      \"colour\": \"{}\",\n      \"gains\": [\n{}\n      ]\n    }}",
        plane, name_of(colour_of_plane(tables.pattern, plane)), rows);
}

JsonValue parameters_of(const GainTables& tables) {
    return JsonValue::object({{"algorithm", tables.algorithm},
                              {"algorithm_name", algorithm_name(tables.algorithm)},
                              {"filter_radius", tables.filter_radius},
                              {"shading_percent", tables.shading_percent},
                              {"average", tables.average}});
}

JsonValue inputs_of(const GainTables& tables) {
    JsonValue list = JsonValue::array();
    for (const TableInput& input : tables.inputs) {
        JsonValue object = json_of(input);
        object.add("checks", json_of(input.checks));
        if (input.kept_out.any())
            object.add("kept_out", json_of(input.kept_out));
        list.add(std::move(object));
    }
    return list;
}

// What stands before the gains.
JsonValue head_of(const GainTables& tables) {
    JsonValue head =
        JsonValue::object({{"format", table_format_name},
                           {"version", table_format_version},
                           {"raw_size", JsonValue::array({tables.raw_width, tables.raw_height})},
                           {"plane_size", JsonValue::array({tables.plane_width(), tables.plane_height()})},
                           {"step", tables.step},
                           {"table_size", JsonValue::array({tables.table_width, tables.table_height})},
                           {"bayer_pattern", name_of(tables.pattern)},
                           {"black_level", JsonValue::list(tables.black)},
                           {"bit_depth", tables.bits},
                           {"parameters", parameters_of(tables)}});
    if (tables.relative_to)
        head.add("relative_to", json_of(*tables.relative_to));
    return head;
}

} // namespace

std::string encode_table_json(const GainTables& tables) {
    const std::string head = head_of(tables).text();
    const std::string inputs = JsonValue::object({{"inputs", inputs_of(tables)}}).text();
    // The gains are too many to be held as values: their text stands between those of two objects.
    std::string text = head.substr(0, head.rfind('\n')) + ",\n  \"tables\": [\n";
    for (int plane = 0; plane < 4; ++plane)
        text += (plane == 0 ? "" : ",\n") + encode_table(tables, plane);
    return text + "\n  ]," + inputs.substr(inputs.find('\n')) + "\n";
}

std::string encode_tables_for(const std::string& path, const GainTables& tables) {
    return extension_of(path) == ".txt" ? encode_table_text(tables) : encode_table_json(tables);
}

void check_table_name(const std::string& path) {
    const std::string extension = extension_of(path);
    if (!extension.empty() && extension != ".json" && extension != ".txt")
        usage_failure(
            "{}: names no form in which tables are written: give a name that ends in .json, or .txt for "
            "the gains alone",
            path);
}

} // namespace zerklsc::tool
