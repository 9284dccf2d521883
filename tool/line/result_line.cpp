// name_of, text_of
#include "line/result_line.h"

#include "io/base64.h"
#include "io/json_value.h"

namespace zerklsc::tool {
namespace {

template <class T>
JsonValue value_of(const T& value) {
    return JsonValue(value);
}

JsonValue value_of(const std::array<double, 2>& point) {
    return JsonValue::list(point);
}

// 16-bit words, the low byte first.
JsonValue value_of(const std::vector<uint16_t>& gains) {
    std::string bytes;
    bytes.reserve(2 * gains.size());
    for (const uint16_t gain : gains)
        bytes += {static_cast<char>(gain), static_cast<char>(gain >> 8)};
    return base64_of(bytes);
}

template <class T>
JsonValue value_of(const ByColour<T>& values) {
    JsonValue object = JsonValue::object();
    for (const Colour colour : all_colours)
        object.add(name_of(colour), value_of(values[static_cast<size_t>(colour)]));
    return object;
}

JsonValue value_of(const ResultFrame& frame) {
    return JsonValue::object({{"width", frame.width},
                              {"height", frame.height},
                              {"bits", frame.bits},
                              {"pattern", name_of(frame.pattern)},
                              {"black_level", JsonValue::list(frame.black)}});
}

JsonValue value_of(const ResultGrid& grid) {
    return JsonValue::object({{"algorithm", grid.algorithm},
                              {"step", grid.step},
                              {"width", grid.width},
                              {"height", grid.height},
                              {"filter_radius", grid.filter_radius},
                              {"shading_percent", grid.shading_percent}});
}

template <class T>
JsonValue or_null(const std::optional<T>& value) {
    return value ? value_of(*value) : JsonValue::null();
}

JsonValue or_null(const std::string& text) {
    return text.empty() ? JsonValue::null() : JsonValue(text);
}

JsonValue value_of(const std::vector<ResultFile>& files) {
    JsonValue list = JsonValue::array();
    for (const ResultFile& file : files)
        list.add(JsonValue::object({{"file", file.name}, {"sha256", or_null(file.sha256)}}));
    return list;
}

JsonValue value_of(const std::vector<ResultCheck>& checks) {
    JsonValue list = JsonValue::array();
    for (const ResultCheck& check : checks)
        list.add(JsonValue::object({{"name", check.name},
                                    {"plane", or_null(check.plane)},
                                    {"value", or_null(check.value)},
                                    {"verdict", name_of(check.verdict)}}));
    return list;
}

JsonValue value_of(const ResultNumbers& numbers) {
    return JsonValue::object({{"flatness", or_null(numbers.flatness)},
                              {"corner", or_null(numbers.corner)},
                              {"predicted_flatness", or_null(numbers.predicted_flatness)},
                              {"otp_bytes", or_null(numbers.otp_bytes)},
                              {"otp_loss", or_null(numbers.otp_loss)}});
}

} // namespace

const char* name_of(ModuleVerdict verdict) {
    return module_verdict_names[static_cast<size_t>(verdict)];
}

std::string text_of(const ResultLine& result) {
    return JsonValue::object({{"format", result_format_name},
                              {"version", result_format_version},
                              {"serial", result.serial},
                              {"preset", or_null(result.preset)},
                              {"illuminant", or_null(result.illuminant)},
                              {"settings", or_null(result.settings)},
                              {"verdict", name_of(result.verdict)},
                              {"reason", result.reason},
                              {"inputs", value_of(result.inputs)},
                              {"outputs", value_of(result.outputs)},
                              {"frame", or_null(result.frame)},
                              {"grid", or_null(result.grid)},
                              {"checks", value_of(result.checks)},
                              {"numbers", value_of(result.numbers)},
                              {"optical_centre", or_null(result.optical_centre)},
                              {"gains", or_null(result.gains)},
                              {"tool", result.tool}})
        .line();
}

} // namespace zerklsc::tool
