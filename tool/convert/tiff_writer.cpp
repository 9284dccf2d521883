// TiffWriter
#include "convert/tiff_writer.h"

#include <cmath>

#include "io/sample_rows.h"
#include "io/tiff_tags.h"

namespace zerklsc::tool {
namespace {

enum Type : uint16_t {
    byte = 1,
    ascii = 2,
    short_word = 3,
    long_word = 4,
    rational = 5,
    undefined = 7,
    srational = 10
};

void append(std::string& bytes, uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> 8 * i & 0xFF);
}

} // namespace

void TiffWriter::add_bytes(uint16_t tag, const std::vector<uint8_t>& values) {
    entries_[tag] = {byte, static_cast<uint32_t>(values.size()), std::string(values.begin(), values.end())};
}

void TiffWriter::add_text(uint16_t tag, const std::string& text) {
    entries_[tag] = {ascii, static_cast<uint32_t>(text.size() + 1), text + '\0'};
}

void TiffWriter::add_shorts(uint16_t tag, const std::vector<uint16_t>& values) {
    Entry entry{short_word, static_cast<uint32_t>(values.size()), {}};
    for (const uint16_t value : values)
        append(entry.value, value, 2);
    entries_[tag] = entry;
}

void TiffWriter::add_longs(uint16_t tag, const std::vector<uint32_t>& values) {
    Entry entry{long_word, static_cast<uint32_t>(values.size()), {}};
    for (const uint32_t value : values)
        append(entry.value, value, 4);
    entries_[tag] = entry;
}

void TiffWriter::add_rationals(uint16_t tag, const std::vector<double>& values, bool is_signed) {
    constexpr int denominator = 10000;
    Entry entry{is_signed ? srational : rational, static_cast<uint32_t>(values.size()), {}};
    for (const double value : values) {
        append(entry.value, static_cast<uint32_t>(std::lround(value * denominator)), 4);
        append(entry.value, denominator, 4);
    }
    entries_[tag] = entry;
}

void TiffWriter::add_undefined(uint16_t tag, const std::string& bytes) {
    entries_[tag] = {undefined, static_cast<uint32_t>(bytes.size()), bytes};
}

std::string TiffWriter::bytes(const std::vector<uint16_t>& samples) {
    add_longs(tag::strip_offsets, {0});
    add_longs(tag::strip_byte_counts, {static_cast<uint32_t>(2 * samples.size())});
    constexpr size_t header_size = 8, count_size = 2, entry_size = 12, next_size = 4;
    size_t at = header_size + count_size + entry_size * entries_.size() + next_size;
    for (const auto& [tag, entry] : entries_)
        if (entry.value.size() > 4)
            at += (entry.value.size() + 1) / 2 * 2;
    add_longs(tag::strip_offsets, {static_cast<uint32_t>(at)});

    std::string file("II*\0\x08\0\0\0", header_size), values;
    append(file, static_cast<uint32_t>(entries_.size()), 2);
    const size_t values_at = header_size + count_size + entry_size * entries_.size() + next_size;
    for (const auto& [tag, entry] : entries_) {
        append(file, tag, 2);
        append(file, entry.type, 2);
        append(file, entry.count, 4);
        if (entry.value.size() <= 4) {
            file += entry.value + std::string(4 - entry.value.size(), '\0');
        } else {
            append(file, static_cast<uint32_t>(values_at + values.size()), 4);
            values += entry.value + std::string(entry.value.size() % 2, '\0');
        }
    }
    append(file, 0, 4);
    file += values;
    write_words(samples, false, [&](std::string_view bytes) { file += bytes; });
    return file;
}

} // namespace zerklsc::tool
