// A JSON value that is made to be written: the form in which every command gives its results to programs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zerklsc::tool {

// Whether bytes are a text as JSON has them.
bool is_utf8(std::string_view bytes);

class JsonValue {
  public:
    using Member = std::pair<std::string, JsonValue>;

    JsonValue(bool value);
    JsonValue(int value);
    JsonValue(int64_t value);
    JsonValue(uint64_t value);
    // What is not finite becomes null: JSON has no number for it.
    JsonValue(double value);
    // Bytes that are not UTF-8, as in a file name, become U+FFFD.
    JsonValue(const char* text);
    JsonValue(const std::string& text);

    static JsonValue null();
    static JsonValue object(std::vector<Member> members = {});
    static JsonValue array(std::vector<JsonValue> elements = {});
    // An array of the elements of any list.
    template <class List>
    static JsonValue list(const List& values) {
        return array(std::vector<JsonValue>(values.begin(), values.end()));
    }

    // To an object or an array, at its end.
    void add(const std::string& name, JsonValue value);
    void add(JsonValue element);
    // The parts of another object.
    void append(const JsonValue& object);

    // Objects and arrays of them take a line for each part; an array of plain values stands in one line.
    std::string text() const;
    // All in one line, without spaces.
    std::string line() const;

  private:
    enum class Kind { plain, object, array };
    JsonValue(Kind kind, std::string plain) : kind_(kind), plain_(std::move(plain)) {}
    void write(std::string& out, const std::string& line_start) const;
    void write_line(std::string& out) const;

    Kind kind_;
    std::string plain_;              // a number, word or quoted text as it is written
    std::vector<std::string> names_; // of an object's parts
    std::vector<JsonValue> parts_;
};

} // namespace zerklsc::tool
