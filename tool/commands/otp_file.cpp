// read_otp_file, described_by, check_belongs, add_container
#include "commands/otp_file.h"

#include <fmt/format.h>

#include "failure.h"
#include "io/input_file.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// More than the tables of every node that `resample` makes take.
constexpr uint64_t largest_otp_file = uint64_t{1} << 25;

} // namespace

OtpFile read_otp_file(const std::string& path) {
    OtpFile file{input_name(path), std::nullopt, read_file(path, largest_otp_file), ""};
    if (!is_otp_container(file.stream))
        return file;
    const std::string bytes = std::move(file.stream);
    file.container = decode_otp_container(bytes, file.name);
    file.stream = file.container->stream;
    for (size_t i = 1; i <= 4; ++i)
        file.crc += fmt::format("{:02X}", static_cast<unsigned char>(bytes[bytes.size() - i]));
    return file;
}

GainTables described_by(const OtpContainer& container) {
    GainTables tables;
    tables.raw_width = container.raw_width;
    tables.raw_height = container.raw_height;
    tables.step = container.step;
    tables.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    tables.pattern = container.pattern;
    tables.bits = 10;
    tables.set_table_size();
    return tables;
}

void check_belongs(const OtpFile& file, const GainTables& tables, const std::string& tables_name) {
    const OtpContainer& own = *file.container;
    const auto differs = [&](const char* what, const std::string& is, const std::string& other) {
        if (is != other)
            data_failure("{}: its {} is {}, but that of {} is {}: they do not belong together", file.name,
                         what, is, tables_name, other);
    };
    differs("frame size", fmt::format("{} x {}", own.raw_width, own.raw_height),
            fmt::format("{} x {}", tables.raw_width, tables.raw_height));
    differs("step", fmt::format("{}", own.step), fmt::format("{}", tables.step));
    differs("Bayer pattern", name_of(own.pattern), name_of(tables.pattern));
}

void add_container(Report& report, const OtpFile& file) {
    const OtpContainer& c = *file.container;
    report.print(fmt::format(
        "{}: {}, frames of {} x {}, {}, tables of {} x {}, step {}, mode {}, CRC-32 {}\n",
        one_line(file.name), c.serial.empty() ? "no serial" : "serial " + c.serial, c.raw_width, c.raw_height,
        name_of(c.pattern), c.table_width, c.table_height, c.step, c.mode, file.crc));
    report.add("container",
               JsonValue::object({{"serial", c.serial},
                                  {"raw_size", JsonValue::array({c.raw_width, c.raw_height})},
                                  {"bayer_pattern", name_of(c.pattern)},
                                  {"table_size", JsonValue::array({c.table_width, c.table_height})},
                                  {"step", c.step},
                                  {"mode", c.mode},
                                  {"stream_size", static_cast<uint64_t>(c.stream.size())},
                                  {"crc32", file.crc}}));
}

} // namespace zerklsc::tool
