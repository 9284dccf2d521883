// The container around an OTP stream: what the bare stream leaves out, and a checksum. docs/otp-format.md has
// its table of offsets.
#pragma once

#include <string>

#include "imaging/bayer_pattern.h"

namespace zerklsc::tool {

struct OtpContainer {
    BayerPattern pattern = BayerPattern::rggb;
    int mode = 0;      // of precision
    int raw_width = 0; // of the frames that the tables correct
    int raw_height = 0;
    int table_width = 0; // border included
    int table_height = 0;
    int step = 0;       // in plane samples
    std::string serial; // of the module: printable ASCII, at most `longest_serial`; may be empty
    std::string stream;
};

constexpr size_t longest_serial = 24;

// The bytes that a container adds to its stream.
constexpr size_t container_overhead = 52;

// Whether the bytes begin as a container does.
bool is_otp_container(const std::string& bytes);

// The bytes of a container whose fields are in range.
std::string encode_otp_container(const OtpContainer& container);

// A data failure names the first thing that is wrong: magic, version, length, checksum, the range of each
// field in the order of the bytes, the table size and stream size that follow from them, then what
// zerklsc_check_stream() refuses. Nothing is allocated beyond a copy of the stream, and every byte counts:
// what is accepted encodes to the same bytes. `name` is for messages.
OtpContainer decode_otp_container(const std::string& bytes, const std::string& name);

} // namespace zerklsc::tool
