// One row of node words to gains.
#include "compress/node_fields.h"
#include "compress/row_blocks.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// A field from the lower and upper 16 bits of node words: shifted to the top of the lane, then back with its
// sign.
template <BitField field>
Words get_field(Words low, Words high) {
    Words bits;
    if constexpr (field.shift >= 16)
        bits = high >> (field.shift - 16);
    else if constexpr (field.shift + field.bits > 16)
        bits = low >> field.shift | high << (16 - field.shift);
    else
        bits = low >> field.shift;
    constexpr int above = 16 - field.bits;
    return reinterpret_cast<Words>(reinterpret_cast<SignedWords>(bits << above) >> above);
}

// From the words of eight nodes to what they add to each colour.
template <uint8_t mode>
ByColour<Words> get_nodes(const uint32_t* words) {
    constexpr NodeLayout layout = layout_of(mode);
    const Words first = load<Words>(words), second = load<Words>(words + block_nodes / 2);
    const Words low = shuffle<0, 2, 4, 6, 8, 10, 12, 14>(first, second);
    const Words high = shuffle<1, 3, 5, 7, 9, 11, 13, 15>(first, second);
    const Words base = get_field<layout.of[Gb]>(low, high);
    return {{base, base - get_field<layout.of[B]>(low, high), base - get_field<layout.of[R]>(low, high),
             base - get_field<layout.of[Gr]>(low, high)}};
}

// Each lane becomes the sum of itself, the lanes before it and `carry`; the last sum is the next carry.
Words sum_rightwards(Words x, Words& carry) {
    const Words zero{};
    x += shuffle<7, 8, 9, 10, 11, 12, 13, 14>(zero, x);
    x += shuffle<6, 7, 8, 9, 10, 11, 12, 13>(zero, x);
    x += shuffle<4, 5, 6, 7, 8, 9, 10, 11>(zero, x);
    x += carry;
    carry = every_lane<7>(x);
    return x;
}

// The same from the last lane to the first.
Words sum_leftwards(Words x, Words& carry) {
    const Words zero{};
    x += shuffle<1, 2, 3, 4, 5, 6, 7, 8>(x, zero);
    x += shuffle<2, 3, 4, 5, 6, 7, 8, 9>(x, zero);
    x += shuffle<4, 5, 6, 7, 8, 9, 10, 11>(x, zero);
    x += carry;
    carry = every_lane<0>(x);
    return x;
}

// Adds a block to the sums of each colour at column c.
void add(const DecompressedRow& row, ptrdiff_t c, const ByColour<Words>& x) {
    for (int k = 0; k < colour_count; ++k) {
        uint16_t* const sum = row.sums.of[k] + c;
        store(sum, load<Words>(sum) + x.of[k]);
    }
}

// From the last centre column rightwards. The lanes of the last block that are beyond the row's end do no
// harm: sums run outwards, and the rows have room for them.
template <uint8_t mode>
void add_right_half(const DecompressedRow& row) {
    ByColour<Words> carry{};
    for (ptrdiff_t c = row.centre.last; c < row.width; c += block_nodes) {
        ByColour<Words> x = get_nodes<mode>(row.words + c);
        for (int k = 0; k < colour_count; ++k)
            x.of[k] = sum_rightwards(x.of[k], carry.of[k]);
        add(row, c, x);
    }
}

// Columns left of the last centre column. With an odd width that is the only one, and the sums start from it.
template <uint8_t mode>
void add_left_half(const DecompressedRow& row) {
    const ptrdiff_t end = row.centre.last;
    ByColour<Words> carry{};
    if (row.centre.first == row.centre.last) {
        carry = get_nodes<mode>(row.words + end);
        for (Words& x : carry.of)
            x = every_lane<0>(x);
    }
    for (ptrdiff_t c = end - block_nodes; c > -block_nodes; c -= block_nodes) {
        ByColour<Words> x = get_nodes<mode>(row.words + c);
        for (int k = 0; k < colour_count; ++k)
            x.of[k] = sum_leftwards(x.of[k], carry.of[k]);
        add(row, c, x);
    }
}

// The tables have no room beyond a row: its end belongs to the border and to rows that are finished.
template <uint8_t mode>
void decompress_row(const DecompressedRow& row) {
    constexpr int dropped = dropped_bits(mode);
    add_right_half<mode>(row);
    add_left_half<mode>(row);
    for (int k = 0; k < colour_count; ++k) {
        const uint16_t* const sums = row.sums.of[k];
        uint16_t* const gains = row.gains.of[k];
        for_each_block(row.width, [=](ptrdiff_t c) { store(gains + c, load<Words>(sums + c) << dropped); });
    }
}

} // namespace

void decompress_row_24_bit(const DecompressedRow& row) {
    decompress_row<mode_24_bit>(row);
}

void decompress_row_14_bit(const DecompressedRow& row) {
    decompress_row<mode_14_bit>(row);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
