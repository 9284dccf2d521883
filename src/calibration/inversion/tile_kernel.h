// The inner loops of the elimination, on the widest vectors of the instruction set that the source which
// includes this is compiled for.
#pragma once

#include <cstddef>
#include <cstdint>

#include "calibration/inversion/elimination.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// No more than tile_rows elements.
constexpr int32_t lanes_bytes(int32_t element_bytes) {
    return vector_bytes < tile_rows * element_bytes ? vector_bytes : tile_rows * element_bytes;
}

template <class T>
using Lanes = Vector<T, lanes_bytes(sizeof(T))>;

template <class T>
struct Pair {
    Lanes<T> low;
    Lanes<T> high;
};

template <class T>
Pair<T> load_pair(const T* from) {
    return {load<Lanes<T>>(from), load<Lanes<T>>(from + lanes<Lanes<T>>)};
}

template <class T>
void store_pair(T* to, const Pair<T>& v) {
    store(to, v.low);
    store(to + lanes<Lanes<T>>, v.high);
}

template <class T>
void subtract_product(Pair<T>& v, const Pair<T>& row, T factor) {
    v.low -= row.low * factor;
    v.high -= row.high * factor;
}

// Applies `count` steps to 4 rows by 2 vectors of a tile.
template <class T>
void update_block(T* block, const T* row, const T* column, int32_t count) {
    Pair<T> v0 = load_pair(block);
    Pair<T> v1 = load_pair(block + tile_columns);
    Pair<T> v2 = load_pair(block + 2 * tile_columns);
    Pair<T> v3 = load_pair(block + 3 * tile_columns);
    for (int32_t t = 0; t < count; ++t, row += tile_columns, column += tile_rows) {
        const Pair<T> r = load_pair(row);
        subtract_product(v0, r, column[0]);
        subtract_product(v1, r, column[1]);
        subtract_product(v2, r, column[2]);
        subtract_product(v3, r, column[3]);
    }
    store_pair(block, v0);
    store_pair(block + tile_columns, v1);
    store_pair(block + 2 * tile_columns, v2);
    store_pair(block + 3 * tile_columns, v3);
}

template <class T>
void update_tile(T* tile, const T* rows, const T* columns, int32_t count) {
    for (int32_t i = 0; i < tile_rows; i += 4)
        for (int32_t j = 0; j < tile_columns; j += 2 * lanes<Lanes<T>>)
            update_block(tile + i * tile_columns + j, rows + j, columns + i, count);
}

// Applies `count` steps to one line of a tile, `width` elements long: its part of step t stands at
// parts[t * width], its factor at factors[t * factor_stride].
template <int32_t width, class T>
void update_line(T* line, const T* parts, const T* factors, int32_t factor_stride, int32_t count) {
    for (int32_t j = 0; j < width; j += lanes<Lanes<T>>) {
        Lanes<T> v = load<Lanes<T>>(line + j);
        for (int32_t t = 0; t < count; ++t)
            v -= load<Lanes<T>>(parts + t * width + j) * factors[t * factor_stride];
        store(line + j, v);
    }
}

// In the following, what is not a number does not count.

template <class T>
T largest(const T* from, const T* to) {
    T most = 0;
    for (; from < to; ++from) {
        most = *from > most ? *from : most;
        most = -*from > most ? -*from : most;
    }
    return most;
}

template <class T>
T largest_lane(const Lanes<T>& v) {
    T all[lanes<Lanes<T>>];
    store(all, v);
    return largest(all, all + lanes<Lanes<T>>);
}

// The largest magnitude in the rows of a tile.
template <class T>
T largest_of_rows(const T* from, const T* to) {
    Lanes<T> most_low = {}, most_high = {}, least_low = {}, least_high = {};
    for (; from < to; from += 2 * lanes<Lanes<T>>) {
        const Lanes<T> low = load<Lanes<T>>(from);
        const Lanes<T> high = load<Lanes<T>>(from + lanes<Lanes<T>>);
        most_low = low > most_low ? low : most_low;
        most_high = high > most_high ? high : most_high;
        least_low = low < least_low ? low : least_low;
        least_high = high < least_high ? high : least_high;
    }
    most_low = most_high > most_low ? most_high : most_low;
    least_low = least_high < least_low ? least_high : least_low;
    const T most = largest_lane<T>(most_low);
    const T least = largest_lane<T>(least_low);
    return most > least ? most : least;
}

} // namespace
} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
