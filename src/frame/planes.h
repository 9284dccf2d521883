// The four planes of a frame: their numbers, their colours, and the order in which the ISP records list them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "zerklsc.h"

namespace zerklsc {

// Plane c holds the samples whose raw column and row have the parities c & 1 and c >> 1.
constexpr int32_t plane_at(int32_t x, int32_t y) {
    return (x & 1) + 2 * (y & 1);
}

// The ISP lists the planes column by column: its table pointer k is that of plane plane_of_pointer[k]. The
// order is its own inverse, so that it also gives the pointer of a plane.
inline constexpr int32_t plane_of_pointer[ZERKLSC_CHANNELS] = {0, 2, 1, 3};

// Whether four pointers to tables are all there.
template <class T>
bool all_given(T* const tables[ZERKLSC_CHANNELS]) {
    return std::none_of(tables, tables + ZERKLSC_CHANNELS, [](T* table) { return table == nullptr; });
}

// In the order in which the ISP goes through them; the first one is its reference.
enum Colour : uint8_t { Gb, B, R, Gr };
inline constexpr int colour_count = 4;

// One of something for each colour.
template <class T>
struct ByColour {
    T of[colour_count];
};

inline constexpr uint8_t highest_bayer_pattern = 3;

// The colour of each plane, by Bayer pattern.
inline constexpr Colour plane_colours[highest_bayer_pattern + 1][ZERKLSC_CHANNELS] = {
    {Gr, R, B, Gb},
    {R, Gr, Gb, B},
    {B, Gb, Gr, R},
    {Gb, B, R, Gr},
};

// The plane of a colour. The pattern exists, as it must for plane_colours.
constexpr int32_t plane_of(Colour colour, uint8_t bayer_pattern) {
    int32_t plane = 0;
    while (plane_colours[bayer_pattern][plane] != colour)
        ++plane;
    return plane;
}

} // namespace zerklsc
