// shortened, json_of
#include "io/findings_json.h"

#include <cmath>

#include <fmt/format.h>

namespace zerklsc::tool {
namespace {

JsonValue limit_json(const std::optional<double>& limit) {
    return limit ? JsonValue(*limit) : JsonValue::null();
}

} // namespace

double shortened(double value) {
    return std::isfinite(value) ? std::stod(fmt::format("{:.4g}", value)) : value;
}

JsonValue json_of(const Findings& findings) {
    JsonValue list = JsonValue::array();
    for (const Finding& f : findings)
        list.add(JsonValue::object({{"name", f.name},
                                    {"plane", f.plane.empty() ? JsonValue::null() : JsonValue(f.plane)},
                                    {"value", shortened(f.value)},
                                    {"unit", f.unit},
                                    {"limit_warn", limit_json(f.limits.warn)},
                                    {"limit_refuse", limit_json(f.limits.refuse)},
                                    {"verdict", name_of(f.verdict)},
                                    {"advice", f.advice}}));
    return list;
}

JsonValue json_of(const KeptOut& kept_out) {
    return JsonValue::object(
        {{"samples", kept_out.samples}, {"lines", kept_out.lines}, {"dust_spots", kept_out.dust_spots}});
}

} // namespace zerklsc::tool
