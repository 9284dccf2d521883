// encode_rkisp1
#include <algorithm>
#include <cmath>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "convert/table_formats.h"
#include "convert/target_grid.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

constexpr int vertices = 17;
constexpr int highest_gain = 4095;

std::string encode_gains(const char* name, const std::vector<double>& gains, int& limited) {
    std::vector<int> words;
    for (const double gain : gains) {
        const int word = static_cast<int>(std::lround(gain * double{ZERKLSC_UNITY_GAIN}));
        words.push_back(std::clamp(word, 0, highest_gain));
        limited += word > highest_gain ? 1 : 0;
    }
    return fmt::format("          {}: [{}]\n", name, fmt::join(words, ", "));
}

} // namespace

std::string encode_rkisp1(const std::vector<LitTables>& sets, Losses& losses) {
    // The eight sectors of half a side; the other half mirrors them.
    const std::string sectors = fmt::format("[{}]", fmt::join(std::vector<double>(8, 0.0625), ", "));
    std::string yaml = fmt::format("%YAML 1.1\n---\nversion: 1\nalgorithms:\n  - LensShadingCorrection:\n"
                                   "      x-size: {}\n      y-size: {}\n      sets:\n",
                                   sectors, sectors);
    const std::vector<double> points = corner_points(vertices);
    int limited = 0;
    for (const auto& [tables, kelvin] : sets) {
        const TargetGrid grid = evaluate(tables, points, points);
        yaml += fmt::format("        - ct: {}\n          resolution: {}x{}\n", kelvin, tables.raw_width,
                            tables.raw_height);
        yaml += encode_gains("r", grid.of(Colour::r), limited);
        yaml += encode_gains("gr", grid.of(Colour::gr), limited);
        yaml += encode_gains("gb", grid.of(Colour::gb), limited);
        yaml += encode_gains("b", grid.of(Colour::b), limited);
    }
    if (limited > 0)
        losses.push_back(fmt::format("{} gains above {:.3f} are limited to it", limited,
                                     double{highest_gain} / double{ZERKLSC_UNITY_GAIN}));
    return yaml + "...\n";
}

} // namespace zerklsc::tool
