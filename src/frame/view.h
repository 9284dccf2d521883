// A rectangle of elements inside somebody else's buffer.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>

namespace zerklsc {

// Row y starts at data + y * stride; 0 <= width <= stride (a view of no rows may have any pointer).
template <class T>
struct View {
    T* data;
    int32_t width;
    int32_t height;
    ptrdiff_t stride;

    T* row(int32_t y) const {
        assert(y >= 0 && y < height);
        return data + y * stride;
    }

    T& at(int32_t x, int32_t y) const {
        assert(x >= 0 && x < width);
        return row(y)[x];
    }
};

// A view of a buffer without padding between its rows.
template <class T>
View<T> packed_view(T* data, int32_t width, int32_t height) {
    return {data, width, height, width};
}

} // namespace zerklsc
