// The gains that the four planes of a flat field need at a position.
#pragma once

#include <cstdint>

#include "sampling/plane_set.h"
#include "sampling/window.h"
#include "zerklsc.h"

namespace zerklsc {

struct FlatField {
    PlaneSet planes;
    Window window;
    uint16_t
        peaks[ZERKLSC_CHANNELS]; // the level that each plane is raised to: the brightest around its centre
    bool measurable; // false where the sampling refuses, the planes have no room for a centre cluster, or
                     // there is no memory
};

// The frame has width x height samples; it is read by gains_at() too.
FlatField make_flat_field(const uint16_t* image, int32_t width, int32_t height, const imfilter_t& filter);

// Peak divided by level, for each plane.
void gains_at(const FlatField& flat, int32_t x, int32_t y, float gains[ZERKLSC_CHANNELS]);

} // namespace zerklsc
