// Manifest, hash_of_serial, shard_from
#include "line/manifest.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include <fmt/format.h>

#include "failure.h"
#include "io/json_value.h"
#include "io/sha256.h"

namespace zerklsc::tool {
namespace {

constexpr std::array<std::string_view, 4> column_names{"serial", "files", "preset", "illuminant"};
constexpr char between_files = ';';

// The fields of a line of RFC 4180; nothing where its quotes do not match.
std::optional<std::vector<std::string>> fields_of(std::string_view line) {
    std::vector<std::string> fields(1);
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == ',') {
            fields.emplace_back();
            continue;
        }
        const bool begins = i == 0 || line[i - 1] == ',';
        if (line[i] != '"' || !begins) {
            if (line[i] == '"')
                return std::nullopt;
            fields.back() += line[i];
            continue;
        }
        for (++i; i < line.size() && (line[i] != '"' || line.substr(i + 1).starts_with('"')); ++i) {
            i += line[i] == '"' ? 1 : 0;
            fields.back() += line[i];
        }
        if (i == line.size() || (i + 1 < line.size() && line[i + 1] != ','))
            return std::nullopt;
    }
    return fields;
}

std::vector<std::string> files_of(const std::string& field) {
    std::vector<std::string> files;
    for (size_t from = 0, to = 0; to != std::string::npos; from = to + 1) {
        to = field.find(between_files, from);
        files.push_back(field.substr(from, to == std::string::npos ? to : to - from));
    }
    return files;
}

bool is_serial(const std::string& text) {
    return !text.empty() && text.size() <= longest_module_serial && text.front() != '.'
           && std::ranges::all_of(text, [](char c) { return c > ' ' && c <= '~' && c != '/'; });
}

// Says what is wrong with a module, where that is not known yet.
void judge(Module& module) {
    const auto find = [&](const std::string& fault) {
        if (module.fault.empty())
            module.fault = fault;
    };
    if (!is_serial(module.serial)) {
        find(
            fmt::format("the serial \"{}\" is not 1 to {} printable ASCII characters without blanks and '/', "
                        "the first of which is no '.'",
                        module.serial, longest_module_serial));
        module.serial.clear();
    } else if (module.files.empty() || std::ranges::any_of(module.files, &std::string::empty)) {
        find("it names no capture, or one without a name");
    }
}

std::string_view without_return(std::string_view line) {
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

} // namespace

Manifest::Manifest(const std::string& path) : path_(path), lines_(path, longest_manifest_line) {
    if (path == "-")
        usage_failure("-: a manifest is read more than once: give a file");
    first_ = next_line();
    constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
    if (!first_)
        data_failure(
            "{}: is empty: expected a CSV whose first line is serial,files,preset,illuminant, or lines "
            "of JSON",
            path_);
    if (first_->text.starts_with(byte_order_mark))
        first_->text.remove_prefix(byte_order_mark.size());
    if (first_->text.starts_with('{'))
        return;
    read_names(first_->text);
    first_.reset();
}

// Nothing at the end; no line without characters.
std::optional<Line> Manifest::next_line() {
    for (;;) {
        std::optional<Line> line = lines_.next();
        if (!line)
            return line;
        line->text = without_return(line->text);
        if (!line->text.empty() || line->too_long)
            return line;
    }
}

void Manifest::read_names(std::string_view line) {
    columns_ = fields_of(line).value_or(std::vector<std::string>());
    for (size_t i = 0; i < columns_.size(); ++i)
        if (std::ranges::find(column_names, columns_[i]) == column_names.end()
            || std::find(columns_.begin(), columns_.begin() + static_cast<std::ptrdiff_t>(i), columns_[i])
                   != columns_.begin() + static_cast<std::ptrdiff_t>(i))
            columns_.clear();
    for (const std::string_view name : {column_names[0], column_names[1]})
        if (std::ranges::find(columns_, name) == columns_.end())
            data_failure("{}: its first line is no header of a manifest: expected serial,files,preset,"
                         "illuminant, of which the last two may be missing, or lines of JSON",
                         path_);
}

Module Manifest::from_csv(std::string_view line) const {
    Module module;
    const auto fields = fields_of(line);
    if (!fields) {
        module.fault = "its quotes do not match";
        return module;
    }
    for (size_t i = 0; i < std::min(fields->size(), columns_.size()); ++i) {
        const std::string& field = (*fields)[i];
        if (columns_[i] == "serial")
            module.serial = field;
        else if (columns_[i] == "files")
            module.files = files_of(field);
        else if (!field.empty())
            (columns_[i] == "preset" ? module.preset : module.illuminant) = field;
    }
    if (fields->size() != columns_.size())
        module.fault =
            fmt::format("it has {} fields, and the first line {}", fields->size(), columns_.size());
    return module;
}

std::optional<Module> Manifest::next() {
    const std::optional<Line> line = first_ ? std::exchange(first_, std::nullopt) : next_line();
    if (!line)
        return std::nullopt;
    Module module;
    if (line->too_long)
        module.fault = fmt::format("it is longer than {} bytes", longest_manifest_line);
    else if (!is_utf8(line->text))
        module.fault = "it is not UTF-8";
    else
        module = columns_.empty() ? module_from_json(line->text) : from_csv(line->text);
    judge(module);
    module.line = line->number;
    return module;
}

uint64_t hash_of_serial(const std::string& serial) {
    uint64_t hash = 0;
    const auto digest = sha256_of(serial);
    for (size_t i = 0; i < sizeof hash; ++i)
        hash = hash << 8 | digest[i];
    return hash;
}

std::optional<Shard> shard_from(const std::string& text) {
    constexpr uint64_t most = 1000000;
    Shard shard;
    const char* const end = text.data() + text.size();
    const auto [slash, error] = std::from_chars(text.data(), end, shard.number);
    if (error != std::errc{} || slash == end || *slash != '/')
        return std::nullopt;
    const auto [last, error_of_count] = std::from_chars(slash + 1, end, shard.count);
    if (error_of_count != std::errc{} || last != end || shard.number < 1 || shard.number > shard.count
        || shard.count > most)
        return std::nullopt;
    return shard;
}

} // namespace zerklsc::tool
