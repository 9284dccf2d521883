// four_digits_of, number_of
#include "lot/four_digits.h"

#include <cmath>
#include <cstdlib>

#include <fmt/format.h>

namespace zerklsc::tool {
namespace {

constexpr int decade = 10000;        // four digits, the first of them not 0
constexpr int exponent_offset = 330; // of the smallest number

} // namespace

int32_t four_digits_of(double value) {
    if (value == 0)
        return 0;
    // As "1.234e-05".
    const std::string text = fmt::format("{:.3e}", std::abs(value));
    const int mantissa =
        1000 * (text[0] - '0') + 100 * (text[2] - '0') + 10 * (text[3] - '0') + text[4] - '0';
    const int exponent = std::atoi(text.c_str() + 6);
    const int digits = (exponent + exponent_offset) * decade + mantissa;
    return value < 0 ? -digits : digits;
}

double number_of(int32_t four_digits) {
    if (four_digits == 0)
        return 0;
    const int digits = std::abs(four_digits);
    const int exponent = digits / decade - exponent_offset - 3;
    const double value = std::strtod(fmt::format("{}e{}", digits % decade, exponent).c_str(), nullptr);
    return four_digits < 0 ? -value : value;
}

} // namespace zerklsc::tool
