// base64_of, bytes_of_base64
#include "io/base64.h"

#include <array>
#include <cstdint>

namespace zerklsc::tool {
namespace {

constexpr std::string_view base64_digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t no_digit = 64;

constexpr std::array<uint8_t, 256> values_of_digits() {
    std::array<uint8_t, 256> values{};
    values.fill(no_digit);
    for (size_t i = 0; i < base64_digits.size(); ++i)
        values[static_cast<uint8_t>(base64_digits[i])] = static_cast<uint8_t>(i);
    return values;
}

constexpr std::array<uint8_t, 256> digit_values = values_of_digits();

} // namespace

std::string base64_of(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const auto at = [&](size_t k) {
            return k < bytes.size() ? uint32_t{static_cast<uint8_t>(bytes[k])} : 0U;
        };
        const uint32_t bits = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
        for (int shift = 18; shift >= 0; shift -= 6)
            text += base64_digits[bits >> shift & 63];
    }
    const size_t padding = (3 - bytes.size() % 3) % 3;
    return text.replace(text.size() - padding, padding, padding, '=');
}

std::optional<std::string> bytes_of_base64(std::string_view text) {
    const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    uint32_t bits = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool padded = i >= text.size() - padding;
        const uint8_t value = padded ? 0 : digit_values[static_cast<uint8_t>(text[i])];
        if (value == no_digit)
            return std::nullopt;
        bits = bits << 6 | value;
        if (i % 4 == 3) {
            bytes += {static_cast<char>(bits >> 16), static_cast<char>(bits >> 8), static_cast<char>(bits)};
            bits = 0;
        }
    }
    for (size_t i = 0; i < padding; ++i) {
        if (bytes.back() != '\0')
            return std::nullopt;
        bytes.pop_back();
    }
    return bytes;
}

} // namespace zerklsc::tool
