// name_of, bayer_pattern_from, colour_of_plane, plane_of_colour
#include "imaging/bayer_pattern.h"

#include <algorithm>
#include <cctype>

namespace zerklsc::tool {
namespace {

// Row: pattern. Column: plane.
constexpr std::array<std::array<Colour, 4>, 4> colours_by_plane{{
    {Colour::gr, Colour::r, Colour::b, Colour::gb},
    {Colour::r, Colour::gr, Colour::gb, Colour::b},
    {Colour::b, Colour::gb, Colour::gr, Colour::r},
    {Colour::gb, Colour::b, Colour::r, Colour::gr},
}};

} // namespace

const char* name_of(Colour colour) {
    constexpr std::array<const char*, 4> names{"R", "Gr", "Gb", "B"};
    return names[static_cast<size_t>(colour)];
}

const char* name_of(BayerPattern pattern) {
    return bayer_pattern_names[static_cast<size_t>(pattern)];
}

std::optional<BayerPattern> bayer_pattern_from(const std::string& name) {
    std::string upper = name;
    std::ranges::transform(upper, upper.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    const auto* const found = std::ranges::find(bayer_pattern_names, upper);
    if (found == bayer_pattern_names.end())
        return std::nullopt;
    return static_cast<BayerPattern>(found - bayer_pattern_names.begin());
}

Colour colour_of_plane(BayerPattern pattern, int plane) {
    return colours_by_plane[static_cast<size_t>(pattern)][static_cast<size_t>(plane)];
}

int plane_of_colour(BayerPattern pattern, Colour colour) {
    const auto& planes = colours_by_plane[static_cast<size_t>(pattern)];
    return static_cast<int>(std::ranges::find(planes, colour) - planes.begin());
}

} // namespace zerklsc::tool
