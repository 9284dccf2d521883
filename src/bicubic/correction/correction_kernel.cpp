// The correction in vectors. Inside a cell the four gains of the strip are constant and the weights depend on
// the phase only: the taps of a whole cell are laid out once per call, and each gain takes two pair products.
// Samples that have no more bits than the ISP takes, as nearly all have, are multiplied in a cheaper way.
#include <cstddef>

#include "bicubic/correction/correction.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

#if ZERKLSC_VECTOR_BYTES == 0

void correct_cells(const Correction& c) {
    plain::correct(c);
}

#else

namespace {

// A row is corrected in blocks of so many cells, so that the strip between the passes has a size.
constexpr int32_t max_cells = 128;
constexpr int32_t block_columns = max_cells + 3 + lanes<Words>;

// A cell is corrected by whole lines of the cache, the rest of it by vectors.
constexpr int32_t line_pixels = 32;
constexpr int32_t line_vectors = line_pixels / lanes<Words>;

// The gains of short cells are laid out for so many pixels at a time.
constexpr int32_t max_laid_out = 1024;

int32_t smaller_of(int32_t a, int32_t b) {
    return a < b ? a : b;
}

// The taps of a vector of neighbouring pixels, where pair_dot() and pack() want them: words of a pair belong
// to one pixel, and each 16 bytes of low and high make 16 bytes of pixels.
struct alignas(ZERKLSC_VECTOR_BYTES) PixelTaps {
    uint16_t first[2][lanes<Words>];  // for nodes -1 and 0, low and high
    uint16_t second[2][lanes<Words>]; // for nodes +1 and +2
};

struct CellTaps {
    PixelTaps whole[(2 * highest_step + lanes<Words> - 1) / lanes<Words>];
    PixelTaps last; // every pixel at phase 1
};

void set_taps(PixelTaps& taps, int32_t pixel, const PhaseWeights& weights) {
    const int32_t high = pixel % 8 / 4;
    const int32_t word = 2 * (pixel / 8 * 4 + pixel % 4);
    for (int32_t i = 0; i < 2; ++i) {
        taps.first[high][word + i] = static_cast<uint16_t>(weights.tap[i]);
        taps.second[high][word + i] = static_cast<uint16_t>(weights.tap[2 + i]);
    }
}

void lay_out_taps(const Correction& c, CellTaps& taps) {
    const int32_t pixels = 2 * c.step;
    for (int32_t start = 0; start < pixels; start += lanes<Words>)
        for (int32_t i = 0; i < lanes<Words>; ++i) {
            const int32_t x = start + i;
            set_taps(taps.whole[start / lanes<Words>], i, c.phases[x < pixels ? x / 2 : 0]);
        }
    for (int32_t i = 0; i < lanes<Words>; ++i)
        set_taps(taps.last, i, c.phases[c.step > 1 ? 1 : 0]);
}

// Four grid rows from one column on: in the table, or a copy where whole vectors would leave it.
struct Nodes {
    const uint16_t* row[4];
    uint16_t copy[4][block_columns];
};

// Whether the table has all of `count` nodes from one on.
bool has_nodes(const Correction& c, int64_t first, int32_t count) {
    return first >= 0 && first + count <= int64_t{c.table_w} * c.table_h;
}

// Copies `count` nodes and fills up a vector. Where the steps name nodes outside the table they go one by
// one.
void copy_nodes(const Correction& c, int32_t plane, int32_t column, int32_t row, int32_t count,
                uint16_t* copy) {
    const int64_t first = int64_t{row} * c.table_w + column;
    store(copy, Words{});
    if (has_nodes(c, first, count))
        __builtin_memcpy(copy, c.table[plane] + first, static_cast<size_t>(count) * sizeof *copy);
    else
        for (int32_t i = 0; i < count; ++i)
            copy[i] = node(c, plane, column + i, row);
}

void find_nodes(const Correction& c, int32_t plane, int32_t column, int32_t row, int32_t count,
                Nodes& nodes) {
    const int32_t whole = count < lanes<Words> ? lanes<Words> : count;
    for (int32_t i = 0; i < 4; ++i) {
        const int64_t first = int64_t{row + i} * c.table_w + column;
        const bool in_table = has_nodes(c, first, whole);
        if (!in_table)
            copy_nodes(c, plane, column, row + i, count, nodes.copy[i]);
        nodes.row[i] = in_table ? c.table[plane] + first : nodes.copy[i];
    }
}

// Gains of neighbouring grid columns on one image row, as 2 * gain + 1. Taps sum to 1024, so that the 1 puts
// half a unit on the sum of the horizontal pass: it is rounded without an addition.
using Strip = uint16_t[block_columns];

Words limited_gains(Sums low, Sums high) {
    const SignedWords gains = pack(low, high);
    const SignedWords lowest = SignedWords{} + int16_t{ZERKLSC_UNITY_GAIN};
    const SignedWords highest = SignedWords{} + int16_t{ZERKLSC_HIGHEST_GAIN};
    return reinterpret_cast<Words>(lower(higher(gains, lowest), highest));
}

// The vertical pass: for every grid column
//   anchor * 1024 + (a - anchor) * tap a + (b - anchor) * tap b + (d - anchor) * tap d
// rounded, where the differences are words that wrap and are read as signed, as cubic() has them. The anchor
// is an unsigned word, and pair_dot() reads its words as signed: anchor - 2^15 goes in, and 2^15 * 1024 is
// added to the sum.
void blend_rows(const Nodes& nodes, int32_t count, const PhaseWeights& weights, uint16_t* strip) {
    const int32_t other = weights.anchor == 0 ? 1 : 0;
    const auto tap = [&](int32_t i) { return static_cast<uint16_t>(weights.tap[other + i]); };
    const uint16_t near[2] = {tap(0), tap(1)};
    const uint16_t far[2] = {tap(2), ZERKLSC_UNITY_GAIN};
    const Words near_taps = repeated<uint32_t>(near);
    const Words far_taps = repeated<uint32_t>(far);
    const uint16_t bias = 0x8000;
    const int32_t rest = bias * ZERKLSC_UNITY_GAIN + 512; // and a half, which rounds
    const int32_t last = count < lanes<Words> ? 0 : count - lanes<Words>;
    for (int32_t next = 0; next < count; next += lanes<Words>) {
        const int32_t i = smaller_of(next, last);
        const Words anchor = load<Words>(nodes.row[weights.anchor] + i);
        const Words a = load<Words>(nodes.row[other] + i) - anchor;
        const Words b = load<Words>(nodes.row[other + 1] + i) - anchor;
        const Words d = load<Words>(nodes.row[other + 2] + i) - anchor;
        const Words e = anchor ^ bias; // anchor - bias, modulo 2^16
        const Sums low =
            pair_dot(interleave_low(a, b), near_taps) + pair_dot(interleave_low(d, e), far_taps) + rest;
        const Sums high =
            pair_dot(interleave_high(a, b), near_taps) + pair_dot(interleave_high(d, e), far_taps) + rest;
        store(strip + i, 2 * limited_gains(low >> 10, high >> 10) + 1);
    }
}

// Fills the strips of both pixels of a Bayer pair with `count` grid columns.
void fill_strips(const Correction& c, const RowPosition& row, int32_t column, int32_t count,
                 Strip strips[2]) {
    for (int32_t side = 0; side < 2; ++side) {
        const int32_t plane = 2 * row.parity + side;
        Nodes nodes;
        find_nodes(c, plane, column, row.first.cell, count, nodes);
        blend_rows(nodes, count, c.phases[row.first.phase], strips[side]);
        const int32_t kept = column < 4 ? 4 - column : 0;
        if (row.refill.cell != row.first.cell && kept < count) {
            find_nodes(c, plane, column + kept, row.refill.cell, count - kept, nodes);
            blend_rows(nodes, count - kept, c.phases[row.refill.phase], strips[side] + kept);
        }
    }
}

// Two neighbouring grid columns of each strip in every 8 bytes, as pair_dot() wants them: the even pixels'
// first.
Words node_pair(const Strip strips[2], int32_t column) {
    using Pairs = Vector<uint32_t>;
    Pairs is_odd{};
    for (int32_t i = 1; i < lanes<Pairs>; i += 2)
        is_odd[i] = UINT32_MAX;
    const Pairs even = Pairs{} + load<uint32_t>(strips[0] + column);
    const Pairs odd = Pairs{} + load<uint32_t>(strips[1] + column);
    return reinterpret_cast<Words>(is_odd ? odd : even);
}

Words interpolated(const PixelTaps& taps, Words first, Words second) {
    const Sums low =
        pair_dot(first, load<Words>(taps.first[0])) + pair_dot(second, load<Words>(taps.second[0]));
    const Sums high =
        pair_dot(first, load<Words>(taps.first[1])) + pair_dot(second, load<Words>(taps.second[1]));
    return limited_gains(low >> 11, high >> 11);
}

// Low 16 bits of the rounded product, limited to 10 bits. Where the samples have 10 bits themselves, no bit
// of the product is lost: samples * 32 and gains are signed words, whose product takes one instruction; an
// instruction set without it does not come here.
template <bool ten_bits, class W>
W corrected(W samples, W gains) {
    if constexpr (ten_bits) {
        const auto product = reinterpret_cast<SignedWords>(multiply_rounded(samples << 5, gains));
        return reinterpret_cast<Words>(lower(product, SignedWords{} + int16_t{highest_sample}));
    } else {
        const Words low = samples * gains;
        const Words high = multiply_high(samples, gains);
        const Words product = (high << 6) + (((low >> 9) + 1) >> 1);
        return product - saturating_subtract(product, Words{} + highest_sample);
    }
}

// Corrects `count` pixels, less than a vector. A whole one is written where the row has the room: beyond the
// pixels it is what was read, which leaves a frame in place as it is, and another frame to the cells that
// follow.
[[gnu::always_inline]] inline void correct_few(const uint16_t* in, Words gains, int32_t count, int32_t room,
                                               uint16_t* out) {
    uint16_t few[lanes<Words>] = {};
    if (room >= lanes<Words>) {
        const Words samples = load<Words>(in);
        store(out, first_lanes(count, corrected<false>(samples, gains), samples));
    } else {
        __builtin_memcpy(few, in, static_cast<size_t>(count) * sizeof *in);
        store(few, corrected<false>(load<Words>(few), gains));
        __builtin_memcpy(out, few, static_cast<size_t>(count) * sizeof *out);
    }
}

// The gains of a cell, interpolated vector by vector where they are asked for.
struct Cell {
    const PixelTaps* taps;
    Words first;  // nodes -1 and 0 of both strips
    Words second; // nodes +1 and +2

    [[gnu::always_inline]] Words gains(int32_t vector) const {
        return interpolated(taps[vector], first, second);
    }
    void skip(int32_t vectors) { taps += vectors; }
};

// Gains that are laid out already.
struct GainRow {
    const uint16_t* gain;

    [[gnu::always_inline]] Words gains(int32_t vector) const {
        return load<Words>(gain + vector * lanes<Words>);
    }
    void skip(int32_t vectors) { gain += vectors * lanes<Words>; }
};

template <bool ten_bits, class Gains>
[[gnu::always_inline]] inline void correct_vectors(const Gains& from, const Words samples[line_vectors],
                                                   uint16_t* out) {
    for (int32_t i = 0; i < line_vectors; ++i)
        store(out + i * lanes<Words>, corrected<ten_bits>(samples[i], from.gains(i)));
}

// Where it is worth knowing that samples have ten bits, all of a line are looked at before the first is
// corrected: they stay in registers.
template <class Gains>
[[gnu::always_inline]] inline void correct_line(const Gains& from, const uint16_t* in, uint16_t* out) {
    prefetch(in, out);
    if constexpr (multiplies_rounded_at_once) {
        Words samples[line_vectors];
        Words any{};
        for (int32_t i = 0; i < line_vectors; ++i) {
            samples[i] = load<Words>(in + i * lanes<Words>);
            any |= samples[i];
        }
        if (is_zero(any & static_cast<uint16_t>(~highest_sample)))
            correct_vectors<true>(from, samples, out);
        else
            correct_vectors<false>(from, samples, out);
    } else {
        for (int32_t i = 0; i < line_vectors; ++i)
            store(out + i * lanes<Words>,
                  corrected<false>(load<Words>(in + i * lanes<Words>), from.gains(i)));
    }
}

// Corrects `pixels` pixels; `room` are left in the row.
template <class Gains>
[[gnu::always_inline]] inline void correct_pixels(Gains from, int32_t pixels, int32_t room,
                                                  const uint16_t* in, uint16_t* out) {
    int32_t x = 0;
    for (; x + line_pixels <= pixels; x += line_pixels, from.skip(line_vectors))
        correct_line(from, in + x, out + x);
    for (; x + lanes<Words> <= pixels; x += lanes<Words>, from.skip(1))
        store(out + x, corrected<false>(load<Words>(in + x), from.gains(0)));
    if (x < pixels)
        correct_few(in + x, from.gains(0), pixels - x, room - x, out + x);
}

// Neighbouring cells of a row, of which the last may have taps of its own.
struct Block {
    int32_t count;
    const PixelTaps* taps;
    const PixelTaps* last_taps;
    Strip strips[2];

    [[gnu::always_inline]] Cell cell(int32_t i) const {
        return {i + 1 < count ? taps : last_taps, node_pair(strips, i), node_pair(strips, i + 2)};
    }
};

void correct_long_cells(const Block& block, int32_t cell_pixels, int32_t room, const uint16_t* in,
                        uint16_t* out) {
    for (int32_t i = 0; i < block.count; ++i, room -= cell_pixels, in += cell_pixels, out += cell_pixels)
        correct_pixels(block.cell(i), smaller_of(cell_pixels, room), room, in, out);
}

// Lays out the gains of all cells, each of which overwrites what the one before has beyond its pixels.
void correct_short_cells(const Block& block, int32_t cell_pixels, int32_t room, const uint16_t* in,
                         uint16_t* out) {
    alignas(ZERKLSC_VECTOR_BYTES) uint16_t gains[max_laid_out + lanes<Words>];
    const int32_t pixels = smaller_of(block.count * cell_pixels, room);
    for (int32_t i = 0; i < block.count; ++i) {
        const int32_t first = i * cell_pixels;
        const Cell cell = block.cell(i);
        for (int32_t x = 0; x < smaller_of(cell_pixels, pixels - first); x += lanes<Words>)
            store(gains + first + x, cell.gains(x / lanes<Words>));
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
        block.last_taps = is_quirky && first + block.count == cells ? &taps.last : taps.whole;
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

#endif

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
