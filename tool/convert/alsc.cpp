// encode_alsc
#include <algorithm>

#include <fmt/format.h>

#include "convert/table_formats.h"
#include "convert/target_grid.h"

namespace zerklsc::tool {
namespace {

// One grid row a line, three decimals.
std::string encode_rows(const std::vector<double>& values, int columns, const std::string& indent) {
    std::string text;
    for (size_t i = 0; i < values.size(); ++i) {
        const bool first = i % static_cast<size_t>(columns) == 0;
        text += fmt::format("{}{:.3f}", first ? indent : " ", values[i]);
        if (i + 1 < values.size())
            text += ',';
        if ((i + 1) % static_cast<size_t>(columns) == 0)
            text += '\n';
    }
    return text;
}

std::vector<double> over_minimum(std::vector<double> values) {
    const double smallest = std::ranges::min(values);
    for (double& value : values)
        value /= smallest;
    return values;
}

std::vector<double> green_of(const TargetGrid& grid) {
    std::vector<double> green = grid.of(Colour::gr);
    for (size_t i = 0; i < green.size(); ++i)
        green[i] = (green[i] + grid.of(Colour::gb)[i]) / 2;
    return green;
}

std::vector<double> ratio_to_green(const TargetGrid& grid, Colour colour) {
    std::vector<double> ratio = grid.of(colour);
    const std::vector<double> green = green_of(grid);
    for (size_t i = 0; i < ratio.size(); ++i)
        ratio[i] /= green[i];
    return over_minimum(std::move(ratio));
}

std::string encode_calibrations(const char* name, const std::vector<LitTables>& sets,
                                const std::vector<TargetGrid>& grids, Colour colour) {
    std::string text = fmt::format("                \"{}\": [\n", name);
    for (size_t i = 0; i < sets.size(); ++i)
        text +=
            fmt::format("                    {{\n                        \"ct\": {},\n"
                        "                        \"table\": [\n{}                        ]\n"
                        "                    }}{}\n",
                        sets[i].kelvin,
                        encode_rows(ratio_to_green(grids[i], colour), grids[i].columns, std::string(28, ' ')),
                        i + 1 < sets.size() ? "," : "");
    return text + "                ],\n";
}

} // namespace

std::string encode_alsc(const std::vector<LitTables>& sets, int columns, int rows, Losses& losses) {
    std::vector<LitTables> ascending = sets;
    std::ranges::sort(ascending, {}, &LitTables::kelvin);
    std::vector<TargetGrid> grids;
    std::vector<double> luminance(static_cast<size_t>(columns) * static_cast<size_t>(rows));
    for (const LitTables& set : ascending) {
        grids.push_back(evaluate(set.tables, cell_centres(columns), cell_centres(rows)));
        const std::vector<double> green = over_minimum(green_of(grids.back()));
        for (size_t i = 0; i < luminance.size(); ++i)
            luminance[i] += green[i] / static_cast<double>(ascending.size());
    }
    losses.emplace_back(
        "the gains of Gr and Gb become their mean, and every table is relative to its minimum");
    return fmt::format(
        "{{\n    \"version\": 2.0,\n    \"target\": \"{}\",\n    \"algorithms\": [\n        {{\n"
        "            \"rpi.alsc\": {{\n                \"omega\": 1.3,\n                \"n_iter\": 100,\n"
        "                \"luminance_strength\": 1.0,\n{}{}                \"luminance_lut\": [\n{}"
        "                ],\n                \"sigma\": 0.005,\n                \"sigma_Cb\": 0.005\n"
        "            }}\n        }}\n    ]\n}}\n",
        columns == 32 ? "pisp" : "bcm2835",
        encode_calibrations("calibrations_Cr", ascending, grids, Colour::r),
        encode_calibrations("calibrations_Cb", ascending, grids, Colour::b),
        encode_rows(over_minimum(luminance), columns, std::string(20, ' ')));
}

} // namespace zerklsc::tool
