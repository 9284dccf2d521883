// Any bytes as an OTP container: refused in words, or decoded and encoded again to the same bytes. The first
// byte says whether they get a length and a checksum that are right, which chance never finds.
#include <cstdlib>
#include <string>

#include <zlib.h>

#include "failure.h"
#include "imaging/otp_stream.h"
#include "io/otp_container.h"
#include "support/input.h"

namespace {

using namespace zerklsc::tool;

void put_32(std::string& bytes, size_t at, uint64_t value) {
    for (size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

void mend(std::string& bytes) {
    const size_t covered = bytes.size() - 4;
    put_32(bytes, 20, bytes.size() - container_overhead);
    put_32(bytes, covered, crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), covered));
}

void decode(const std::string& bytes) {
    const OtpContainer container = decode_otp_container(bytes, "fuzz");
    if (encode_otp_container(container) != bytes)
        std::abort();
    GainTables tables;
    tables.raw_width = container.raw_width;
    tables.raw_height = container.raw_height;
    tables.step = container.step;
    tables.pattern = container.pattern;
    tables.set_table_size();
    decode_stream(container.stream, "fuzz", tables);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const bool mended = (input.take<uint8_t>() & 1) != 0;
    const std::vector<uint8_t> rest = input.rest();
    std::string bytes(rest.begin(), rest.end());
    if (mended && bytes.size() >= container_overhead)
        mend(bytes);
    try {
        decode(bytes);
    } catch (const Failure&) {
        // Refused in words, as it should be.
    }
    return 0;
}
