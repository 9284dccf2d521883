// encode_table_text
#include "io/table_text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace zerklsc::tool {

std::string encode_table_text(const GainTables& tables) {
    std::string text;
    for (const auto& gains : tables.gains)
        for (auto row = gains.begin(); row != gains.end(); row += tables.table_width)
            text += fmt::format("{}\n", fmt::join(row, row + tables.table_width, " "));
    return text;
}

} // namespace zerklsc::tool
