// Where the bytes of a file go while it is written.
#pragma once

#include <functional>
#include <string_view>

namespace zerklsc::tool {

// Takes the bytes of a file one piece after another.
using ByteSink = std::function<void(std::string_view)>;

} // namespace zerklsc::tool
