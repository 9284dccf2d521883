// encode_table_text, read_table_text
#include "io/table_text.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "failure.h"
#include "io/input_file.h"

namespace zerklsc::tool {
namespace {

constexpr std::string_view white_space = " \t\r\n";

// The next word of the text, which is taken off; empty at its end.
std::string_view next_word(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(white_space), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(white_space));
    text.remove_prefix(word.size());
    return word;
}

uint16_t gain_from(std::string_view word, const std::string& path, size_t number) {
    uint16_t gain = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), gain);
    if (error != std::errc{} || end != word.data() + word.size())
        data_failure("{}: value {} is \"{}\", which is not a gain from 0 to 65535", path, number,
                     word.substr(0, 20));
    return gain;
}

} // namespace

std::string encode_table_text(const GainTables& tables) {
    std::string text;
    for (const auto& gains : tables.gains)
        for (auto row = gains.begin(); row != gains.end(); row += tables.table_width)
            text += fmt::format("{}\n", fmt::join(row, row + tables.table_width, " "));
    return text;
}

void read_table_text(const std::string& path, GainTables& tables) {
    const std::string bytes = read_file(path);
    std::string_view text = bytes;
    tables.set_table_size();
    const size_t expected = tables.gains.size() * tables.table_size();
    size_t count = 0;
    for (std::string_view word = next_word(text); !word.empty(); word = next_word(text), ++count)
        if (const uint16_t gain = gain_from(word, path, count + 1); count < expected)
            tables.gains[count / tables.table_size()].push_back(gain);
    if (count != expected)
        data_failure(
            "{}: holds {} gains, but four tables for frames of {} x {} with step {} are 4 x {} x {} = {}: "
            "give the --size and --step that they were made for",
            path, count, tables.raw_width, tables.raw_height, tables.step, tables.table_width,
            tables.table_height, expected);
}

} // namespace zerklsc::tool
