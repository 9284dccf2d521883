// Black levels as the user and PGM comments write them.
#pragma once

#include <optional>
#include <string>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// "64" for all planes, or "64,65,64,63" by plane number; nothing for any other text.
std::optional<BlackLevel> black_level_from(const std::string& text);

} // namespace zerklsc::tool
