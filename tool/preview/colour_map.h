// Colours for numbers.
#pragma once

#include "preview/canvas.h"

namespace zerklsc::tool {

// For levels: t from 0 to 1 goes from dark indigo over teal and green to yellow. Lightness rises evenly (0.25
// to 0.93 in Oklab), so that equal differences look equal, in grey print and to colour-blind eyes too.
Rgb sequential_colour(double t);

// For deviations: blue for t = 0, near white for 0.5, red for 1; both sides darken alike.
Rgb diverging_colour(double t);

} // namespace zerklsc::tool
