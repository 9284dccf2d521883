// module_from_json
#include <nlohmann/json.hpp>

#include "io/json_text.h"
#include "line/manifest.h"

namespace zerklsc::tool {
namespace {

using nlohmann::json;

bool is_text_or_null(const json& value) {
    return value.is_string() || value.is_null();
}

// The text of a field that may be missing.
std::optional<std::string> text_of(const json& object, const char* name) {
    const auto found = object.find(name);
    return found == object.end() || found->is_null() ? std::nullopt
                                                     : std::optional(found->get<std::string>());
}

std::string fault_of(const json& object) {
    for (const auto& [name, value] : object.items()) {
        const bool right = name == "serial"                           ? value.is_string()
                           : name == "files"                          ? value.is_array()
                           : name == "preset" || name == "illuminant" ? is_text_or_null(value)
                                                                      : false;
        if (!right)
            return "\"" + name
                   + "\" is not of a module: expected \"serial\", \"files\" (a list), \"preset\" and "
                     "\"illuminant\"";
    }
    return "";
}

} // namespace

Module module_from_json(std::string_view line) {
    Module module;
    const json object = parse_json(line);
    if (!object.is_object()) {
        module.fault = "it is not a JSON object";
        return module;
    }
    if (object.contains("serial") && object["serial"].is_string())
        module.serial = object["serial"];
    module.fault = fault_of(object);
    if (!module.fault.empty())
        return module;
    module.preset = text_of(object, "preset");
    module.illuminant = text_of(object, "illuminant");
    if (!object.contains("files"))
        return module;
    for (const json& file : object["files"])
        module.files.push_back(file.is_string() ? file.get<std::string>() : "");
    return module;
}

} // namespace zerklsc::tool
