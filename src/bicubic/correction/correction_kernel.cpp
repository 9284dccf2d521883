// The correction by strips and cells. Inside a cell the four gains of the strip are constant and the weights
// depend on the phase only: the taps of a whole cell are laid out once per call.
#include "bicubic/correction/cells.h"
#include "bicubic/correction/strips.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// A cell is corrected by whole lines of the cache, the rest of it by `Pixels`.
constexpr int32_t line_pixels = 32;

// The gains of short cells are laid out for so many pixels at a time.
constexpr int32_t max_laid_out = 1024;

constexpr int32_t parts_of(int32_t pixels) {
    return (pixels + pixels_at_once - 1) / pixels_at_once;
}

constexpr int32_t line_parts = parts_of(line_pixels);

struct CellTaps {
    PixelTaps whole[parts_of(2 * highest_step)];
    PixelTaps last[parts_of(3)]; // every pixel at phase 1
};

void lay_out_taps(const Correction& c, CellTaps& taps) {
    const int32_t pixels = 2 * c.step;
    for (int32_t part = 0; part < parts_of(pixels); ++part)
        for (int32_t i = 0; i < pixels_at_once; ++i) {
            const int32_t x = part * pixels_at_once + i;
            set_taps(taps.whole[part], i, c.phases[x < pixels ? x / 2 : 0]);
        }
    for (PixelTaps& part : taps.last)
        for (int32_t i = 0; i < pixels_at_once; ++i)
            set_taps(part, i, c.phases[c.step > 1 ? 1 : 0]);
}

// Corrects `count` pixels, less than `Pixels`. All of them are written where the row has the room: beyond the
// pixels they are what was read, which leaves a frame in place as it is, and another frame to the cells that
// follow.
[[gnu::always_inline]] inline void correct_few(const uint16_t* in, const Pixels& gains, int32_t count,
                                               int32_t room, uint16_t* out) {
    uint16_t few[pixels_at_once] = {};
    if (room >= pixels_at_once) {
        const Pixels samples = load_pixels(in);
        store_pixels(out, first_pixels(count, corrected<false>(samples, gains), samples));
    } else {
        __builtin_memcpy(few, in, static_cast<size_t>(count) * sizeof *in);
        store_pixels(few, corrected<false>(load_pixels(few), gains));
        __builtin_memcpy(out, few, static_cast<size_t>(count) * sizeof *out);
    }
}

// The gains of a cell, interpolated where they are asked for.
struct Cell {
    const PixelTaps* taps;
    CellNodes nodes;

    [[gnu::always_inline]] Pixels next() { return interpolated(taps, nodes); }
};

// Gains that are laid out already.
struct GainRow {
    const uint16_t* gain;

    [[gnu::always_inline]] Pixels next() {
        const Pixels gains = load_pixels(gain);
        advance(gain, pixels_at_once);
        return gains;
    }
};

template <bool ten_bits, class Gains>
[[gnu::always_inline]] inline void correct_samples(const Pixels samples[line_parts], Gains& from,
                                                   uint16_t* out) {
    for (int32_t i = 0; i < line_parts; ++i)
        store_pixels(out + i * pixels_at_once, corrected<ten_bits>(samples[i], from.next()));
}

template <class Gains>
[[gnu::always_inline]] inline void correct_part(const uint16_t*& in, Gains& from, uint16_t*& out) {
    store_pixels(out, corrected<false>(load_pixels(in), from.next()));
    advance(in, pixels_at_once);
    advance(out, pixels_at_once);
}

// Where it is worth knowing that samples have ten bits, all of a line are looked at before the first is
// corrected: they stay in registers.
template <class Gains>
[[gnu::always_inline]] inline void correct_line(const uint16_t*& in, Gains& from, uint16_t*& out) {
    prefetch<3>(in, out, 1024);
    if constexpr (ten_bits_are_faster) {
        Pixels samples[line_parts];
        for (int32_t i = 0; i < line_parts; ++i)
            samples[i] = load_pixels(in + i * pixels_at_once);
        if (have_ten_bits(samples, line_parts))
            correct_samples<true>(samples, from, out);
        else
            correct_samples<false>(samples, from, out);
        in += line_pixels;
        out += line_pixels;
    } else {
        for (int32_t i = 0; i < line_parts; ++i)
            correct_part(in, from, out);
    }
}

// Corrects `pixels` pixels; `room` are left in the row.
template <class Gains>
[[gnu::always_inline]] inline void correct_pixels(Gains from, int32_t pixels, int32_t room,
                                                  const uint16_t* in, uint16_t* out) {
    const int32_t beyond = room - pixels;
    for (; pixels >= line_pixels; pixels -= line_pixels)
        correct_line(in, from, out);
    for (; pixels >= pixels_at_once; pixels -= pixels_at_once)
        correct_part(in, from, out);
    if (pixels > 0)
        correct_few(in, from.next(), pixels, pixels + beyond, out);
}

// Neighbouring cells of a row, of which the last may have taps of its own.
struct Block {
    int32_t count;
    const PixelTaps* taps;
    const PixelTaps* last_taps;
    Strip strips[2];

    [[gnu::always_inline]] CellNodes nodes(int32_t i) const {
        return cell_nodes(strips[0] + i, strips[1] + i);
    }
};

// Corrects `count` pixels of each cell from `first` to before `end`. It is not inlined, so that its loop has
// the registers to itself.
[[gnu::noinline]] void correct_equal_cells(const Block& block, int32_t first, int32_t end,
                                           const PixelTaps* taps, int32_t count, int32_t room,
                                           const uint16_t* in, uint16_t* out) {
    for (int32_t i = first; i < end; ++i, room -= count, in += count, out += count)
        correct_pixels(Cell{taps, block.nodes(i)}, count, room, in, out);
}

void correct_long_cells(const Block& block, int32_t cell_pixels, int32_t room, const uint16_t* in,
                        uint16_t* out) {
    const int32_t last = block.count - 1;
    const int32_t x = last * cell_pixels;
    correct_equal_cells(block, 0, last, block.taps, cell_pixels, room, in, out);
    correct_equal_cells(block, last, block.count, block.last_taps, smaller_of(cell_pixels, room - x),
                        room - x, in + x, out + x);
}

// Lays out the gains of all cells, each of which overwrites what the one before has beyond its pixels.
void correct_short_cells(const Block& block, int32_t cell_pixels, int32_t room, const uint16_t* in,
                         uint16_t* out) {
    alignas(vector_bytes) uint16_t gains[max_laid_out + pixels_at_once];
    const int32_t pixels = smaller_of(block.count * cell_pixels, room);
    for (int32_t i = 0; i < block.count; ++i) {
        const int32_t first = i * cell_pixels;
        Cell cell{i + 1 < block.count ? block.taps : block.last_taps, block.nodes(i)};
        for (int32_t x = 0; x < smaller_of(cell_pixels, pixels - first); x += pixels_at_once)
            store_pixels(gains + first + x, cell.next());
    }
    correct_pixels(GainRow{gains}, pixels, room, in, out);
}

// Whether parts of vectors would be much of a cell.
bool is_short(int32_t cell_pixels) {
    return cell_pixels < 2 * line_pixels && cell_pixels % line_pixels != 0;
}

void correct_row(const Correction& c, const CellTaps& taps, const RowPosition& row, const uint16_t* in,
                 uint16_t* out) {
    const int32_t width = c.in.width;
    const int32_t cell_pixels = 2 * c.step;
    const int32_t cells = (width + cell_pixels - 1) / cell_pixels;
    const int32_t max_count =
        is_short(cell_pixels) ? smaller_of(max_cells, max_laid_out / cell_pixels) : max_cells;
    // The quirk of the last plane column concerns two or three pixels, which are a cell of their own.
    const bool is_quirky = width / 2 % c.step == 1;
    for (int32_t first = 0; first < cells; first += max_count) {
        Block block;
        block.count = smaller_of(cells - first, max_count);
        block.taps = taps.whole;
        block.last_taps = is_quirky && first + block.count == cells ? taps.last : taps.whole;
        fill_strips(c, row, first, block.count + 3, block.strips);
        const int32_t x = first * cell_pixels;
        if (is_short(cell_pixels))
            correct_short_cells(block, cell_pixels, width - x, in + x, out + x);
        else
            correct_long_cells(block, cell_pixels, width - x, in + x, out + x);
    }
}

} // namespace

void correct_cells(const Correction& c) {
    CellTaps taps;
    lay_out_taps(c, taps);
    for (int32_t y = c.first_row; y < c.end_row; ++y)
        correct_row(c, taps, row_position(c, y), c.in.data + y * c.in.stride, c.out.data + y * c.out.stride);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
