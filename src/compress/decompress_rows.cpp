// The fast form of lsc_decompress.
#include <algorithm>

#include "compress/centre.h"
#include "compress/lanes.h"
#include "compress/node_fields.h"
#include "compress/rows.h"
#include "compress/words.h"
#include "frame/convert.h"
#include "frame/scratch.h"

// The inverse transform is linear modulo 65536: base less difference is taken first, and each channel summed
// on its own. Rows are taken from the centre outwards, each summed along itself and added to the one before
// it; before the first comes a row of unity gain.
namespace zerklsc {
namespace {

// One row of each channel, in the order of the roles, with room for a block beyond either end.
using SumRows = ByRole<uint16_t*>;
using ChannelLanes = ByRole<Lanes>;

// A field from the lower and upper 16 bits of node words: shifted to the top of the lane, then back with its
// sign.
template <Field field>
Lanes get_field(Lanes lower, Lanes upper) {
    Lanes bits;
    if constexpr (field.shift >= 16)
        bits = upper >> (field.shift - 16);
    else if constexpr (field.shift + field.bits > 16)
        bits = lower >> field.shift | upper << (16 - field.shift);
    else
        bits = lower >> field.shift;
    constexpr int above = 16 - field.bits;
    return reinterpret_cast<Lanes>(reinterpret_cast<SignedLanes>(bits << above) >> above);
}

// From the words of eight nodes to what they add to each channel.
template <uint8_t mode>
ChannelLanes unpack(const uint32_t* words) {
    constexpr NodeLayout layout = layout_of(mode);
    const Lanes x = load(words), y = load(words + lane_count / 2);
    const Lanes lower = __builtin_shufflevector(x, y, 0, 2, 4, 6, 8, 10, 12, 14);
    const Lanes upper = __builtin_shufflevector(x, y, 1, 3, 5, 7, 9, 11, 13, 15);
    const Lanes base = get_field<layout.a>(lower, upper);
    return {base, base - get_field<layout.b>(lower, upper), base - get_field<layout.c>(lower, upper),
            base - get_field<layout.d>(lower, upper)};
}

// Adds lanes to a row of each channel at column c.
void add(const SumRows& sums, ptrdiff_t c, const ChannelLanes& x) {
    for (int k = 0; k < role_count; ++k)
        store(sums[k] + c, load(sums[k] + c) + x[k]);
}

// Columns from `first` rightwards. The lanes of the last block that are beyond the row's end do no harm: sums
// run outwards, and the rows have room for them.
template <uint8_t mode>
void add_right_part(const uint32_t* words, const SumRows& sums, int32_t first, int32_t width) {
    ChannelLanes carry = {};
    for (ptrdiff_t c = first; c < width; c += lane_count) {
        ChannelLanes x = unpack<mode>(words + c);
        for (int k = 0; k < role_count; ++k)
            x[k] = sum_rightwards(x[k], carry[k]);
        add(sums, c, x);
    }
}

// Columns left of `end`. With an odd width the sums start from the centre column, which is that at `end`.
template <uint8_t mode>
void add_left_part(const uint32_t* words, const SumRows& sums, int32_t end, bool from_centre) {
    ChannelLanes carry = {};
    if (from_centre) {
        carry = unpack<mode>(words + end);
        for (Lanes& x : carry)
            x = first_lane(x);
    }
    for (ptrdiff_t c = ptrdiff_t{end} - lane_count; c > -lane_count; c -= lane_count) {
        ChannelLanes x = unpack<mode>(words + c);
        for (int k = 0; k < role_count; ++k)
            x[k] = sum_leftwards(x[k], carry[k]);
        add(sums, c, x);
    }
}

// The tables have no room beyond a row: its end belongs to the border and to rows that are finished.
template <uint8_t mode>
void restore_row(uint16_t* gains, const uint16_t* sums, int32_t width) {
    for_each_block(width, [=](ptrdiff_t c) { store(gains + c, load(sums + c) << dropped_bits(mode)); });
}

// Rows `row` (a centre row), row + step, ... before `end`.
template <uint8_t mode>
void decompress_half(const lsc_otp_info& info, const uint32_t* words, const SumRows& sums, int32_t row,
                     int32_t end, int32_t step) {
    const int32_t width = info.grid_width - 2;
    const int32_t height = info.grid_height - 2;
    const int unity = decoded_unity_offset(row, width, height, mode);
    const Centre centre = centre_of(width);
    for (int k = 0; k < role_count; ++k)
        std::fill_n(sums[k], width, low16(unity));
    for (; row != end; row += step) {
        const uint32_t* const row_words = words + ptrdiff_t{row} * width;
        add_right_part<mode>(row_words, sums, centre.last, width);
        add_left_part<mode>(row_words, sums, centre.last, centre.first == centre.last);
        for (int k = 0; k < role_count; ++k)
            restore_row<mode>(inner_row(info, k, row), sums[k], width);
    }
}

} // namespace

int32_t decompress_rows(const lsc_otp_info& info) {
    const int32_t width = info.grid_width - 2;
    const int32_t height = info.grid_height - 2;
    const int64_t count = int64_t{width} * height;
    const int64_t room = int64_t{width} + 2 * lane_count;
    // Blocks are read and summed up to a block beyond either end of what they belong to.
    const Scratch<uint32_t> padded_words = allocate<uint32_t>(static_cast<uint64_t>(count + 2 * lane_count));
    const Scratch<uint16_t> padded_sums = allocate<uint16_t>(static_cast<uint64_t>(role_count * room));
    if (!padded_words || !padded_sums)
        return -1;
    // The nodes that mode 1 does not store decode from differences of 0.
    uint32_t* const words = padded_words.get() + lane_count;
    std::fill_n(padded_words.get(), count + 2 * lane_count, 0);
    std::fill_n(padded_sums.get(), role_count * room, uint16_t{0});
    read_words(info.stream, words, count, info.precision_mode);
    SumRows sums;
    for (int k = 0; k < role_count; ++k)
        sums[k] = padded_sums.get() + k * room + lane_count;

    const Centre centre = centre_of(height);
    const bool wide = info.precision_mode == mode_24_bit;
    const auto decompress_half_of = wide ? decompress_half<mode_24_bit> : decompress_half<mode_14_bit>;
    // An odd height has one centre row, which either half starts with and decodes alike.
    decompress_half_of(info, words, sums, centre.first, -1, -1);
    decompress_half_of(info, words, sums, centre.last, height, 1);
    return 0;
}

} // namespace zerklsc
