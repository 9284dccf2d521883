// is_utf8, JsonValue
#include "io/json_value.h"

#include <cmath>

#include <fmt/core.h>

namespace zerklsc::tool {
namespace {

// The length of the UTF-8 sequence at the start of `bytes`; 0 where there is none.
size_t utf8_length(const unsigned char* bytes, size_t left) {
    struct Form {
        unsigned mask, lead, second_from, second_to;
        size_t length;
    };
    // The ranges of the second byte keep out forms that are too long, surrogates and what lies beyond
    // Unicode.
    constexpr Form forms[] = {{0x80, 0x00, 0, 0, 1},       {0xE0, 0xC0, 0x80, 0xBF, 2},
                              {0xFF, 0xE0, 0xA0, 0xBF, 3}, {0xFF, 0xED, 0x80, 0x9F, 3},
                              {0xF0, 0xE0, 0x80, 0xBF, 3}, {0xFF, 0xF0, 0x90, 0xBF, 4},
                              {0xFF, 0xF4, 0x80, 0x8F, 4}, {0xFC, 0xF0, 0x80, 0xBF, 4}};
    if (bytes[0] == 0xC0 || bytes[0] == 0xC1)
        return 0;
    for (const Form& form : forms) {
        if ((bytes[0] & form.mask) != form.lead)
            continue;
        if (form.length > left
            || (form.length > 1 && (bytes[1] < form.second_from || bytes[1] > form.second_to)))
            return 0;
        for (size_t i = 2; i < form.length; ++i)
            if ((bytes[i] & 0xC0) != 0x80)
                return 0;
        return form.length;
    }
    return 0;
}

std::string quoted(const std::string& text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    std::string out = "\"";
    for (size_t i = 0; i < text.size();) {
        const size_t length = utf8_length(bytes + i, text.size() - i);
        if (length == 0)
            out += "\\ufffd";
        else if (length > 1)
            out.append(text, i, length);
        else if (bytes[i] == '"' || bytes[i] == '\\')
            out += {'\\', text[i]};
        else if (bytes[i] < 0x20 || bytes[i] == 0x7F)
            out += fmt::format("\\u{:04x}", bytes[i]);
        else
            out += text[i];
        i += length == 0 ? 1 : length;
    }
    return out + '"';
}

} // namespace

bool is_utf8(std::string_view bytes) {
    const auto* const from = reinterpret_cast<const unsigned char*>(bytes.data());
    for (size_t i = 0, length = 0; i < bytes.size(); i += length)
        if ((length = utf8_length(from + i, bytes.size() - i)) == 0)
            return false;
    return true;
}

JsonValue::JsonValue(bool value) : JsonValue(Kind::plain, value ? "true" : "false") {}
JsonValue::JsonValue(int value) : JsonValue(Kind::plain, fmt::format("{}", value)) {}
JsonValue::JsonValue(int64_t value) : JsonValue(Kind::plain, fmt::format("{}", value)) {}
JsonValue::JsonValue(uint64_t value) : JsonValue(Kind::plain, fmt::format("{}", value)) {}
JsonValue::JsonValue(double value)
    : JsonValue(Kind::plain, std::isfinite(value) ? fmt::format("{}", value) : "null") {}
JsonValue::JsonValue(const char* text) : JsonValue(Kind::plain, quoted(text)) {}
JsonValue::JsonValue(const std::string& text) : JsonValue(Kind::plain, quoted(text)) {}

JsonValue JsonValue::null() {
    return {Kind::plain, "null"};
}

JsonValue JsonValue::object(std::vector<Member> members) {
    JsonValue value(Kind::object, "");
    for (Member& member : members)
        value.add(member.first, std::move(member.second));
    return value;
}

JsonValue JsonValue::array(std::vector<JsonValue> elements) {
    JsonValue value(Kind::array, "");
    value.parts_ = std::move(elements);
    return value;
}

void JsonValue::add(const std::string& name, JsonValue value) {
    names_.push_back(quoted(name));
    parts_.push_back(std::move(value));
}

void JsonValue::add(JsonValue element) {
    parts_.push_back(std::move(element));
}

void JsonValue::append(const JsonValue& object) {
    names_.insert(names_.end(), object.names_.begin(), object.names_.end());
    parts_.insert(parts_.end(), object.parts_.begin(), object.parts_.end());
}

std::string JsonValue::text() const {
    std::string out;
    write(out, "\n");
    return out;
}

std::string JsonValue::line() const {
    std::string out;
    write_line(out);
    return out;
}

void JsonValue::write_line(std::string& out) const {
    out += plain_;
    if (kind_ == Kind::plain)
        return;
    out += kind_ == Kind::object ? '{' : '[';
    for (size_t i = 0; i < parts_.size(); ++i) {
        out += i == 0 ? "" : ",";
        if (kind_ == Kind::object)
            out += names_[i] + ':';
        parts_[i].write_line(out);
    }
    out += kind_ == Kind::object ? '}' : ']';
}

void JsonValue::write(std::string& out, const std::string& line_start) const {
    if (kind_ == Kind::plain) {
        out += plain_;
        return;
    }
    bool in_one_line = kind_ == Kind::array || parts_.empty();
    for (const JsonValue& part : parts_)
        in_one_line = in_one_line && part.kind_ == Kind::plain;
    const std::string separator = in_one_line ? " " : line_start + "  ";
    out += kind_ == Kind::object ? '{' : '[';
    for (size_t i = 0; i < parts_.size(); ++i) {
        out += i == 0 ? "" : ",";
        if (i > 0 || !in_one_line)
            out += separator;
        if (kind_ == Kind::object)
            out += names_[i] + ": ";
        parts_[i].write(out, line_start + "  ");
    }
    out += in_one_line ? "" : line_start;
    out += kind_ == Kind::object ? '}' : ']';
}

} // namespace zerklsc::tool
