// Half of the rows of node words to gains.
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

// Sums the block at column c along the row, and adds that to the sums of each colour.
template <uint8_t mode, Words sum_along(Words x, Words& carry)>
void add_block(const DecompressedHalf& half, const uint32_t* words, ptrdiff_t c, ByColour<Words>& carry) {
    const ByColour<Words> x = get_nodes<mode>(words + c);
    for (int k = 0; k < colour_count; ++k) {
        uint16_t* const sum = half.sums.of[k] + c;
        store(sum, load<Words>(sum) + sum_along(x.of[k], carry.of[k]));
    }
}

// From the last centre column rightwards. The lanes of the last block that are beyond the row's end do no
// harm: sums run outwards, and the rows have room for them.
template <uint8_t mode>
void add_right_side(const DecompressedHalf& half, const uint32_t* words) {
    ByColour<Words> carry{};
    for (ptrdiff_t c = half.centre.last; c < half.width; c += block_nodes)
        add_block<mode, sum_rightwards>(half, words, c, carry);
}

// Columns left of the last centre column. With an odd width that is the only one, and the sums start from it.
template <uint8_t mode>
void add_left_side(const DecompressedHalf& half, const uint32_t* words) {
    const ptrdiff_t end = half.centre.last;
    ByColour<Words> carry{};
    if (half.centre.first == half.centre.last) {
        carry = get_nodes<mode>(words + end);
        for (Words& x : carry.of)
            x = every_lane<0>(x);
    }
    for (ptrdiff_t c = end - block_nodes; c > -block_nodes; c -= block_nodes)
        add_block<mode, sum_leftwards>(half, words, c, carry);
}

// The tables have no room beyond a row: its end belongs to the border and to rows that are finished.
template <uint8_t mode>
void decompress_half(const DecompressedHalf& half) {
    constexpr int dropped = dropped_bits(mode);
    for (ptrdiff_t r = 0; r < half.rows; ++r) {
        const uint32_t* const words = half.words + r * half.next_words;
        add_right_side<mode>(half, words);
        add_left_side<mode>(half, words);
        for (int k = 0; k < colour_count; ++k) {
            const uint16_t* const sums = half.sums.of[k];
            uint16_t* const gains = half.gains.of[k] + r * half.next_gains;
            for_each_block(half.width,
                           [=](ptrdiff_t c) { store(gains + c, load<Words>(sums + c) << dropped); });
        }
    }
}

} // namespace

void decompress_half_24_bit(const DecompressedHalf& half) {
    decompress_half<mode_24_bit>(half);
}

void decompress_half_14_bit(const DecompressedHalf& half) {
    decompress_half<mode_14_bit>(half);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
