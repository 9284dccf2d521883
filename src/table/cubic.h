// The weights of cubic interpolation between two nodes.
#pragma once

namespace zerklsc {

// For the node before the cell, the two nodes at its ends, and the node after it.
struct Taps {
    float c0, c1, c2, c3;
};

// At fraction t of the cell, 0 <= t < 1.
Taps cubic_taps(float t);

} // namespace zerklsc
