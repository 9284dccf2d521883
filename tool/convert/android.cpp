// encode_android
#include <algorithm>

#include <fmt/format.h>

#include "convert/table_formats.h"
#include "convert/target_grid.h"

namespace zerklsc::tool {

std::string encode_android(const GainTables& tables, int columns, int rows, Losses& losses) {
    const TargetGrid grid = evaluate(tables, corner_points(columns), corner_points(rows));
    // The rows of red are the even ones where the pattern begins with them.
    const bool red_first = tables.pattern == BayerPattern::rggb || tables.pattern == BayerPattern::grbg;
    const std::array order{Colour::r, red_first ? Colour::gr : Colour::gb,
                           red_first ? Colour::gb : Colour::gr, Colour::b};
    std::string text =
        fmt::format("{{\n  \"columns\": {},\n  \"rows\": {},\n  \"gains\": [\n", columns, rows);
    int raised = 0;
    const auto points = static_cast<size_t>(columns) * static_cast<size_t>(rows);
    for (size_t i = 0; i < points; ++i) {
        text += "    [";
        for (const Colour colour : order) {
            const double gain = grid.of(colour)[i];
            raised += gain < 1 ? 1 : 0;
            text += fmt::format("{}{:.6f}", colour == order[0] ? "" : ", ", std::max(gain, 1.0));
        }
        text += i + 1 < points ? "],\n" : "]\n";
    }
    if (raised > 0)
        losses.push_back(fmt::format("{} gains below 1 are raised to 1", raised));
    return text + "  ]\n}\n";
}

} // namespace zerklsc::tool
