// Options that take several numbers with commas between.
#pragma once

#include <string>
#include <vector>

namespace zerklsc::tool {

// Exactly `count` numbers from `lowest` to `highest`; a usage failure that names the option for any other
// text.
std::vector<double> number_list(const char* option, const std::string& text, size_t count, double lowest,
                                double highest);

// The same for whole numbers.
std::vector<int> integer_list(const char* option, const std::string& text, size_t count, int lowest,
                              int highest);

} // namespace zerklsc::tool
