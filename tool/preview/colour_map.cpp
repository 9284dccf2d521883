// sequential_colour, diverging_colour
#include "preview/colour_map.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zerklsc::tool {
namespace {

using Map = std::array<Rgb, 17>;

// Computed in Oklab: lightness a straight line, hue from 295 to 105 degrees, chroma rising from 0.09 to 0.16,
// or as far as sRGB reaches.
constexpr Map sequential{{{38, 21, 71},
                          {41, 35, 86},
                          {41, 49, 100},
                          {38, 64, 113},
                          {33, 79, 125},
                          {26, 95, 134},
                          {15, 111, 142},
                          {5, 126, 148},
                          {11, 142, 151},
                          {31, 157, 153},
                          {55, 172, 152},
                          {81, 186, 149},
                          {110, 199, 143},
                          {141, 211, 134},
                          {175, 222, 123},
                          {210, 231, 110},
                          {248, 237, 96}}};

// Hue 255 degrees on one side, 35 on the other.
constexpr Map diverging{{{1, 97, 189},
                         {47, 118, 203},
                         {80, 139, 213},
                         {109, 159, 222},
                         {137, 178, 230},
                         {165, 196, 237},
                         {191, 213, 242},
                         {217, 229, 245},
                         {245, 241, 239},
                         {244, 222, 217},
                         {240, 201, 191},
                         {233, 179, 164},
                         {224, 155, 137},
                         {214, 131, 110},
                         {202, 105, 81},
                         {189, 78, 51},
                         {175, 47, 9}}};

uint8_t between(uint8_t a, uint8_t b, double t) {
    const double value = a + (b - a) * t;
    const int whole = static_cast<int>(value);
    return static_cast<uint8_t>(value - whole < 0.5 ? whole : whole + 1); // as lround() does
}

Rgb look_up(const Map& map, double t) {
    constexpr size_t cells = std::tuple_size_v<Map> - 1;
    const double place = (std::isnan(t) ? 0 : std::clamp(t, 0.0, 1.0)) * double{cells};
    const size_t i = std::min(static_cast<size_t>(place), cells - 1);
    const double f = place - static_cast<double>(i);
    return {between(map[i].r, map[i + 1].r, f), between(map[i].g, map[i + 1].g, f),
            between(map[i].b, map[i + 1].b, f)};
}

} // namespace

Rgb sequential_colour(double t) {
    return look_up(sequential, t);
}

Rgb diverging_colour(double t) {
    return look_up(diverging, t);
}

} // namespace zerklsc::tool
