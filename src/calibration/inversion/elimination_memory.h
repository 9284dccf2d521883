// The memory of one elimination.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "calibration/inversion/elimination.h"
#include "frame/scratch.h"

namespace zerklsc {

constexpr size_t cache_line = 64;

// The first address from p on where a cache line starts.
template <class T>
T* aligned(T* p) {
    const size_t over = reinterpret_cast<uintptr_t>(p) % cache_line;
    return p + (over == 0 ? 0 : (cache_line - over) / sizeof(T));
}

// `places` has room for two sets of n; `values` is no smaller than the matrix.
template <class T>
struct Workspace {
    Scratch<T> values;
    Scratch<uint8_t> applied;
    Scratch<PivotPlace> places;
    Elimination<T> elimination;

    bool complete() const { return values != nullptr && applied != nullptr && places != nullptr; }
};

inline int32_t tiles(int32_t n, int32_t size) {
    return static_cast<int32_t>((int64_t{n} + size - 1) / size);
}

template <class T>
Workspace<T> make_workspace(int32_t n) {
    const int32_t down = tiles(n, tile_rows);
    const int32_t across = tiles(n, tile_columns);
    const int64_t tile_count = int64_t{down} * across;
    const int64_t matrix = tile_count * tile_rows * tile_columns;
    const int64_t rows = int64_t{across} * tile_columns * history_steps;
    const int64_t columns = int64_t{down} * tile_rows * history_steps;
    const int64_t lines = int64_t{down} * tile_rows * 2;
    const uint64_t count =
        static_cast<uint64_t>(matrix + rows + columns + lines + tile_count + down) + cache_line / sizeof(T);
    Workspace<T> w = {allocate<T>(count),
                      allocate<uint8_t>(static_cast<uint64_t>(tile_count)),
                      allocate<PivotPlace>(2 * static_cast<uint64_t>(n)),
                      {}};
    if (!w.complete())
        return w;
    std::fill_n(w.values.get(), count, T{0});
    std::fill_n(w.applied.get(), tile_count, uint8_t{0});
    Elimination<T>& e = w.elimination;
    e.n = n;
    e.tiles_down = down;
    e.tiles_across = across;
    e.matrix = aligned(w.values.get());
    e.rows = e.matrix + matrix;
    e.columns = e.rows + rows;
    e.lines = e.columns + columns;
    e.bounds = e.lines + lines;
    e.reach = e.bounds + tile_count;
    e.applied = w.applied.get();
    e.places = w.places.get();
    std::fill_n(e.bounds, tile_count, std::numeric_limits<T>::infinity());
    return w;
}

} // namespace zerklsc
