// Half of the rows of the tables to node words.
#include "compress/node_fields.h"
#include "compress/row_blocks.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// Half up to the unit that the mode keeps, without a sum that needs more than 16 bits.
template <uint8_t mode>
Words quantise(Words gain) {
    constexpr int dropped = dropped_bits(mode);
    return (gain >> dropped) + (gain >> (dropped - 1) & 1);
}

// Saturates signed values to what a field can hold.
template <BitField field>
Words limit(Words values) {
    constexpr int16_t highest = (1 << (field.bits - 1)) - 1;
    const SignedWords high = SignedWords{} + highest;
    return reinterpret_cast<Words>(higher(lower(reinterpret_cast<SignedWords>(values), high), ~high));
}

// Adds a field to the lower and upper 16 bits of node words. A field may lie across both.
template <BitField field>
void put_field(Words value, Words& low, Words& high) {
    constexpr uint16_t mask = (1 << field.bits) - 1;
    const Words bits = limit<field>(value) & mask;
    if constexpr (field.shift < 16)
        low |= bits << field.shift;
    if constexpr (field.shift >= 16)
        high |= bits << (field.shift - 16);
    else if constexpr (field.shift + field.bits > 16)
        high |= bits >> (16 - field.shift);
}

// From the finished differences of eight nodes to their words.
template <uint8_t mode>
void put_nodes(const ByColour<Words>& x, uint32_t* words) {
    constexpr NodeLayout layout = layout_of(mode);
    const Words base = x.of[Gb];
    Words low{}, high{};
    put_field<layout.of[Gb]>(base, low, high);
    put_field<layout.of[B]>(base - x.of[B], low, high);
    put_field<layout.of[R]>(base - x.of[R], low, high);
    put_field<layout.of[Gr]>(base - x.of[Gr], low, high);
    store(words, interleave_low(low, high));
    store(words + block_nodes / 2, interleave_high(low, high));
}

// The inward neighbour is chosen by masks before it is quantised: the centre columns have none, and 0 is
// quantised to 0. The masks are 0 where the neighbour would be a border node.
template <uint8_t mode>
void compress_row(const CompressedHalf& half, const ByColour<const uint16_t*>& gains,
                  const ByColour<uint16_t*>& previous, const ByColour<uint16_t*>& current, uint32_t* words) {
    for_each_block(half.width, [&](ptrdiff_t c) {
        const Words from_right = load<Words>(half.from_right + c),
                    from_left = load<Words>(half.from_left + c);
        ByColour<Words> outward;
        for (int k = 0; k < colour_count; ++k) {
            const uint16_t* const gain = gains.of[k] + c;
            const Words right = load<Words>(gain + 1) & from_right;
            const Words left = load<Words>(gain - 1) & from_left;
            const Words difference = quantise<mode>(load<Words>(gain)) - quantise<mode>(right | left);
            outward.of[k] = difference - load<Words>(previous.of[k] + c);
            store(current.of[k] + c, difference);
        }
        put_nodes<mode>(outward, words + c);
    });
}

template <uint8_t mode>
void compress_half(const CompressedHalf& half) {
    const ByColour<uint16_t*> differences[] = {half.previous, half.current};
    for (ptrdiff_t r = 0; r < half.rows; ++r) {
        ByColour<const uint16_t*> gains;
        for (int k = 0; k < colour_count; ++k)
            gains.of[k] = half.gains.of[k] + r * half.next_gains;
        compress_row<mode>(half, gains, differences[r % 2], differences[(r + 1) % 2],
                           half.words + r * half.next_words);
    }
}

} // namespace

void compress_half_24_bit(const CompressedHalf& half) {
    compress_half<mode_24_bit>(half);
}

void compress_half_14_bit(const CompressedHalf& half) {
    compress_half<mode_14_bit>(half);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
