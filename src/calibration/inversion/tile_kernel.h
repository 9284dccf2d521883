// The inner loops of the elimination, on the widest vectors of the instruction set that the source which
// includes this is compiled for.
#pragma once

#include <cstddef>
#include <cstdint>

#include "calibration/inversion/elimination.h"

namespace zerklsc::ZERKLSC_LEVEL {
namespace {

#if defined(__AVX512F__)
constexpr int vector_bytes = 64;
#elif defined(__AVX2__)
constexpr int vector_bytes = 32;
#else
constexpr int vector_bytes = 16;
#endif

template <class T>
struct Lanes;

template <>
struct Lanes<double> {
    typedef double Vector __attribute__((vector_size(vector_bytes)));
};

// No more than tile_rows elements.
template <>
struct Lanes<float> {
    typedef float Vector __attribute__((vector_size(vector_bytes < 32 ? vector_bytes : 32)));
};

template <class T>
using Vector = typename Lanes<T>::Vector;

template <class T>
constexpr int32_t lanes = int32_t{sizeof(Vector<T>)} / int32_t{sizeof(T)};

template <class T>
Vector<T> load(const T* from) {
    Vector<T> v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}

template <class T>
void store(T* to, const Vector<T>& v) {
    __builtin_memcpy(to, &v, sizeof v);
}

template <class T>
struct Pair {
    Vector<T> low;
    Vector<T> high;
};

template <class T>
Pair<T> load_pair(const T* from) {
    return {load(from), load(from + lanes<T>)};
}

template <class T>
void store_pair(T* to, const Pair<T>& v) {
    store(to, v.low);
    store(to + lanes<T>, v.high);
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
        for (int32_t j = 0; j < tile_columns; j += 2 * lanes<T>)
            update_block(tile + i * tile_columns + j, rows + j, columns + i, count);
}

// Applies `count` steps to one line of a tile, `width` elements long: its part of step t stands at
// parts[t * width], its factor at factors[t * factor_stride].
template <int32_t width, class T>
void update_line(T* line, const T* parts, const T* factors, int32_t factor_stride, int32_t count) {
    for (int32_t j = 0; j < width; j += lanes<T>) {
        Vector<T> v = load(line + j);
        for (int32_t t = 0; t < count; ++t)
            v -= load(parts + t * width + j) * factors[t * factor_stride];
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
T largest_lane(const Vector<T>& v) {
    T all[lanes<T>];
    store(all, v);
    return largest(all, all + lanes<T>);
}

// The largest magnitude in the rows of a tile.
template <class T>
T largest_of_rows(const T* from, const T* to) {
    Vector<T> most_low = {}, most_high = {}, least_low = {}, least_high = {};
    for (; from < to; from += 2 * lanes<T>) {
        const Vector<T> low = load(from);
        const Vector<T> high = load(from + lanes<T>);
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
} // namespace zerklsc::ZERKLSC_LEVEL
