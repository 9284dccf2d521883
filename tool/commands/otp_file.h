// A file of the otp commands: a bare stream, or a container around one.
#pragma once

#include <optional>
#include <string>

#include "commands/report.h"
#include "imaging/gain_tables.h"
#include "io/otp_container.h"

namespace zerklsc::tool {

struct OtpFile {
    std::string name;
    std::optional<OtpContainer> container; // checked; nothing for a bare stream
    std::string stream;
    std::string crc; // of the container, as hexadecimal digits
};

// A data failure says what is wrong with a container.
OtpFile read_otp_file(const std::string& path);

// Tables without gains, of the geometry that a container says.
GainTables described_by(const OtpContainer& container);

// A data failure where a container is not for tables of this geometry and pattern.
void check_belongs(const OtpFile& file, const GainTables& tables, const std::string& tables_name);

// What the container says: a line, and an object of the document.
void add_container(Report& report, const OtpFile& file);

} // namespace zerklsc::tool
