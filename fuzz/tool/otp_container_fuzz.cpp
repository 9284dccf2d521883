// Any bytes as an OTP container: refused in words, or decoded and encoded again to the same bytes. The first
// byte says whether they get a length and a checksum that are right, which chance never finds.
#include "imaging/otp_stream.h"
#include "io/otp_container.h"
#include "support/input.h"
#include "support/reader.h"

namespace {

void mend(std::string& bytes) {
    const size_t length = bytes.size() - zerklsc::tool::container_overhead;
    for (size_t i = 0; i < 4; ++i)
        bytes[20 + i] = static_cast<char>(length >> (8 * i) & 0xFF);
    bytes.resize(bytes.size() - 4);
    bytes += zerklsc::fuzz::checksum_of(bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    using namespace zerklsc::tool;
    Input input(data, size);
    const bool mended = (input.take<uint8_t>() & 1) != 0;
    std::string bytes = input.rest();
    if (mended && bytes.size() >= container_overhead)
        mend(bytes);
    return read_or_refused([&] {
        const OtpContainer read = decode_otp_container(bytes, "fuzz");
        expect(encode_otp_container(read) == bytes);
        GainTables tables = empty_tables(read.raw_width, read.raw_height, read.step, read.pattern);
        decode_stream(read.stream, "fuzz", tables);
    });
}
