// TiffFile, begins_tiff
#include "io/tiff_file.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "failure.h"
#include "io/tiff_tags.h"

namespace zerklsc::tool {
namespace {

constexpr size_t most_directories = 64, most_entries = 4096;

enum Type : uint16_t {
    byte = 1,
    ascii,
    short_word,
    long_word,
    rational,
    signed_byte,
    undefined,
    signed_short,
    signed_long,
    signed_rational,
    float_number,
    double_number,
    directory_offset
};

constexpr std::array<uint8_t, 14> type_bytes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

int64_t signed_value(uint64_t word, size_t bytes) {
    const int unused = 64 - 8 * static_cast<int>(bytes);
    return static_cast<int64_t>(word << unused) >> unused;
}

} // namespace

bool begins_tiff(std::string_view head) {
    using namespace std::string_view_literals;
    return head.starts_with("II*\0"sv) || head.starts_with("MM\0*"sv);
}

const TiffEntry* TiffDirectory::find(uint16_t tag) const {
    const auto found = std::ranges::find(entries, tag, &TiffEntry::tag);
    return found == entries.end() ? nullptr : &*found;
}

TiffFile::TiffFile(InputFile& file) : file_(file) {
    if (!begins_tiff(file.head()))
        data_failure("{}: is not a TIFF or DNG of 32-bit offsets", file.path());
    file.hold();
    big_endian_ = file.head().starts_with("MM");
}

uint64_t TiffFile::word(uint64_t at, size_t size) {
    std::array<uint8_t, 8> bytes{};
    file_.read(at, std::as_writable_bytes(std::span(bytes).first(size)));
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value |= uint64_t{bytes[i]} << 8 * (big_endian_ ? size - 1 - i : i);
    return value;
}

TiffDirectory TiffFile::directory(uint64_t pointer_at) {
    constexpr uint64_t count_bytes = 2, entry_bytes = 12, inline_bytes = 4;
    TiffDirectory directory{pointer_at, word(pointer_at, 4), {}};
    const uint64_t size = file_.size().value_or(0);
    if (directory.at == 0 || directory.at + count_bytes > size)
        return directory;
    const uint64_t count = word(directory.at, count_bytes);
    if (count > most_entries)
        return directory;
    for (uint64_t i = 0; i < count; ++i) {
        TiffEntry entry;
        entry.at = directory.at + count_bytes + entry_bytes * i;
        if (entry.at + entry_bytes > size)
            break;
        entry.tag = static_cast<uint16_t>(word(entry.at, 2));
        entry.type = static_cast<uint16_t>(word(entry.at + 2, 2));
        entry.count = static_cast<uint32_t>(word(entry.at + 4, 4));
        entry.bytes = entry.type < type_bytes.size() ? uint64_t{entry.count} * type_bytes[entry.type] : 0;
        entry.value_at = entry.bytes <= inline_bytes ? entry.at + 8 : word(entry.at + 8, 4);
        directory.entries.push_back(entry);
    }
    return directory;
}

std::vector<TiffDirectory> TiffFile::directories() {
    constexpr uint64_t header_pointer = 4;
    std::vector<TiffDirectory> found;
    std::vector<uint64_t> pointers{header_pointer};
    for (size_t i = 0; i < pointers.size() && i < most_directories; ++i) {
        const TiffDirectory last = directory(pointers[i]);
        if (last.entries.empty())
            continue;
        found.push_back(last);
        const uint64_t next = last.entries.back().at + 12;
        if (next + 4 <= file_.size().value_or(0))
            pointers.push_back(next);
        const TiffEntry* const below = last.find(tag::sub_ifds);
        for (uint64_t k = 0; below != nullptr && k < std::min<uint64_t>(below->count, most_directories); ++k)
            if (below->value_at + 4 * k + 4 <= file_.size().value_or(0))
                pointers.push_back(below->value_at + 4 * k);
    }
    return found;
}

std::vector<double> TiffFile::numbers(const TiffEntry& entry, uint32_t most) {
    std::vector<double> values;
    const size_t size = entry.type < type_bytes.size() ? type_bytes[entry.type] : 0;
    for (uint64_t i = 0; i < std::min(entry.count, most); ++i) {
        const uint64_t at = entry.value_at + size * i;
        switch (entry.type) {
        case byte:
        case short_word:
        case long_word:
        case directory_offset:
            values.push_back(static_cast<double>(word(at, size)));
            break;
        case signed_byte:
        case signed_short:
        case signed_long:
            values.push_back(static_cast<double>(signed_value(word(at, size), size)));
            break;
        case rational:
            values.push_back(static_cast<double>(word(at, 4)) / static_cast<double>(word(at + 4, 4)));
            break;
        case signed_rational:
            values.push_back(static_cast<double>(signed_value(word(at, 4), 4))
                             / static_cast<double>(signed_value(word(at + 4, 4), 4)));
            break;
        case float_number:
            values.push_back(static_cast<double>(std::bit_cast<float>(static_cast<uint32_t>(word(at, 4)))));
            break;
        case double_number:
            values.push_back(std::bit_cast<double>(word(at, 8)));
            break;
        default:
            return {};
        }
    }
    return values;
}

std::string TiffFile::bytes(const TiffEntry& entry, uint64_t limit) {
    if (entry.bytes > limit || entry.value_at + entry.bytes > file_.size().value_or(0))
        data_failure("{}: its tag {} promises {} bytes, more than there are: the file is damaged", path(),
                     entry.tag, entry.bytes);
    std::string value(static_cast<size_t>(entry.bytes), '\0');
    file_.read(entry.value_at, std::as_writable_bytes(std::span(value)));
    return value;
}

} // namespace zerklsc::tool
