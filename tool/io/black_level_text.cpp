// black_level_from
#include "io/black_level_text.h"

#include <charconv>

namespace zerklsc::tool {

std::optional<BlackLevel> black_level_from(const std::string& text) {
    BlackLevel black{};
    size_t count = 0;
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    while (count < black.size()) {
        const auto [next, error] = std::from_chars(at, end, black[count]);
        if (error != std::errc{} || black[count] < 0 || black[count] > 65535)
            return std::nullopt;
        ++count;
        at = next;
        if (at == end || *at != ',')
            break;
        ++at;
    }
    if (at != end || (count != 1 && count != black.size()))
        return std::nullopt;
    if (count == 1)
        black.fill(black[0]);
    return black;
}

} // namespace zerklsc::tool
