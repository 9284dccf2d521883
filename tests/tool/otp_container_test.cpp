// The container of an OTP stream, byte by byte.
#include "io/otp_container.h"

#include <gtest/gtest.h>

#include <array>

#include "failure.h"

namespace zerklsc::tool {
namespace {

constexpr std::array<uint8_t, 24> head{0x5A, 0x4C, 0xD3, 0x43, 0x01, 0x00, 0x03, 0x01,
                                       0x24, 0x00, 0x3C, 0x00, 0x06, 0x00, 0x08, 0x00,
                                       0x06, 0x00, 0x00, 0x00, 0x2A, 0x00, 0x00, 0x00};

OtpContainer small_container() {
    std::string stream;
    for (int i = 0; i < 42; ++i)
        stream += static_cast<char>(i * 37 + 11);
    return {BayerPattern::gbrg, 1, 36, 60, 6, 8, 6, "A-17", stream};
}

// The same, written down from docs/otp-format.md; its CRC-32 was computed by another program.
std::string small_bytes() {
    std::string bytes(head.begin(), head.end());
    return bytes + "A-17" + std::string(20, '\0') + small_container().stream + "CRC4";
}

// The CRC-32 of ISO 3309, bit by bit.
std::string with_checksum(std::string bytes) {
    uint32_t crc = 0xFFFFFFFF;
    bytes.resize(bytes.size() - 4);
    for (const char byte : bytes) {
        crc ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
    }
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(~crc >> shift);
    return bytes;
}

// What is said of bytes that are refused; nothing where they are accepted.
std::string fault_of(const std::string& bytes) {
    try {
        decode_otp_container(bytes, "m");
        return "";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), exit_input);
        return failure.what();
    }
}

TEST(OtpContainer, HoldsTheBytesOfTheFormat) {
    const std::string bytes = encode_otp_container(small_container());
    EXPECT_EQ(bytes, with_checksum(small_bytes()));
    EXPECT_EQ(bytes.substr(bytes.size() - 4), "\xEC\xF4\xA0\x4A");
    EXPECT_EQ(encode_otp_container(decode_otp_container(bytes, "m")), bytes);
}

TEST(OtpContainer, FindsEveryFlippedBit) {
    const std::string bytes = encode_otp_container(small_container());
    for (size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
        std::string flipped = bytes;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ 1 << bit % 8);
        EXPECT_NE(fault_of(flipped), "") << "bit " << bit;
    }
}

TEST(OtpContainer, FindsEveryTruncation) {
    const std::string bytes = encode_otp_container(small_container());
    for (size_t size = 0; size < bytes.size(); ++size)
        EXPECT_TRUE(fault_of(bytes.substr(0, size)).starts_with(size < 4 ? "m: magic: " : "m: length: "))
            << size;
    EXPECT_TRUE(fault_of(bytes + '\xFF').starts_with("m: length: "));
}

// The fault that is named first, where the checksum is right.
TEST(OtpContainer, NamesTheFirstFault) {
    struct Case {
        size_t at;
        std::string bytes;
        const char* fault;
    };
    const Case cases[] = {
        {0, "X", "m: magic: "},
        {4, "\2", "m: version: is 2, and this tool reads 1"},
        {5, "\1", "m: version: is 257,"},
        {6, "\4", "m: pattern: is 4, but must be from 0 to 3"},
        {7, "\2", "m: precision mode: is 2,"},
        {8, std::string(2, '\0'), "m: raw width: is 0,"},
        {8, "\x25", "m: raw width: is 37, but frames are whole"},
        {10, "\xFF\xFF", "m: raw height: is 65535, but must be from 2 to 65534"},
        {12, std::string(2, '\0'), "m: grid width: is 0,"},
        {12, "\x07", "m: grid: is 7 x 8, but frames of 36 x 60 with step 6 have 6 x 8"},
        {14, "\xFF\xFF", "m: grid: is 6 x 65535,"},
        {16, std::string(1, '\0'), "m: step: is 0, but must be from 1 to 255"},
        {17, "\1", "m: step: is 262,"},
        {18, "\1", "m: reserved bytes: is 1,"},
        {20, "\x29",
         "m: length: holds 94 bytes, but its header says 93: it is damaged, or something follows it"},
        {20, "\xFF\xFF\xFF\xFF",
         "m: length: holds 94 bytes, but its header says 4294967347: it is truncated"},
        {24, "\x7F", "m: serial: "},
        {30, "x", "m: serial: "},
        // Each fits its own range, and the largest frames in the finest grid would take gigabytes.
        {8, std::string("\xFE\xFF\xFE\xFF\x02\x80\x02\x80\x01", 9),
         "m: stream size: is 42, but tables of 32770 x 32770 "},
        {7, std::string(1, '\0'), "m: stream size: is 42, but tables of 6 x 8 have 72 in mode 0"},
    };
    for (const Case& c : cases) {
        std::string bytes = small_bytes();
        bytes.replace(c.at, c.bytes.size(), c.bytes);
        EXPECT_EQ(fault_of(with_checksum(bytes)).substr(0, std::string(c.fault).size()), c.fault);
    }
}

TEST(OtpContainer, RefusesWhatTheLibraryCannotDecode) {
    const OtpContainer container{BayerPattern::rggb, 0, 24, 48, 4, 5, 12, "", std::string(18, '\0')};
    const std::string fault = fault_of(encode_otp_container(container));
    EXPECT_TRUE(fault.starts_with("m: grid: 4 x 5 in mode 0 cannot be stored")) << fault;
    const OtpContainer empty{BayerPattern::rggb, 0, 36, 60, 6, 8, 6, "", ""};
    EXPECT_TRUE(fault_of(encode_otp_container(empty)).starts_with("m: stream size: is 0, "));
}

} // namespace
} // namespace zerklsc::tool
