// text_table, percent
#include "io/text_table.h"

#include <algorithm>

#include <fmt/format.h>

namespace zerklsc::tool {

std::string text_table(const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths(rows.front().size());
    for (const auto& row : rows)
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    std::string text;
    for (const auto& row : rows) {
        text += fmt::format("{:<{}}", row[0], widths[0]);
        for (size_t i = 1; i < row.size(); ++i)
            text += fmt::format("  {:>{}}", row[i], widths[i]);
        text += '\n';
    }
    return text;
}

std::string percent(double fraction) {
    return fmt::format("{:.2f} %", 100 * fraction);
}

} // namespace zerklsc::tool
