// is_otp_container, encode_otp_container, decode_otp_container
#include "io/otp_container.h"

#include <algorithm>
#include <string_view>

#include <zlib.h>

#include "failure.h"
#include "imaging/gain_tables.h"
#include "imaging/otp_stream.h"
#include "zerklsc_driver.h"

namespace zerklsc::tool {
namespace {

// Bit 7 of the third byte is clear in every bare stream of mode 0, and lost on a line that strips it.
constexpr std::string_view container_magic = "ZL\xD3"
                                             "C";
constexpr uint32_t format_version = 1;

// The offsets of the fields.
constexpr size_t at_version = 4, at_pattern = 6, at_mode = 7, at_raw_width = 8, at_raw_height = 10,
                 at_table_width = 12, at_table_height = 14, at_step = 16, at_reserved = 18,
                 at_stream_size = 20, at_serial = 24, at_stream = at_serial + longest_serial;
constexpr size_t checksum_size = 4;
static_assert(at_stream + checksum_size == container_overhead);

void put(std::string& bytes, size_t at, size_t size, uint64_t value) {
    for (size_t i = 0; i < size; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

uint32_t get(const std::string& bytes, size_t at, size_t size) {
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value |= uint32_t{static_cast<uint8_t>(bytes[at + i])} << (8 * i);
    return value;
}

uint32_t checksum_of(const std::string& bytes, size_t size) {
    return static_cast<uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), size));
}

// What the bytes are before any field but the length and the version is believed.
void check_envelope(const std::string& bytes, const std::string& name) {
    if (!is_otp_container(bytes))
        data_failure("{}: magic: does not begin with the bytes 5A 4C D3 43 of an OTP container", name);
    if (bytes.size() < container_overhead)
        data_failure("{}: length: holds {} bytes, but a container has at least {}: it is truncated", name,
                     bytes.size(), container_overhead);
    const uint32_t version = get(bytes, at_version, 2);
    if (version != format_version)
        data_failure("{}: version: is {}, and this tool reads {}", name, version, format_version);
    const uint64_t length = container_overhead + uint64_t{get(bytes, at_stream_size, 4)};
    if (bytes.size() != length)
        data_failure("{}: length: holds {} bytes, but its header says {}: it is {}", name, bytes.size(),
                     length, bytes.size() < length ? "truncated" : "damaged, or something follows it");
    const size_t covered = bytes.size() - checksum_size;
    const uint32_t stored = get(bytes, covered, checksum_size), computed = checksum_of(bytes, covered);
    if (stored != computed)
        data_failure("{}: CRC-32: is {:08X}, but the bytes before it have {:08X}: the container is damaged",
                     name, stored, computed);
}

// The fields of one container, each held to its range.
class Fields {
  public:
    Fields(const std::string& bytes, const std::string& name) : bytes_(bytes), name_(name) {}

    int number(const char* field, size_t at, size_t size, int lowest, int highest) const {
        const auto value = static_cast<int>(get(bytes_, at, size));
        if (value < lowest || value > highest)
            data_failure("{}: {}: is {}, but must be from {} to {}", name_, field, value, lowest, highest);
        return value;
    }

    int even(const char* field, size_t at) const {
        const int value = number(field, at, 2, 2, largest_side);
        if (value % 2 != 0)
            data_failure("{}: {}: is {}, but frames are whole 2 x 2 Bayer cells", name_, field, value);
        return value;
    }

    std::string serial() const {
        const std::string field = bytes_.substr(at_serial, longest_serial);
        std::string text = field.substr(0, field.find('\0'));
        if (field.find_first_not_of('\0', text.size()) != std::string::npos
            || !std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; }))
            data_failure("{}: serial: is not printable ASCII with zeros behind it", name_);
        return text;
    }

  private:
    const std::string& bytes_;
    const std::string& name_;
};

OtpContainer read_header(const std::string& bytes, const std::string& name) {
    const Fields fields(bytes, name);
    OtpContainer container;
    container.pattern = static_cast<BayerPattern>(fields.number("pattern", at_pattern, 1, 0, 3));
    container.mode =
        fields.number("precision mode", at_mode, 1, lowest_precision_mode, highest_precision_mode);
    container.raw_width = fields.even("raw width", at_raw_width);
    container.raw_height = fields.even("raw height", at_raw_height);
    container.table_width = fields.number("grid width", at_table_width, 2, 1, 65535);
    container.table_height = fields.number("grid height", at_table_height, 2, 1, 65535);
    container.step = fields.number("step", at_step, 2, smallest_step, largest_step);
    fields.number("reserved bytes", at_reserved, 2, 0, 0);
    container.serial = fields.serial();
    return container;
}

// That the fields go with each other, and that the stream can be decoded.
void check_geometry(const OtpContainer& container, size_t size, const std::string& name) {
    GainTables tables;
    tables.raw_width = container.raw_width;
    tables.raw_height = container.raw_height;
    tables.step = container.step;
    tables.set_table_size();
    if (tables.table_width != container.table_width || tables.table_height != container.table_height)
        data_failure("{}: grid: is {} x {}, but frames of {} x {} with step {} have {} x {}", name,
                     container.table_width, container.table_height, container.raw_width, container.raw_height,
                     container.step, tables.table_width, tables.table_height);
    if (size != stream_size(tables, container.mode))
        data_failure("{}: stream size: is {}, but tables of {} x {} have {} in mode {}", name, size,
                     tables.table_width, tables.table_height, stream_size(tables, container.mode),
                     container.mode);
    check_stream(tables, container.mode, name);
}

} // namespace

bool is_otp_container(const std::string& bytes) {
    return bytes.starts_with(container_magic);
}

std::string encode_otp_container(const OtpContainer& container) {
    std::string bytes(at_stream, '\0');
    std::ranges::copy(container_magic, bytes.begin());
    put(bytes, at_version, 2, format_version);
    put(bytes, at_pattern, 1, static_cast<uint64_t>(container.pattern));
    put(bytes, at_mode, 1, static_cast<uint64_t>(container.mode));
    put(bytes, at_raw_width, 2, static_cast<uint64_t>(container.raw_width));
    put(bytes, at_raw_height, 2, static_cast<uint64_t>(container.raw_height));
    put(bytes, at_table_width, 2, static_cast<uint64_t>(container.table_width));
    put(bytes, at_table_height, 2, static_cast<uint64_t>(container.table_height));
    put(bytes, at_step, 2, static_cast<uint64_t>(container.step));
    put(bytes, at_stream_size, 4, container.stream.size());
    std::ranges::copy(container.serial, bytes.begin() + at_serial);
    bytes += container.stream;
    const uint32_t checksum = checksum_of(bytes, bytes.size());
    bytes.resize(bytes.size() + checksum_size);
    put(bytes, bytes.size() - checksum_size, checksum_size, checksum);
    return bytes;
}

OtpContainer decode_otp_container(const std::string& bytes, const std::string& name) {
    check_envelope(bytes, name);
    OtpContainer container = read_header(bytes, name);
    const size_t size = bytes.size() - container_overhead;
    check_geometry(container, size, name);
    container.stream = bytes.substr(at_stream, size);
    return container;
}

} // namespace zerklsc::tool
