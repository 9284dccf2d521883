// black_level_from
#include "io/black_level_text.h"

#include <algorithm>

#include "io/number_text.h"

namespace zerklsc::tool {

std::optional<BlackLevel> black_level_from(const std::string& text) {
    const auto levels = numbers_from(text, 0, 65535);
    BlackLevel black{};
    if (!levels || (levels->size() != 1 && levels->size() != black.size()))
        return std::nullopt;
    if (levels->size() == 1)
        black.fill(levels->front());
    else
        std::ranges::copy(*levels, black.begin());
    return black;
}

} // namespace zerklsc::tool
