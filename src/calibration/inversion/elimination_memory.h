// The memory of one elimination.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "calibration/inversion/elimination.h"
#include "frame/scratch.h"

namespace zerklsc {

// `values` is no smaller than the matrix.
template <class T>
struct Workspace {
    Scratch<T> values;
    Scratch<uint8_t> applied;
    Scratch<Position> pivots;
    Scratch<Position> sources; // where the rows and columns of the inverse are; before, steps of tiles
    Elimination<T> elimination;

    bool complete() const {
        return values != nullptr && applied != nullptr && pivots != nullptr && sources != nullptr;
    }
};

inline int32_t tiles(int32_t n, int32_t size) {
    return static_cast<int32_t>((int64_t{n} + size - 1) / size);
}

template <class T>
Workspace<T> make_workspace(int32_t n) {
    const int32_t down = tiles(n, tile_rows);
    const int32_t panels = tiles(n, tile_columns<T>);
    const int64_t rows = int64_t{down} * tile_rows;
    const int64_t columns = int64_t{panels} * tile_columns<T>;
    const int64_t tile_count = int64_t{down} * panels;
    const int64_t count = rows * columns + (rows + columns) * max_pending + 2 * rows + tile_count;
    const uint64_t room = static_cast<uint64_t>(count) + cache_line / sizeof(T);
    Workspace<T> w = {allocate<T>(room),
                      allocate<uint8_t>(static_cast<uint64_t>(tile_count)),
                      allocate<Position>(static_cast<uint64_t>(n)),
                      allocate<Position>(static_cast<uint64_t>(n)),
                      {}};
    if (!w.complete())
        return w;
    std::fill_n(w.values.get(), room, T{0});
    std::fill_n(w.applied.get(), tile_count, uint8_t{0});
    Elimination<T>& e = w.elimination;
    e.n = n;
    e.tiles = down;
    e.panels = panels;
    e.matrix = aligned(w.values.get());
    e.pivot_rows = e.matrix + rows * columns;
    e.pivot_columns = e.pivot_rows + columns * max_pending;
    e.columns = e.pivot_columns + rows * max_pending;
    e.bounds = e.columns + 2 * rows;
    e.steps = reinterpret_cast<uint32_t*>(w.sources.get());
    e.applied = w.applied.get();
    e.pivots = w.pivots.get();
    std::fill_n(e.steps, down, uint32_t{0});
    std::fill_n(e.bounds, tile_count, std::numeric_limits<T>::infinity());
    return w;
}

} // namespace zerklsc
