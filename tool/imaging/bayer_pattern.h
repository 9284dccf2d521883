// Which colour sits where in the 2 x 2 cell of a mosaic.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace zerklsc::tool {

// The values are those of isp_param_tag.bayer_pattern.
enum class BayerPattern : uint8_t { grbg = 0, rggb = 1, bggr = 2, gbrg = 3 };

constexpr std::array<const char*, 4> bayer_pattern_names{"GRBG", "RGGB", "BGGR", "GBRG"};

// The colours in the order in which the tool lists them. Gr shares its rows with red, Gb with blue.
enum class Colour { r, gr, gb, b };
constexpr std::array<Colour, 4> all_colours{Colour::r, Colour::gr, Colour::gb, Colour::b};

const char* name_of(Colour colour);
const char* name_of(BayerPattern pattern);

// The pattern of that name in any case, or nothing.
std::optional<BayerPattern> bayer_pattern_from(const std::string& name);

// Plane numbers are those of the library: column parity + 2 * row parity.
Colour colour_of_plane(BayerPattern pattern, int plane);
int plane_of_colour(BayerPattern pattern, Colour colour);

} // namespace zerklsc::tool
