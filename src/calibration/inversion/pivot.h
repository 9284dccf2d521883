// What both forms of the matrix inversion keep about a pivot.
#pragma once

#include <cstdint>

namespace zerklsc {

struct Position {
    int32_t row;
    int32_t column;
};

template <class T>
struct Pivot {
    T square; // of its magnitude; 0 where the elements searched hold nothing else
    Position position;
};

} // namespace zerklsc
