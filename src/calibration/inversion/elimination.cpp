#include "calibration/inversion/elimination.h"

#include "calibration/inversion/tile_kernel.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

template <class N>
N max(N a, N b) {
    return a > b ? a : b;
}

// Which one of the tiles, for what is kept by tile.
template <class T>
ptrdiff_t tile_index(const Elimination<T>& e, int32_t down, int32_t panel) {
    return ptrdiff_t{panel} * e.tiles + down;
}

// The pending steps.

// The pivot's row in pending step t, from column j on; the next step's is tile_columns further on.
template <class T>
T* pivot_row(const Elimination<T>& e, int32_t t, int32_t j) {
    const int32_t panel = j / tile_columns<T>;
    return e.pivot_rows + (ptrdiff_t{panel} * max_pending + t) * tile_columns<T> + j % tile_columns<T>;
}

// The pivot's column in pending step t, from row i on; the next step's is tile_rows further on.
template <class T>
T* pivot_column(const Elimination<T>& e, int32_t t, int32_t i) {
    const int32_t down = i / tile_rows;
    return e.pivot_columns + (ptrdiff_t{down} * max_pending + t) * tile_rows + i % tile_rows;
}

// The first step that a tile has not seen and that changes it, or the number of all.
template <class T>
int32_t first_change(const Elimination<T>& e, int32_t down, int32_t panel) {
    const int32_t applied = e.applied[tile_index(e, down, panel)];
    const uint32_t steps = (e.steps[down] | 1u << e.pending) >> applied << applied;
    return __builtin_ctz(steps);
}

// Applies the steps from step `first` on, which are all that change the tile.
template <class T>
void apply_pending(const Elimination<T>& e, int32_t down, int32_t panel, int32_t first) {
    if (first < e.pending)
        update_tile(row_part(e, down * tile_rows, panel), pivot_row(e, first, panel * tile_columns<T>),
                    pivot_column(e, first, down * tile_rows), e.pending - first);
    e.applied[tile_index(e, down, panel)] = static_cast<uint8_t>(e.pending);
}

template <class T>
void apply_pending_to_row(const Elimination<T>& e, int32_t row) {
    for (int32_t panel = 0; panel < e.panels; ++panel)
        apply_pending(e, row / tile_rows, panel, first_change(e, row / tile_rows, panel));
}

// Afterwards no step is pending.
template <class T>
void apply_pending_to_all(Elimination<T>& e) {
    for (int32_t panel = 0; panel < e.panels; ++panel) {
        for (int32_t down = 0; down < e.tiles; ++down) {
            constexpr int32_t ahead = 3;
            if (down + ahead < e.tiles)
                prefetch_tile(row_part(e, (down + ahead) * tile_rows, panel));
            apply_pending(e, down, panel, first_change(e, down, panel));
            e.applied[tile_index(e, down, panel)] = 0;
        }
    }
    __builtin_memset(e.steps, 0, static_cast<size_t>(e.tiles) * sizeof e.steps[0]);
    e.pending = 0;
}

// Copies a column that is to be replaced, with the pending steps applied. Zeros take its place in the pivots'
// rows, so that its tiles do not apply those steps to what replaces it.
template <class T>
void take_column(const Elimination<T>& e, int32_t j, T* to) {
    const T* from = column(e, j);
    for (int32_t down = 0; down < e.tiles; ++down, from += tile_rows * tile_columns<T>, to += tile_rows) {
        const int32_t first = first_change(e, down, j / tile_columns<T>);
        update_column(from, to, pivot_row(e, first, j), pivot_column(e, first, down * tile_rows),
                      e.pending - first);
    }
    for (int32_t t = 0; t < e.pending; ++t)
        *pivot_row(e, t, j) = T{0};
}

// The search for the pivot.

// The first column of a panel whose elements can still be pivots.
template <class T>
int32_t first_active(const Elimination<T>& e, int32_t panel) {
    return max(e.step - panel * tile_columns<T>, 0);
}

// Brings a tile and its bound up to date; the square of the bound.
template <class T>
T measure_tile(const Elimination<T>& e, int32_t down, int32_t panel, const Mask<T>& active) {
    apply_pending(e, down, panel, e.applied[tile_index(e, down, panel)]);
    const int32_t first = max(e.step, down * tile_rows);
    const T bound = largest_masked(row_part(e, first, panel), (down + 1) * tile_rows - first, active);
    e.bounds[tile_index(e, down, panel)] = bound;
    return bound * bound;
}

// The largest square that a pivot can have, and the first row of tiles that has it.
template <class T>
struct Best {
    T square;
    int32_t down;
};

// Measures all tiles in which an element may have a square of at least `square` and of the best so far.
template <class T>
void search(const Elimination<T>& e, T square, Best<T>& best) {
    for (int32_t panel = e.step / tile_columns<T>; panel < e.panels; ++panel) {
        const Mask<T> active = magnitudes_from<T>(first_active(e, panel));
        const T* const bounds = e.bounds + tile_index(e, 0, panel);
        const auto is_too_small = [&](int32_t down) {
            return bounds[down] * bounds[down] < max(square, best.square);
        };
        for (int32_t down = e.step / tile_rows; down < e.tiles; ++down) {
            constexpr int32_t ahead = 3;
            if (down + ahead < e.tiles && !is_too_small(down + ahead))
                prefetch_tile(row_part(e, (down + ahead) * tile_rows, panel));
            if (is_too_small(down)) {
                constexpr int32_t at_once = lanes<Lanes<T>>;
                while (down + at_once < e.tiles && are_too_small(bounds + down + 1, max(square, best.square)))
                    down += at_once;
                continue;
            }
            const T found = measure_tile(e, down, panel, active);
            if (found > best.square || (found == best.square && down < best.down))
                best = {found, down};
        }
    }
}

// The first element in row-major order, from the place of the next pivot on, with the largest square. Pivots
// that follow each other are of about one size, so the search starts where about the last one may be reached.
template <class T>
Pivot<T> find_pivot(const Elimination<T>& e, T last) {
    const T likely = last - last / 16;
    Best<T> best = {T{0}, e.tiles};
    search(e, likely, best);
    if (best.square < likely)
        search(e, best.square, best);
    for (int32_t i = max(e.step, best.down * tile_rows); i < e.n; ++i) {
        for (int32_t panel = e.step / tile_columns<T>; panel < e.panels; ++panel) {
            const T bound = e.bounds[tile_index(e, i / tile_rows, panel)];
            if (bound * bound != best.square)
                continue;
            const T* const part = row_part(e, i, panel);
            for (int32_t j = first_active(e, panel); j < tile_columns<T>; ++j)
                if (part[j] * part[j] == best.square)
                    return {best.square, {i, panel * tile_columns<T> + j}};
        }
    }
    return {T{0}, {e.step, e.step}};
}

// What the newest step can add to the elements of each tile.
template <class T>
void raise_bounds(const Elimination<T>& e, T* largest_factors) {
    const int32_t next = e.step + 1;
    const int32_t top = next / tile_rows;
    for (int32_t down = top; down < e.tiles; ++down) {
        const T* const factors = pivot_column(e, e.pending, down * tile_rows);
        largest_factors[down] = T{0};
        for (int32_t i = max(next - down * tile_rows, 0); i < tile_rows; ++i)
            largest_factors[down] = max(magnitude(factors[i]), largest_factors[down]);
    }
    for (int32_t panel = next / tile_columns<T>; panel < e.panels; ++panel) {
        const T* const row = pivot_row(e, e.pending, panel * tile_columns<T>);
        const T largest = largest_masked(row, 1, magnitudes_from<T>(max(next - panel * tile_columns<T>, 0)));
        T* const bounds = e.bounds + tile_index(e, 0, panel);
        for (int32_t down = top; down < e.tiles; ++down)
            bounds[down] += largest_factors[down] * largest;
    }
}

// The step.

// Both rows are up to date.
template <class T>
void swap_rows(const Elimination<T>& e, int32_t i, int32_t k) {
    for (int32_t panel = 0; panel < e.panels; ++panel) {
        T* const a = row_part(e, i, panel);
        T* const b = row_part(e, k, panel);
        for (int32_t j = 0; j < tile_columns<T>; ++j) {
            const T v = a[j];
            a[j] = b[j];
            b[j] = v;
        }
        T& bound = e.bounds[tile_index(e, i / tile_rows, panel)];
        bound = max(bound, e.bounds[tile_index(e, k / tile_rows, panel)]);
    }
}

// Writes a column, up to date, to the place of column j.
template <class T>
void put_column(const Elimination<T>& e, const T* from, int32_t j) {
    T* to = column(e, j);
    T* const bounds = e.bounds + tile_index(e, 0, j / tile_columns<T>);
    for (int32_t i = 0; i < e.n; ++i, to += tile_columns<T>) {
        *to = from[i];
        bounds[i / tile_rows] = max(bounds[i / tile_rows], magnitude(from[i]));
    }
}

// Exchanges rows and columns so that the pivot comes to the place of this step. Its column, up to date, is
// returned and not written.
template <class T>
T* bring_pivot(const Elimination<T>& e, Position from) {
    const int32_t k = e.step;
    apply_pending_to_row(e, k);
    if (from.row != k) {
        apply_pending_to_row(e, from.row);
        swap_rows(e, from.row, k);
    }
    T* const pivots_column = e.columns;
    take_column(e, from.column, pivots_column);
    if (from.column != k) {
        T* const moved = e.columns + ptrdiff_t{e.tiles} * tile_rows;
        take_column(e, k, moved);
        put_column(e, moved, from.column);
    }
    return pivots_column;
}

// Keeps the step of a pivot that stands in its place: its own row and column are written, what it does to all
// others is pending.
template <class T>
void add_step(const Elimination<T>& e, const T* pivots_column, T square) {
    const int32_t k = e.step;
    // Not always the same number as the reciprocal of the pivot.
    const T reciprocal = pivots_column[k] / square;
    T* replaced = column(e, k);
    for (int32_t i = 0; i < e.n; ++i, replaced += tile_columns<T>) {
        *pivot_column(e, e.pending, i) = pivots_column[i];
        e.steps[i / tile_rows] |= uint32_t{pivots_column[i] != T{0}} << e.pending;
        *replaced = -(pivots_column[i] * reciprocal);
    }
    for (int32_t panel = 0; panel < e.panels; ++panel) {
        T* const own = row_part(e, k, panel);
        T* const kept = pivot_row(e, e.pending, panel * tile_columns<T>);
        for (int32_t j = 0; j < tile_columns<T>; ++j)
            kept[j] = own[j] *= reciprocal;
    }
    column(e, k)[ptrdiff_t{k} * tile_columns<T>] = reciprocal;
    *pivot_row(e, e.pending, k) = T{0};
    *pivot_column(e, e.pending, k) = T{0};
}

template <class T>
bool eliminate(Elimination<T>& e) {
    T last = 0;
    for (; e.step < e.n; ++e.step) {
        const Pivot<T> pivot = find_pivot(e, last);
        if (pivot.square == T{0})
            break;
        last = pivot.square;
        e.pivots[e.step] = pivot.position;
        T* const pivots_column = bring_pivot(e, pivot.position);
        add_step(e, pivots_column, pivot.square);
        raise_bounds(e, pivots_column);
        if (++e.pending == max_pending)
            apply_pending_to_all(e);
    }
    apply_pending_to_all(e);
    return e.step == e.n;
}

} // namespace

bool eliminate_floats(Elimination<float>& e) {
    return eliminate(e);
}

bool eliminate_doubles(Elimination<double>& e) {
    return eliminate(e);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
