// result_line_of
#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

#include "failure.h"
#include "io/base64.h"
#include "io/json_text.h"
#include "line/result_line.h"

namespace zerklsc::tool {
namespace {

using nlohmann::json;

constexpr int any_int = std::numeric_limits<int>::max();

// An object of a line, whose place and field the failures name.
class ResultReader {
  public:
    ResultReader(const std::string& place, const json& object) : place_(place), object_(object) {
        if (!object.is_object())
            data_failure("{}: is no result of zerklsc batch: not a JSON object", place);
    }

    const json& field(const char* name) const {
        const auto found = object_.find(name);
        if (found == object_.end())
            data_failure("{}: has no \"{}\": expected a line as zerklsc batch writes it", place_, name);
        return *found;
    }

    bool is_null(const char* name) const { return field(name).is_null(); }
    ResultReader object(const char* name) const { return {place_, field(name)}; }

    const std::string& text(const char* name) const {
        if (!field(name).is_string())
            wrong(name, "a text");
        return field(name).get_ref<const std::string&>();
    }

    std::optional<std::string> text_or_null(const char* name) const {
        return is_null(name) ? std::nullopt : std::optional(text(name));
    }

    int64_t integer(const char* name, int64_t lowest, int64_t highest) const {
        return integer_of(field(name), name, lowest, highest);
    }

    int integer(const char* name, int lowest, int highest) const {
        return static_cast<int>(integer(name, int64_t{lowest}, int64_t{highest}));
    }

    double number(const char* name) const { return number_of(field(name), name); }

    std::optional<double> number_or_null(const char* name) const {
        return is_null(name) ? std::nullopt : std::optional(number(name));
    }

    const json& list(const char* name) const {
        if (!field(name).is_array())
            wrong(name, "a list");
        return field(name);
    }

    const json& list(const char* name, size_t length) const {
        if (list(name).size() != length)
            wrong(name, fmt::format("a list of {}", length));
        return field(name);
    }

    // The number of the word that a field holds.
    template <size_t N>
    size_t one_of(const char* name, const std::array<const char*, N>& words) const {
        for (size_t i = 0; i < N; ++i)
            if (text(name) == words[i])
                return i;
        wrong(name, "a word that is known there");
    }

    int64_t integer_of(const json& value, const char* name, int64_t lowest, int64_t highest) const {
        // What does not fit 64 bits with a sign would wrap.
        const bool fits = value.is_number_integer()
                          && (!value.is_number_unsigned() || value.get<uint64_t>() <= uint64_t(highest));
        const int64_t number = fits ? value.get<int64_t>() : lowest - 1;
        if (number < lowest || number > highest)
            wrong(name, fmt::format("a whole number from {} to {}", lowest, highest));
        return number;
    }

    double number_of(const json& value, const char* name) const {
        if (!value.is_number())
            wrong(name, "a number");
        return value.get<double>();
    }

    [[noreturn]] void wrong(const char* name, const std::string& expected) const {
        data_failure("{}: \"{}\" is not {}", place_, name, expected);
    }

    const std::string& place() const { return place_; }

  private:
    const std::string& place_;
    const json& object_;
};

std::vector<ResultFile> files_of(const ResultReader& reader, const char* name) {
    std::vector<ResultFile> files;
    for (const json& object : reader.list(name)) {
        const ResultReader file(reader.place(), object);
        files.push_back({file.text("file"), file.text_or_null("sha256").value_or("")});
    }
    return files;
}

ResultFrame frame_of(const ResultReader& reader) {
    ResultFrame frame;
    frame.width = reader.integer("width", 2, largest_side);
    frame.height = reader.integer("height", 2, largest_side);
    frame.bits = reader.integer("bits", 8, 16);
    frame.pattern = static_cast<BayerPattern>(reader.one_of("pattern", bayer_pattern_names));
    const json& black = reader.list("black_level", frame.black.size());
    for (size_t plane = 0; plane < frame.black.size(); ++plane)
        frame.black[plane] = static_cast<int>(reader.integer_of(black[plane], "black_level", 0, 65535));
    return frame;
}

ResultGrid grid_of(const ResultReader& reader) {
    return {reader.integer("algorithm", 0, 4),         reader.integer("step", 1, 255),
            reader.integer("width", 1, largest_side),  reader.integer("height", 1, largest_side),
            reader.integer("filter_radius", 0, 65535), reader.integer("shading_percent", 0, 65535)};
}

std::vector<ResultCheck> checks_of(const ResultReader& reader) {
    constexpr std::array<const char*, 3> verdicts{"pass", "warn", "refuse"};
    std::vector<ResultCheck> checks;
    for (const json& object : reader.list("checks")) {
        const ResultReader check(reader.place(), object);
        checks.push_back({check.text("name"), check.text_or_null("plane").value_or(""),
                          check.number_or_null("value"),
                          static_cast<Verdict>(check.one_of("verdict", verdicts))});
    }
    return checks;
}

// Calls `read` with the object and the name of each colour.
template <class T, class Read>
std::optional<ByColour<T>> by_colour(const ResultReader& reader, const char* name, const Read& read) {
    if (reader.is_null(name))
        return std::nullopt;
    const ResultReader object = reader.object(name);
    ByColour<T> values;
    for (const Colour colour : all_colours)
        values[static_cast<size_t>(colour)] = read(object, name_of(colour));
    return values;
}

ResultNumbers numbers_of(const ResultReader& reader) {
    const auto number = [](const ResultReader& object, const char* name) { return object.number(name); };
    ResultNumbers numbers;
    numbers.flatness = by_colour<double>(reader, "flatness", number);
    numbers.corner = by_colour<double>(reader, "corner", number);
    numbers.predicted_flatness = by_colour<double>(reader, "predicted_flatness", number);
    if (!reader.is_null("otp_bytes"))
        numbers.otp_bytes = reader.integer("otp_bytes", 0, any_int);
    numbers.otp_loss = reader.number_or_null("otp_loss");
    return numbers;
}

std::array<double, 2> point_of(const ResultReader& reader, const char* name) {
    const json& list = reader.list(name, 2);
    return {reader.number_of(list[0], name), reader.number_of(list[1], name)};
}

std::vector<uint16_t> gains_of(const ResultReader& reader, const char* name, std::string_view text,
                               size_t count) {
    const auto bytes = bytes_of_base64(text);
    if (!bytes || bytes->size() != 2 * count)
        reader.wrong(name, fmt::format("the base64 text of {} gains", count));
    std::vector<uint16_t> gains(count);
    for (size_t i = 0; i < count; ++i)
        gains[i] = static_cast<uint16_t>(static_cast<uint8_t>((*bytes)[2 * i])
                                         | static_cast<uint8_t>((*bytes)[2 * i + 1]) << 8);
    return gains;
}

void read_calibration(const ResultReader& reader, ResultLine& result) {
    if (!reader.is_null("frame"))
        result.frame = frame_of(reader.object("frame"));
    if (!reader.is_null("grid"))
        result.grid = grid_of(reader.object("grid"));
    result.checks = checks_of(reader);
    result.numbers = numbers_of(reader.object("numbers"));
    result.optical_centre = by_colour<std::array<double, 2>>(reader, "optical_centre", point_of);
    const size_t nodes = result.grid ? result.grid->nodes() : 0;
    result.gains =
        by_colour<std::vector<uint16_t>>(reader, "gains", [&](const ResultReader& object, const char* name) {
            return gains_of(object, name, object.text(name), nodes);
        });
}

void check_format(const ResultReader& reader) {
    if (reader.text("format") != result_format_name)
        data_failure("{}: is of format \"{}\", not \"{}\"", reader.place(), reader.text("format"),
                     result_format_name);
    const int version = reader.integer("version", 1, any_int);
    if (version > result_format_version)
        data_failure("{}: is a result of version {}, and this tool reads up to version {}: use the tool that "
                     "wrote it",
                     reader.place(), version, result_format_version);
}

ResultLine result_of(const json& object, const std::string& place) {
    const ResultReader reader(place, object);
    check_format(reader);
    ResultLine result;
    result.serial = reader.text("serial");
    result.preset = reader.text_or_null("preset");
    result.illuminant = reader.text_or_null("illuminant");
    result.settings = reader.text_or_null("settings");
    result.verdict = static_cast<ModuleVerdict>(reader.one_of("verdict", module_verdict_names));
    result.reason = reader.text("reason");
    result.inputs = files_of(reader, "inputs");
    result.outputs = files_of(reader, "outputs");
    read_calibration(reader, result);
    result.tool = reader.text("tool");
    return result;
}

// The gains as text_of() writes them: most of a line, which the parser would take letter by letter.
struct GainsText {
    std::string_view whole; // from the comma before them to their closing brace
    ByColour<std::string_view> gains;
};

std::optional<GainsText> find_gains(std::string_view line) {
    constexpr ByColour<std::string_view> before{",\"gains\":{\"R\":\"", ",\"Gr\":\"", ",\"Gb\":\"",
                                                ",\"B\":\""};
    GainsText found;
    const size_t start = line.find(before[0]);
    size_t at = start;
    for (size_t c = 0; c < before.size(); ++c) {
        if (at == std::string_view::npos || line.substr(at, before[c].size()) != before[c])
            return {};
        at += before[c].size();
        const size_t end = line.find('"', at);
        if (end == std::string_view::npos)
            return {};
        found.gains[c] = line.substr(at, end - at);
        if (found.gains[c].find('\\') != std::string_view::npos)
            return {};
        at = end + 1;
    }
    if (line.substr(at, 1) != "}")
        return {};
    found.whole = line.substr(start, at + 1 - start);
    return found;
}

} // namespace

ResultLine result_line_of(std::string_view line, const std::string& place) {
    const auto found = find_gains(line);
    if (!found)
        return result_of(parse_json(line), place);
    const auto start = static_cast<size_t>(found->whole.data() - line.data());
    std::string rest(line.substr(0, start));
    rest += ",\"gains\":false"; // which no line has of its own
    rest += line.substr(start + found->whole.size());
    json object = parse_json(rest);
    // Where the text stood somewhere deeper, the parser sees it after all.
    if (!object.is_object() || !object.contains("gains") || object["gains"] != false)
        return result_of(parse_json(line), place);
    object["gains"] = nullptr;
    ResultLine result = result_of(object, place);
    const ResultReader reader(place, object);
    result.gains.emplace();
    for (size_t c = 0; c < found->gains.size(); ++c)
        (*result.gains)[c] = gains_of(reader, name_of(all_colours[c]), found->gains[c],
                                      result.grid ? result.grid->nodes() : 0);
    return result;
}

} // namespace zerklsc::tool
