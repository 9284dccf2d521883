// Numbers of all sizes as whole numbers that keep four digits and the order.
#pragma once

#include <cstdint>

namespace zerklsc::tool {

// Of a finite number: the same for all numbers with these four digits, larger for larger ones, 0 for 0.
int32_t four_digits_of(double value);

// The number with these digits.
double number_of(int32_t four_digits);

} // namespace zerklsc::tool
