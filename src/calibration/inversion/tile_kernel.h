// The inner loops of the elimination: what is done to the elements of one tile.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "calibration/inversion/elimination.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

template <class T>
using Lanes = Vector<T>;

// Applies `count` steps to two vectors of each row of a tile: subtracts the pivots' rows, which are
// tile_columns apart, multiplied by the elements of the pivots' columns, which are tile_rows apart. Half of
// the time is spent here: where the loop begins in a cache line makes 2 % of all.
template <class T>
[[gnu::aligned(64)]] void update_block(T* block, const T* row, const T* factors, int32_t count) {
    constexpr int32_t width = lanes<Lanes<T>>;
    Lanes<T> low[tile_rows];
    Lanes<T> high[tile_rows];
    for (int32_t i = 0; i < tile_rows; ++i) {
        low[i] = load<Lanes<T>>(block + i * tile_columns<T>);
        high[i] = load<Lanes<T>>(block + i * tile_columns<T> + width);
    }
    for (int32_t t = 0; t < count; ++t, row += tile_columns<T>, factors += tile_rows) {
        const Lanes<T> row_low = load<Lanes<T>>(row);
        const Lanes<T> row_high = load<Lanes<T>>(row + width);
        for (int32_t i = 0; i < tile_rows; ++i) {
            low[i] -= row_low * factors[i];
            high[i] -= row_high * factors[i];
        }
    }
    for (int32_t i = 0; i < tile_rows; ++i) {
        store(block + i * tile_columns<T>, low[i]);
        store(block + i * tile_columns<T> + width, high[i]);
    }
}

template <class T>
void update_tile(T* tile, const T* rows, const T* factors, int32_t count) {
    for (int32_t j = 0; j < tile_columns<T>; j += 2 * lanes<Lanes<T>>)
        update_block(tile + j, rows + j, factors, count);
}

// Writes one column of a tile after `count` steps: `row` is the pivots' element in that column. The elements
// go into the vector one by one, as a load would have to wait for their stores.
template <class T>
void update_column(const T* column, T* to, const T* row, const T* factors, int32_t count) {
    constexpr int32_t bytes = tile_rows * int32_t{sizeof(T)};
    using Elements = Vector < T, bytes<vector_bytes ? bytes : vector_bytes>;
    for (int32_t i = 0; i < tile_rows; i += lanes<Elements>) {
        Elements v;
        for (int32_t lane = 0; lane < lanes<Elements>; ++lane)
            v[lane] = column[(i + lane) * tile_columns<T>];
        for (int32_t t = 0; t < count; ++t)
            v -= row[t * tile_columns<T>] * load<Elements>(factors + t * tile_rows + i);
        store(to + i, v);
    }
}

template <class T>
T magnitude(T v) {
    return v < 0 ? -v : v;
}

// In the following, what is not a number does not count.

// The larger one in each lane. GCC does not find the instruction where a is made by another.
template <class V>
ZERKLSC_SIMD V larger(const V& a, const V& b) {
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64 && lanes<V> == 8)
        return _mm512_maskz_max_pd(0xFF, a, b);
    if constexpr (sizeof(V) == 64 && lanes<V> == 16)
        return _mm512_maskz_max_ps(0xFFFF, a, b);
#endif
    return a > b ? a : b;
}

template <class V>
ZERKLSC_SIMD auto largest_lane(const V& v) {
    if constexpr (lanes<V> == 1) {
        return v[0];
    } else {
        using Half = Vector<std::remove_cvref_t<decltype(v[0])>, sizeof(V) / 2>;
        Half halves[2];
        __builtin_memcpy(halves, &v, sizeof v);
        return largest_lane(larger(halves[1], halves[0]));
    }
}

// Bits of the elements of a row of a tile.
template <class T>
struct Mask {
    using Bits = std::conditional_t<sizeof(T) == sizeof(uint64_t), uint64_t, uint32_t>;
    Bits bits[tile_columns<T>];
};

// Leaves the magnitudes of the elements from column `first` on.
template <class T>
Mask<T> magnitudes_from(int32_t first) {
    using Bits = typename Mask<T>::Bits;
    Mask<T> mask;
    for (int32_t j = 0; j < tile_columns<T>; ++j)
        mask.bits[j] = j < first ? Bits{0} : static_cast<Bits>(static_cast<Bits>(~Bits{0}) >> 1);
    return mask;
}

// The largest of the masked elements in `rows` rows of a tile.
template <class T>
T largest_masked(const T* from, int32_t rows, const Mask<T>& mask) {
    using Bits = Vector<typename Mask<T>::Bits>;
    constexpr int32_t width = lanes<Lanes<T>>;
    constexpr int32_t parts = 4;
    Lanes<T> largest[parts] = {};
    for (int32_t i = 0; i < rows; ++i, from += tile_columns<T>) {
        for (int32_t j = 0; j < tile_columns<T>; j += width) {
            const auto v = reinterpret_cast<Lanes<T>>(load<Bits>(from + j) & load<Bits>(mask.bits + j));
            largest[j / width % parts] = larger(v, largest[j / width % parts]);
        }
    }
    return largest_lane(larger(larger(largest[0], largest[1]), larger(largest[2], largest[3])));
}

// Whether no square of as many bounds as fill a vector is as large as this one.
template <class T>
bool are_too_small(const T* bounds, T square) {
    const auto b = load<Lanes<T>>(bounds);
    return is_zero(reinterpret_cast<Words>(~(b * b < square)));
}

template <class T>
void prefetch_tile(const T* tile) {
    constexpr int32_t line = 64 / int32_t{sizeof(T)};
#pragma GCC unroll 1
    for (int32_t j = 0; j < tile_rows * tile_columns<T>; j += line)
        __builtin_prefetch(tile + j, 1);
}

} // namespace
} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
