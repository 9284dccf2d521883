// encode_rkisp1, encode_rkisp1_polynomial
#include <algorithm>
#include <cmath>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "convert/radial_gain.h"
#include "convert/table_formats.h"
#include "convert/target_grid.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

constexpr int vertices = 17;
constexpr int highest_word = 4095;
constexpr double highest_gain = double{highest_word} / double{ZERKLSC_UNITY_GAIN};

std::string encode_gains(const char* name, const std::vector<double>& gains, int& limited) {
    std::vector<int> words;
    for (const double gain : gains) {
        const int word = static_cast<int>(std::lround(gain * double{ZERKLSC_UNITY_GAIN}));
        words.push_back(std::clamp(word, 0, highest_word));
        limited += word > highest_word ? 1 : 0;
    }
    return fmt::format("          {}: [{}]\n", name, fmt::join(words, ", "));
}

// All of a file up to the sets. The eight sectors are those of half a side; the other half mirrors them.
std::string encode_head(const char* type) {
    const std::string sectors = fmt::format("[{}]", fmt::join(std::vector<double>(8, 0.0625), ", "));
    return fmt::format("%YAML 1.1\n---\nversion: 1\nalgorithms:\n  - LensShadingCorrection:\n{}"
                       "      x-size: {}\n      y-size: {}\n      sets:\n",
                       type, sectors, sectors);
}

std::string encode_set_head(const LitTables& set) {
    return fmt::format("        - ct: {}\n          resolution: {}x{}\n", set.kelvin, set.tables.raw_width,
                       set.tables.raw_height);
}

// At how many of the places, across and down, the form asks for more than the camera stack gives.
size_t places_above_limit(const RadialGain& gain, const std::vector<double>& places,
                          const GainTables& tables) {
    const GainSurface surface = surface_of(gain, tables.raw_width, tables.raw_height);
    size_t above = 0;
    for (const double y : places)
        above += static_cast<size_t>(
            std::ranges::count_if(places, [&](double x) { return surface(x, y) > highest_gain; }));
    return above;
}

RadialFit fit_colour(const TargetGrid& grid, const std::vector<double>& places, const GainTables& tables,
                     Colour colour) {
    std::vector<GainPoint> points;
    for (size_t j = 0; j < places.size(); ++j)
        for (size_t i = 0; i < places.size(); ++i)
            points.push_back({places[i], places[j], grid.of(colour)[j * places.size() + i]});
    return fit_radial_gain(points, tables.raw_width, tables.raw_height);
}

} // namespace

std::string encode_rkisp1(const std::vector<LitTables>& sets, Losses& losses) {
    std::string yaml = encode_head("");
    const std::vector<double> points = corner_points(vertices);
    int limited = 0;
    for (const LitTables& set : sets) {
        const TargetGrid grid = evaluate(set.tables, points, points);
        yaml += encode_set_head(set);
        yaml += encode_gains("r", grid.of(Colour::r), limited);
        yaml += encode_gains("gr", grid.of(Colour::gr), limited);
        yaml += encode_gains("gb", grid.of(Colour::gb), limited);
        yaml += encode_gains("b", grid.of(Colour::b), limited);
    }
    if (limited > 0)
        losses.push_back(fmt::format("{} gains above {:.3f} are limited to it", limited, highest_gain));
    return yaml + "...\n";
}

std::string encode_rkisp1_polynomial(const std::vector<LitTables>& sets, Losses& losses) {
    // Twice as close as the camera stack reads the polynomial.
    const std::vector<double> places = corner_points(2 * vertices - 1);
    constexpr std::array<const char*, 4> names{"r", "gr", "gb", "b"}; // by Colour
    std::string yaml = encode_head("      type: polynomial\n");
    for (const LitTables& set : sets) {
        const TargetGrid grid = evaluate(set.tables, places, places);
        yaml += encode_set_head(set);
        for (const Colour colour : all_colours) {
            const auto [gain, rms, largest] = fit_colour(grid, places, set.tables, colour);
            yaml += fmt::format("          {}: {{ cx: {:.6f}, cy: {:.6f}", names[static_cast<size_t>(colour)],
                                gain.centre_x, gain.centre_y);
            for (size_t i = 0; i < gain.k.size(); ++i)
                yaml += fmt::format(", k{}: {:.8g}", i, gain.k[i]);
            yaml += " }\n";
            losses.push_back(fmt::format(
                "the radial form of {} at {} K is off by {:.3f} % (root mean square), {:.3f} % at most",
                name_of(colour), set.kelvin, 100 * rms, 100 * largest));
            if (const size_t above = places_above_limit(gain, places, set.tables))
                losses.push_back(fmt::format(
                    "the radial form of {} at {} K is above {:.3f} at {} of {} places: "
                    "the camera stack limits gains to that",
                    name_of(colour), set.kelvin, highest_gain, above, places.size() * places.size()));
        }
    }
    return yaml + "...\n";
}

} // namespace zerklsc::tool
