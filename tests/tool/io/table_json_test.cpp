// Table files, one field after the other changed to what it may be at most and to one more.
#include "io/table_json.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "support/memory_file.h"
#include "told.h"

namespace zerklsc::tool {
namespace {

// Frames of 12 x 8 with a step of 2 have tables of 6 x 5; gains count up over all four.
std::string table_file() {
    std::string text =
        R"({"format": "zerklsc-tables", "version": 2, "raw_size": [12, 8], "step": 2, "table_size": [6, 5], )"
        R"("bayer_pattern": "GBRG", "black_level": [60, 61, 62, 63], "bit_depth": 12, "parameters": )"
        R"({"algorithm": 3, "filter_radius": 7, "shading_percent": 90, "average": "median"}, "relative_to": )"
        R"({"role": "golden", "name": "g.json", "sha256": "ab"}, "inputs": [{"role": "flat field", "name": "a.pgm", )"
        R"("sha256": null, "kept_out": {"samples": 1, "lines": 2, "dust_spots": 3}, "checks": [{"name": "dust", )"
        R"("plane": "Gb", "value": 1.5, "unit": "%", "limit_warn": 2, "limit_refuse": null, "verdict": "warn", )"
        R"("advice": "clean"}, {"name": "step", "plane": null, "value": null, "unit": "x", "limit_warn": null, )"
        R"("limit_refuse": 0.5, "verdict": "refuse", "advice": ""}]}], "tables": [)";
    for (int plane = 0; plane < 4; ++plane) {
        text += fmt::format("{}{{\"plane\": {}, \"gains\": [", plane == 0 ? "" : ", ", plane);
        for (int node = 0; node < 30; ++node)
            text += fmt::format("{}{}{}", node % 6 == 0 ? (node == 0 ? "[" : ", [") : ", ",
                                1000 + 30 * plane + node, node % 6 == 5 ? "]" : "");
        text += "]}";
    }
    return text + "]}";
}

std::string description_of(const GainTables& t) {
    std::string text = fmt::format("{}x{} {} {}x{} {} {} {} {} {} {} {}", t.raw_width, t.raw_height, t.step,
                                   t.table_width, t.table_height, name_of(t.pattern), text_of(t.black),
                                   t.bits, t.algorithm, t.filter_radius, t.shading_percent, t.average);
    if (t.relative_to)
        text += fmt::format("; {} {} {}", t.relative_to->role, t.relative_to->name, t.relative_to->sha256);
    for (const TableInput& input : t.inputs) {
        text += fmt::format("; {} {} {} {} {} {}", input.role, input.name, input.sha256,
                            input.kept_out.samples, input.kept_out.lines, input.kept_out.dust_spots);
        for (const Finding& f : input.checks)
            text += fmt::format(", {} {} {} {} {} {} {} {}", f.name, f.plane, f.value, f.unit,
                                f.limits.warn.value_or(-1), f.limits.refuse.value_or(-1), name_of(f.verdict),
                                f.advice);
    }
    return text;
}

// What is read of the file with one text in place of another, or the fault that is found.
std::string read_with(const std::string& from, const std::string& to) {
    std::string text = table_file();
    EXPECT_NE(text.find(from), std::string::npos) << from;
    const fuzz::MemoryFile file(text.replace(text.find(from), from.size(), to));
    return told_by([&] { return description_of(read_table_json(file.path())); });
}

TEST(TableJson, IsReadFieldByField) {
    EXPECT_EQ(read_with("\"", "\""),
              "12x8 2 6x5 GBRG 60,61,62,63 12 3 7 90 median; golden g.json ab; flat field a.pgm  1 2 3, "
              "dust Gb 1.5 % 2 -1 warn clean, step  nan x -1 0.5 refuse ");
    const fuzz::MemoryFile file(table_file());
    const GainTables tables = read_table_json(file.path());
    for (size_t plane = 0; plane < 4; ++plane)
        for (size_t node = 0; node < 30; ++node)
            EXPECT_EQ(tables.gains[plane].at(node), 1000 + 30 * plane + node);
    EXPECT_THROW(read_whole_gains(file.path()), Failure);
}

TEST(TableJson, HoldsEachNumberToBothEnds) {
    const struct {
        const char *before, *number, *field;
        int lowest, highest;
    } numbers[] = {{"raw_size\": [", "12", "raw_size", 2, 65534},
                   {"raw_size\": [12, ", "8", "raw_size", 2, 65534},
                   {"step\": ", "2", "step", 1, 255},
                   {"table_size\": [", "6", "table_size", 1, 2147483647},
                   {"table_size\": [6, ", "5", "table_size", 1, 2147483647},
                   {"black_level\": [", "60", "black_level", 0, 65535},
                   {"black_level\": [60, 61, 62, ", "63", "black_level", 0, 65535},
                   {"bit_depth\": ", "12", "bit_depth", 8, 16},
                   {"algorithm\": ", "3", "algorithm", 0, 4},
                   {"filter_radius\": ", "7", "filter_radius", 0, 65535},
                   {"shading_percent\": ", "90", "shading_percent", 0, 65535},
                   {"samples\": ", "1", "samples", 0, 2147483647},
                   {"lines\": ", "2", "lines", 0, 2147483647},
                   {"dust_spots\": ", "3", "dust_spots", 0, 2147483647},
                   {"plane\": ", "0", "plane", 0, 0},
                   {"1117, 1118, ", "1119", "gains", 0, 65535}};
    for (const auto& n : numbers)
        for (const int64_t value :
             {int64_t{n.lowest} - 1, int64_t{n.lowest}, int64_t{n.highest}, int64_t{n.highest} + 1}) {
            const std::string fault =
                fmt::format("\"{}\" holds {}, which is not a whole number from {} to {}", n.field, value,
                            n.lowest, n.highest);
            EXPECT_EQ(read_with(std::string(n.before) + n.number, n.before + std::to_string(value)) == fault,
                      value < n.lowest || value > n.highest)
                << n.before << value;
        }
}

TEST(TableJson, NamesTheFieldThatIsWrong) {
    const struct {
        const char *from, *to, *fault;
    } cases[] = {
        {"zerklsc-tables", "tables", "is of format \"tables\", not \"zerklsc-tables\""},
        {"\"version\": 2", "\"version\": 3",
         "is a table file of version 3, and this tool reads up to version 2"},
        {"\"parameters\"", "\"par\"",
         "has no \"parameters\": expected a table file as zerklsc calibrate writes it"},
        {"\"bit_depth\"", "\"depth\"", "has no \"bit_depth\""},
        {"\"inputs\"", "\"in\"", "has no \"inputs\""},
        {"\"inputs\": [", "\"inputs\": [3, ", "has no \"role\""},
        {"\"sha256\": null", "\"sha256\": 7", "\"sha256\" is not a text"},
        {"\"checks\"", "\"check\"", "has no \"checks\""},
        {"\"version\": 2", "\"version\": 0", "\"version\" holds 0, which is not"},
        {"[12, 8]", "[13, 8]", "\"raw_size\" of 13 x 8 is not whole"},
        {"[12, 8]", "[12, 9]", "\"raw_size\" of 12 x 9 is not whole"},
        {"[12, 8]", "[12, 8, 8]", "\"raw_size\" is not a list of 2 numbers"},
        {"[12, 8]", "[12]", "\"raw_size\" is not a list of 2 numbers"},
        {"[12, 8]", "[8, 12]",
         "tables of 6 x 5 do not go with frames of 8 x 12 and step 2, which need 5 x 6"},
        {"[6, 5]", "[7, 5]", "tables of 7 x 5 do not go with"},
        {"[6, 5]", "[6, 6]", "tables of 6 x 6 do not go with"},
        {"\"step\": 2", "\"step\": 2.0", "\"step\" holds 2.0, which is not"},
        {"GBRG", "GBRR", "\"bayer_pattern\" holds \"GBRR\", which is not RGGB"},
        {"60, 61, 62, 63", "60, 61, 62", "\"black_level\" is not a list of 4 numbers"},
        {"60, 61, 62, 63", "60, 61, 62, 63, 64", "\"black_level\" is not a list of 4 numbers"},
        {"\"median\"", "7", "\"average\" is not a text"},
        {"\"warn\"", "\"ward\"", "\"verdict\" holds \"ward\", which is not pass, warn or refuse"},
        {"\"value\": 1.5", "\"value\": \"1\"", "\"value\" is neither a number nor null"},
        {"\"plane\": \"Gb\"", "\"plane\": 7", "\"plane\" is not a text"},
        {"\"advice\": \"clean\"", "\"hint\": \"clean\"", "has no \"advice\""},
        {"{\"samples\": 1, \"lines\": 2, \"dust_spots\": 3}", "[]", "has no \"samples\""},
        {"\"inputs\": [{", "\"inputs\": 7, \"in\": [{", "\"inputs\" is not a list"},
        {"\"plane\": 1,", "\"plane\": 2,", "\"plane\" holds 2, which is not a whole number from 1 to 1"},
        {"1030, ", "", "row 0 of plane 1 does not hold 6 gains"},
        {"1119]", "1119, 1]", "row 4 of plane 3 does not hold 6 gains"},
        {"[1114, 1115, 1116, 1117, 1118, 1119]", "{}", "row 4 of plane 3 does not hold 6 gains"},
        {", [1114, 1115, 1116, 1117, 1118, 1119]", "", "the gains of plane 3 are not 5 rows"},
        {"[1114,", "[1, 2, 3, 4, 5, 6], [1114,", "the gains of plane 3 are not 5 rows"},
        {", {\"plane\": 3, \"gains\"", "], \"more\": [{\"plane\": 3, \"gains\"", "does not hold four tables"},
        {"\"tables\": [", "\"tables\": [{\"plane\": 0}, ", "does not hold four tables"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(read_with(c.from, c.to).substr(0, std::string(c.fault).size()), c.fault) << c.to;
}

} // namespace
} // namespace zerklsc::tool
