// What both forms of the matrix inversion keep about a pivot.
#pragma once

#include <cstdint>

namespace zerklsc {

struct PivotPlace {
    int32_t row;
    int32_t column;
};

template <class T>
struct Pivot {
    T magnitude; // squared; 0 when the block searched holds nothing else
    PivotPlace place;
};

} // namespace zerklsc
