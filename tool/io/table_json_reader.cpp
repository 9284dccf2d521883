// read_table_json, read_whole_gains
#include "io/table_json.h"

#include <cmath>
#include <limits>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "failure.h"
#include "io/input_file.h"
#include "io/json_text.h"

namespace zerklsc::tool {
namespace {

using nlohmann::json;

// Looks fields up in one file, and names the file and the field when they are not as they must be.
class TableReader {
  public:
    TableReader(const std::string& path, const json& object) : path_(path), object_(object) {}

    const json& field(const char* name) const {
        if (!object_.is_object() || !object_.contains(name))
            data_failure("{}: has no \"{}\": expected a table file as zerklsc calibrate writes it", path_,
                         name);
        return object_[name];
    }

    int integer(const char* name, int lowest, int highest) const {
        return integer_of(field(name), name, lowest, highest);
    }

    std::string text(const char* name) const {
        if (!field(name).is_string())
            data_failure("{}: \"{}\" is not a text", path_, name);
        return field(name).get<std::string>();
    }

    // Nothing for null.
    std::string text_or_null(const char* name) const {
        return field(name).is_null() ? std::string() : text(name);
    }

    std::optional<double> number_or_null(const char* name) const {
        const json& value = field(name);
        if (!value.is_number() && !value.is_null())
            data_failure("{}: \"{}\" is neither a number nor null", path_, name);
        return value.is_null() ? std::nullopt : std::optional(value.get<double>());
    }

    const json& list(const char* name) const {
        if (!field(name).is_array())
            data_failure("{}: \"{}\" is not a list", path_, name);
        return field(name);
    }

    bool has(const char* name) const { return object_.is_object() && object_.contains(name); }

    template <size_t N>
    std::array<int, N> integers(const char* name, int lowest, int highest) const {
        const json& list = field(name);
        if (!list.is_array() || list.size() != N)
            data_failure("{}: \"{}\" is not a list of {} numbers", path_, name, N);
        std::array<int, N> values{};
        for (size_t i = 0; i < N; ++i)
            values[i] = integer_of(list[i], name, lowest, highest);
        return values;
    }

    int integer_of(const json& value, const char* name, int lowest, int highest) const {
        const bool integer = value.is_number_integer();
        const int64_t number = integer ? value.get<int64_t>() : 0;
        if (!integer || number < lowest || number > highest)
            data_failure("{}: \"{}\" holds {}, which is not a whole number from {} to {}", path_, name,
                         shown(value), lowest, highest);
        return static_cast<int>(number);
    }

    const std::string& path() const { return path_; }

  private:
    const std::string& path_;
    const json& object_;
};

json parse(const std::string& path) {
    const std::string bytes = read_file(path);
    json object = parse_json(bytes);
    if (object.is_discarded())
        data_failure("{}: {}: expected a table file as zerklsc calibrate writes it", input_name(path),
                     why_discarded(bytes));
    return object;
}

void check_version(const TableReader& reader) {
    if (reader.text("format") != table_format_name)
        data_failure("{}: is of format \"{}\", not \"{}\"", reader.path(), reader.text("format"),
                     table_format_name);
    const int version = reader.integer("version", 1, std::numeric_limits<int>::max());
    if (version > table_format_version)
        data_failure("{}: is a table file of version {}, and this tool reads up to version {}: use the tool "
                     "that wrote it",
                     reader.path(), version, table_format_version);
}

Verdict verdict_from(const TableReader& finding) {
    for (const Verdict verdict : {Verdict::pass, Verdict::warn, Verdict::refuse})
        if (finding.text("verdict") == name_of(verdict))
            return verdict;
    data_failure("{}: \"verdict\" holds \"{}\", which is not pass, warn or refuse", finding.path(),
                 finding.text("verdict"));
}

Findings read_findings(const std::string& path, const json& list) {
    Findings findings;
    for (const json& object : list) {
        const TableReader finding(path, object);
        findings.push_back({finding.text("name"),
                            finding.text_or_null("plane"),
                            finding.number_or_null("value").value_or(std::nan("")),
                            finding.text("unit"),
                            {finding.number_or_null("limit_warn"), finding.number_or_null("limit_refuse")},
                            verdict_from(finding),
                            finding.text("advice")});
    }
    return findings;
}

KeptOut read_kept_out(const TableReader& input) {
    if (!input.has("kept_out"))
        return {};
    const TableReader counts(input.path(), input.field("kept_out"));
    const auto count = [&](const char* name) {
        return counts.integer(name, 0, std::numeric_limits<int>::max());
    };
    return {count("samples"), count("lines"), count("dust_spots")};
}

std::vector<TableInput> read_inputs(const TableReader& reader) {
    std::vector<TableInput> inputs;
    for (const json& object : reader.list("inputs")) {
        const TableReader input(reader.path(), object);
        inputs.push_back({input.text("role"), input.text("name"), input.text_or_null("sha256"),
                          read_findings(reader.path(), input.list("checks")), read_kept_out(input)});
    }
    return inputs;
}

// Version 1 only has the names of the checks that refused the capture.
std::vector<TableInput> read_inputs_of_version_1(const TableReader& reader) {
    TableInput input{"flat field", "", "", {}, {}};
    if (!reader.has("failed_checks"))
        return {};
    for (const json& name : reader.list("failed_checks")) {
        if (!name.is_string())
            data_failure("{}: \"failed_checks\" is not a list of names", reader.path());
        input.checks.push_back({name.get<std::string>(), "", std::nan(""), "", {}, Verdict::refuse, ""});
    }
    return {input};
}

// What the calibration was told, which version 1 holds beside the geometry.
void read_parameters(const TableReader& reader, GainTables& tables) {
    tables.algorithm = reader.integer("algorithm", 0, 4);
    tables.filter_radius = reader.integer("filter_radius", 0, 65535);
    tables.shading_percent = reader.integer("shading_percent", 0, 65535);
}

void read_provenance(const TableReader& reader, GainTables& tables) {
    if (reader.integer("version", 1, table_format_version) == 1) {
        read_parameters(reader, tables);
        tables.inputs = read_inputs_of_version_1(reader);
        return;
    }
    const TableReader parameters(reader.path(), reader.field("parameters"));
    read_parameters(parameters, tables);
    tables.average = parameters.text("average");
    tables.inputs = read_inputs(reader);
    if (reader.has("relative_to")) {
        const TableReader golden(reader.path(), reader.field("relative_to"));
        tables.relative_to = {
            golden.text("role"), golden.text("name"), golden.text_or_null("sha256"), {}, {}};
    }
}

GainTables read_header(const TableReader& reader) {
    GainTables tables;
    const auto raw_size = reader.integers<2>("raw_size", 2, largest_side);
    tables.raw_width = raw_size[0];
    tables.raw_height = raw_size[1];
    if (tables.raw_width % 2 != 0 || tables.raw_height % 2 != 0)
        data_failure("{}: \"raw_size\" of {} x {} is not whole 2 x 2 Bayer cells", reader.path(),
                     tables.raw_width, tables.raw_height);
    tables.step = reader.integer("step", smallest_step, largest_step);
    read_provenance(reader, tables);
    const auto pattern = bayer_pattern_from(reader.text("bayer_pattern"));
    if (!pattern)
        data_failure("{}: \"bayer_pattern\" holds \"{}\", which is not RGGB, GRBG, GBRG or BGGR",
                     reader.path(), reader.text("bayer_pattern"));
    tables.pattern = *pattern;
    tables.black = reader.integers<4>("black_level", 0, 65535);
    tables.bits = reader.integer("bit_depth", 8, 16);
    // The tables themselves are made row by row as the file holds them, not from what it says in its head.
    tables.set_table_size();
    const auto size = reader.integers<2>("table_size", 1, std::numeric_limits<int>::max());
    if (size[0] != tables.table_width || size[1] != tables.table_height)
        data_failure("{}: tables of {} x {} do not go with frames of {} x {} and step {}, which need {} x {}",
                     reader.path(), size[0], size[1], tables.raw_width, tables.raw_height, tables.step,
                     tables.table_width, tables.table_height);
    return tables;
}

void read_gains(const std::string& path, const json& rows, GainTables& tables, size_t plane) {
    const TableReader reader(path, rows);
    const auto width = static_cast<size_t>(tables.table_width);
    const auto height = static_cast<size_t>(tables.table_height);
    if (!rows.is_array() || rows.size() != height)
        data_failure("{}: the gains of plane {} are not {} rows", path, plane, height);
    for (size_t j = 0; j < height; ++j) {
        if (!rows[j].is_array() || rows[j].size() != width)
            data_failure("{}: row {} of plane {} does not hold {} gains", path, j, plane, width);
        for (const json& gain : rows[j])
            tables.gains[plane].push_back(static_cast<uint16_t>(reader.integer_of(gain, "gains", 0, 65535)));
    }
}

} // namespace

GainTables read_table_json(const std::string& path) {
    const std::string name = input_name(path);
    const json object = parse(path);
    const TableReader reader(name, object);
    check_version(reader);
    GainTables tables = read_header(reader);
    const json& planes = reader.field("tables");
    if (!planes.is_array() || planes.size() != tables.gains.size())
        data_failure("{}: does not hold four tables", name);
    for (size_t i = 0; i < planes.size(); ++i) {
        const TableReader entry(name, planes[i]);
        // The planes stand in order, so that a file with two tables exchanged does not pass unnoticed.
        entry.integer("plane", static_cast<int>(i), static_cast<int>(i));
        read_gains(name, entry.field("gains"), tables, i);
    }
    return tables;
}

GainTables read_whole_gains(const std::string& path) {
    GainTables tables = read_table_json(path);
    if (tables.relative_to)
        data_failure("{}: holds ratios to the gains of {}: expected gains that are applied as they are",
                     input_name(path), tables.relative_to->name);
    return tables;
}

} // namespace zerklsc::tool
