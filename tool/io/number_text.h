// Several numbers with commas between, as options and comments of files have them.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace zerklsc::tool {

// At least one number, each from `lowest` to `highest`; nothing for any other text. For int and double.
template <class T>
std::optional<std::vector<T>> numbers_from(std::string_view text, T lowest, T highest);

} // namespace zerklsc::tool
