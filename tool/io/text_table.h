// Numbers in columns, as a person reads them.
#pragma once

#include <string>
#include <vector>

namespace zerklsc::tool {

// Lines of cells, each column as wide as it needs to be; all columns but the first stand to the right.
std::string text_table(const std::vector<std::vector<std::string>>& rows);

// A fraction as "38.21 %".
std::string percent(double fraction);

} // namespace zerklsc::tool
