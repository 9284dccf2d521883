// parse_json, why_discarded, shown
#include "io/json_text.h"

#include <nlohmann/json.hpp>

namespace zerklsc::tool {
namespace {

using nlohmann::json;

// Tables have a list for each row, and eight million nodes at most.
constexpr size_t most_brackets_and_names = size_t{1} << 18, most_numbers = size_t{1} << 25;
// A list that grows is twice as large for a while: long ones are not let grow.
constexpr size_t longest_list = size_t{1} << 16;

// Where the string that begins at `at` ends.
size_t end_of_string(std::string_view text, size_t at) {
    for (++at; at < text.size() && text[at] != '"'; ++at)
        if (text[at] == '\\')
            ++at;
    return at;
}

bool is_bounded(std::string_view text) {
    size_t brackets_and_names = 0, numbers = 0, in_list = 0;
    int depth = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        switch (text[at]) {
        case '"':
            at = end_of_string(text, at);
            break;
        case '[':
        case '{':
            ++depth;
            [[fallthrough]];
        case ':':
            ++brackets_and_names;
            in_list = 0;
            break;
        case ']':
        case '}':
            --depth;
            in_list = 0;
            break;
        case ',':
            ++numbers;
            ++in_list;
            break;
        default:
            break;
        }
        if (depth > deepest_json || brackets_and_names > most_brackets_and_names || numbers > most_numbers
            || in_list > longest_list)
            return false;
    }
    return true;
}

} // namespace

json parse_json(std::string_view text) {
    return is_bounded(text) ? json::parse(text, nullptr, false) : json(json::value_t::discarded);
}

const char* why_discarded(std::string_view text) {
    return is_bounded(text) ? "is not valid JSON" : "is nested deeper or holds more than any table needs";
}

std::string shown(const json& value) {
    constexpr size_t longest = 40;
    const std::string text = value.dump(-1, ' ', false, json::error_handler_t::replace);
    return text.size() <= longest ? text : text.substr(0, longest) + "...";
}

} // namespace zerklsc::tool
